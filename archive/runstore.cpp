#include "archive/runstore.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "archive/readingtext.h"
#include "archive/runschema.h"
#include "archive/setuptext.h"
#include "platform/rvmdb/matrixtext.h"
#include "platform/rvmdb/prebaldatabase.h"

using PreBalDB::CTransaction;

namespace {

using CRow = PreBalDB::CDirectSQL::CRow;
using Values = std::vector<PreBalDB::CDirectSQL::CValue>;

std::int64_t ToNumber(std::chrono::sys_seconds Moment) {
    return Moment.time_since_epoch().count();
}

std::chrono::sys_seconds ToMoment(std::int64_t Number) {
    return std::chrono::sys_seconds(std::chrono::seconds(Number));
}

/// A text as every store takes it.
std::string Clean(std::string Text) {
    std::erase(Text, '\0');
    return Text;
}

template <typename Enum>
Enum ToEnum(std::int64_t Number, Enum Last, Enum Otherwise) {
    return Number >= 0 && Number <= static_cast<std::int64_t>(Last) ? static_cast<Enum>(Number) : Otherwise;
}

CRunRecord::Driver ToDriver(std::int64_t Number) {
    return ToEnum(Number, CRunRecord::Driver::eHeadless, CRunRecord::Driver::ePanel);
}

CRunRecord::State ToState(std::int64_t Number) {
    return ToEnum(Number, CRunRecord::State::eFailed, CRunRecord::State::eRunning);
}

/// "5,6"
std::string ToText(const std::vector<std::uint8_t>& rAddresses) {
    std::string Text;
    for (const std::uint8_t Address : rAddresses) {
        Text += (Text.empty() ? "" : ",") + std::to_string(Address);
    }
    return Text;
}

std::vector<std::uint8_t> ToAddresses(const std::string& rText) {
    std::vector<std::uint8_t> Addresses;
    unsigned Number = 0;
    for (const char Each : rText + ",") {
        if (Each == ',') {
            if (!rText.empty()) {
                Addresses.push_back(static_cast<std::uint8_t>(Number));
            }
            Number = 0;
        } else if (Each >= '0' && Each <= '9') {
            Number = Number * 10 + static_cast<unsigned>(Each - '0');
        }
    }
    return Addresses;
}

/// Of a result, in SQL.
const char* GetCondition(CRunFilter::Result Wanted) {
    switch (Wanted) {
        case CRunFilter::Result::eWithin:
            return "state = 1 AND result IN ('SetupSuccess', 'RebalSuccess')";
        case CRunFilter::Result::eOver:
            return "state = 1 AND result IN ('SetupOverTarget', 'RebalOverTarget')";
        case CRunFilter::Result::eFailed:
            return "state = 3";
        case CRunFilter::Result::eBrokenOff:
            return "state = 2";
        case CRunFilter::Result::eInterrupted:
            return "state = 0";
        case CRunFilter::Result::eAny:
            break;
    }
    return nullptr;
}

static_assert(static_cast<int>(CRunRecord::State::eRunning) == 0 &&
              static_cast<int>(CRunRecord::State::eFinished) == 1 &&
              static_cast<int>(CRunRecord::State::eBrokenOff) == 2 &&
              static_cast<int>(CRunRecord::State::eFailed) == 3);

std::optional<std::string> ToText(const std::vector<math::matrix<double>>& rMatrices, std::size_t Place) {
    return Place < rMatrices.size() ? std::optional(PreBalDB::MatrixToText(rMatrices[Place])) : std::nullopt;
}

}  // namespace

CRunStore::CRunStore(const std::string& rConnection) : m_Connection(rConnection) {
    Prepare();
}

void CRunStore::Prepare() {
    try {
        RunSchema::Prepare(m_Connection);
        m_Connection.UseWriteAheadLog();
    } catch (const PreBalDB::CSqlError& rError) {
        throw PreBalDB::CDatabaseError(m_Connection.GetUnusableText(rError), rError.GetCause());
    }
}

CRunStore::CProgress CRunStore::Write(const CRunRecord& rRecord, const std::string& rMark,
                                      CProgress Written) {
    // Measurements and the end are what nobody could make again.
    const bool bEnds = !Written.m_bEnded && rRecord.m_State != CRunRecord::State::eRunning;
    const bool bMeasured = Written.m_nMeasurements < rRecord.m_Measurements.size();
    CTransaction Transaction(m_Connection,
                             bEnds || bMeasured ? CTransaction::eWriting : CTransaction::eNoting);
    if (Written.m_Id == 0) {
        m_Connection.Execute("UPDATE run_counter SET last = last + 1");
        Written.m_Id = m_Connection.Query("SELECT last FROM run_counter").at(0).GetInteger(0);
        Begin(rRecord, rMark, Written.m_Id);
    }
    for (; Written.m_nMeasurements < rRecord.m_Measurements.size(); ++Written.m_nMeasurements) {
        WriteMeasurement(Written.m_Id, Written.m_nMeasurements,
                         rRecord.m_Measurements[Written.m_nMeasurements]);
    }
    for (; Written.m_nWarnings < rRecord.m_Warnings.size(); ++Written.m_nWarnings) {
        const CRunWarning& rWarning = rRecord.m_Warnings[Written.m_nWarnings];
        m_Connection.Execute(
            "INSERT INTO run_warning (run, position, time, warning, text) VALUES (?, ?, ?, ?, ?)",
            {Written.m_Id, static_cast<std::int64_t>(Written.m_nWarnings),
             static_cast<std::int64_t>(rWarning.m_Time), std::int64_t{rWarning.m_Number},
             Clean(rWarning.m_Text)});
    }
    if (!Written.m_bPrediction && (rRecord.m_Prediction[0] || rRecord.m_Prediction[1])) {
        WritePrediction(Written.m_Id, rRecord);
        Written.m_bPrediction = true;
    }
    if (bEnds) {
        WriteEnd(Written.m_Id, rRecord);
        Written.m_bEnded = true;
    }
    Transaction.Commit();
    return Written;
}

void CRunStore::Begin(const CRunRecord& rRecord, const std::string& rMark, std::int64_t Id) {
    m_Connection.Execute(
        "INSERT INTO run (id, mark, machine, configuration, mode, rotor, started, driver, rebalance, "
        "version, "
        "family, addresses, ended, state, result, saved) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, "
        "?, "
        "?)",
        {Id, rMark, Clean(rRecord.m_Machine), Clean(rRecord.m_Setup.m_Configuration),
         Clean(rRecord.m_Setup.m_Mode), Clean(rRecord.m_Rotor), ToNumber(rRecord.m_Started),
         static_cast<std::int64_t>(rRecord.m_Driver), std::int64_t{rRecord.m_bRebalance}, rRecord.m_Version,
         rRecord.m_Family, ToText(rRecord.m_Addresses), ToNumber(rRecord.m_Started),
         static_cast<std::int64_t>(CRunRecord::State::eRunning), CRunRecord().m_Result, std::int64_t{0}});
    m_Connection.Execute("INSERT INTO run_setup (run, setup) VALUES (?, ?)",
                         {Id, SetupToText(rRecord.m_Setup)});
}

void CRunStore::WriteMeasurement(std::int64_t Id, std::size_t Position, const CRunMeasurement& rMeasurement) {
    const auto Place = static_cast<std::int64_t>(Position);
    m_Connection.Execute(
        "INSERT INTO run_measurement (run, position, which, time, mean_rpm, min_rpm, max_rpm) "
        "VALUES (?, ?, ?, ?, ?, ?, ?)",
        {Id, Place, static_cast<std::int64_t>(rMeasurement.m_Which),
         static_cast<std::int64_t>(rMeasurement.m_Time), rMeasurement.m_MeanRpm, rMeasurement.m_MinRpm,
         rMeasurement.m_MaxRpm});
    for (std::size_t Plane = 0; Plane < rMeasurement.m_Planes.size(); ++Plane) {
        const std::optional<CMeasuredPlane>& rPlane = rMeasurement.m_Planes.at(Plane);
        if (!rPlane) {
            continue;
        }
        m_Connection.Execute(
            "INSERT INTO run_plane (run, position, plane, smoothed_x, smoothed_y, count, mean_x, mean_y, "
            "variance_x, variance_y, covariance_xy, fitted, readings) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, "
            "?, "
            "?, ?)",
            {Id, Place, static_cast<std::int64_t>(Plane), rPlane->m_Smoothed.m_X, rPlane->m_Smoothed.m_Y,
             static_cast<std::int64_t>(rPlane->m_nReadings), rPlane->m_Mean.m_X, rPlane->m_Mean.m_Y,
             rPlane->m_VarianceX, rPlane->m_VarianceY, rPlane->m_CovarianceXY,
             FittingToText(rPlane->m_Fitted), ReadingsToText(rPlane->m_Readings)});
    }
}

void CRunStore::WritePrediction(std::int64_t Id, const CRunRecord& rRecord) {
    for (std::size_t Plane = 0; Plane < rRecord.m_Prediction.size(); ++Plane) {
        if (const auto& rPlane = rRecord.m_Prediction.at(Plane)) {
            m_Connection.Execute(
                "INSERT INTO run_prediction (run, plane, x, y, variance_x, variance_y, covariance_xy, "
                "amplitude, at_most_95) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)",
                {Id, static_cast<std::int64_t>(Plane), rPlane->m_Reading.m_X, rPlane->m_Reading.m_Y,
                 rPlane->m_VarianceX, rPlane->m_VarianceY, rPlane->m_CovarianceXY, rPlane->m_Amplitude,
                 rPlane->m_AtMost95});
        }
    }
}

void CRunStore::WriteEnd(std::int64_t Id, const CRunRecord& rRecord) {
    m_Connection.Execute("UPDATE run SET ended = ?, state = ?, result = ?, saved = ? WHERE id = ?",
                         {ToNumber(rRecord.m_Ended), static_cast<std::int64_t>(rRecord.m_State),
                          rRecord.m_Result, std::int64_t{rRecord.m_bSaved}, Id});
    if (rRecord.m_Calibration) {
        const CRunCalibration& rCalibration = *rRecord.m_Calibration;
        m_Connection.Execute(
            "INSERT INTO run_calibration (run, rpm, inv_a, ua_1, ua_2, reference_1, reference_2) VALUES (?, "
            "?, ?, ?, "
            "?, ?, ?)",
            {Id, std::int64_t{rCalibration.m_Rpm}, PreBalDB::MatrixToText(rCalibration.m_InvA),
             ToText(rCalibration.m_UA, 0).value_or(""), ToText(rCalibration.m_UA, 1).value_or(""),
             rCalibration.m_ReferenceWeight[0], rCalibration.m_ReferenceWeight[1]});
    }
}

CRunStore::CProgress CRunStore::FindProgress(const std::string& rMark) {
    const CTransaction Transaction(m_Connection, CTransaction::eReading);
    CProgress Progress;
    const auto Rows = m_Connection.Query("SELECT id, state FROM run WHERE mark = ?", {rMark});
    if (Rows.empty()) {
        return Progress;
    }
    Progress.m_Id = Rows[0].GetInteger(0);
    Progress.m_bEnded = ToState(Rows[0].GetInteger(1)) != CRunRecord::State::eRunning;
    const auto Count = [&](const char* pTable) {
        return static_cast<std::size_t>(
            m_Connection
                .Query(std::string("SELECT count(*) FROM ") + pTable + " WHERE run = ?", {Progress.m_Id})
                .at(0)
                .GetInteger(0));
    };
    Progress.m_nMeasurements = Count("run_measurement");
    Progress.m_nWarnings = Count("run_warning");
    Progress.m_bPrediction = Count("run_prediction") != 0;
    return Progress;
}

std::vector<std::pair<std::int64_t, std::string>> CRunStore::GetMarks() {
    std::vector<std::pair<std::int64_t, std::string>> Marks;
    for (const CRow& rRow : m_Connection.Query("SELECT id, mark FROM run ORDER BY id")) {
        Marks.emplace_back(rRow.GetInteger(0), rRow.GetText(1));
    }
    return Marks;
}

void CRunStore::WritePicture(std::int64_t Id, const std::string& rName, std::span<const unsigned char> Png) {
    CTransaction Transaction(m_Connection, CTransaction::eNoting);
    m_Connection.Execute("DELETE FROM run_picture WHERE run = ? AND name = ?", {Id, Clean(rName)});
    m_Connection.Execute("INSERT INTO run_picture (run, name, png) VALUES (?, ?, ?)",
                         {Id, Clean(rName), BytesToText(Png)});
    Transaction.Commit();
}

std::vector<CRunSummary> CRunStore::List(const CRunFilter& rFilter) {
    std::string Conditions;
    Values Given;
    const auto Add = [&](const std::string& rCondition) {
        Conditions += (Conditions.empty() ? " WHERE " : " AND ") + rCondition;
    };
    const auto AddEqual = [&](const char* pColumn, const std::string& rText) {
        if (!rText.empty()) {
            Add(std::string(pColumn) + " = ?");
            Given.emplace_back(Clean(rText));
        }
    };
    AddEqual("machine", rFilter.m_Machine);
    AddEqual("configuration", rFilter.m_Configuration);
    AddEqual("rotor", rFilter.m_Rotor);
    if (rFilter.m_Since) {
        Add("started >= ?");
        Given.emplace_back(ToNumber(*rFilter.m_Since));
    }
    if (rFilter.m_Until) {
        Add("started < ?");
        Given.emplace_back(ToNumber(*rFilter.m_Until));
    }
    if (const char* const pResult = GetCondition(rFilter.m_Result)) {
        Add(pResult);
    }
    std::string Statement =
        "SELECT id, started, ended, machine, configuration, mode, rotor, driver, rebalance, state, result, "
        "saved FROM run";
    Statement.append(Conditions).append(" ORDER BY started DESC, id DESC");
    if (rFilter.m_nLimit != 0) {
        Statement.append(" LIMIT ").append(std::to_string(rFilter.m_nLimit));
    }
    const CTransaction Transaction(m_Connection, CTransaction::eReading);
    std::vector<CRunSummary> Summaries;
    for (const CRow& rRow : m_Connection.Query(Statement, Given)) {
        CRunSummary& rSummary = Summaries.emplace_back();
        rSummary.m_Id = rRow.GetInteger(0);
        rSummary.m_Started = ToMoment(rRow.GetInteger(1));
        rSummary.m_Ended = ToMoment(rRow.GetInteger(2));
        rSummary.m_Machine = rRow.GetText(3);
        rSummary.m_Configuration = rRow.GetText(4);
        rSummary.m_Mode = rRow.GetText(5);
        rSummary.m_Rotor = rRow.GetText(6);
        rSummary.m_Driver = ToDriver(rRow.GetInteger(7));
        rSummary.m_bRebalance = rRow.GetInteger(8) != 0;
        rSummary.m_State = ToState(rRow.GetInteger(9));
        rSummary.m_Result = rRow.GetText(10);
        rSummary.m_bSaved = rRow.GetInteger(11) != 0;
    }
    AddAmplitudes(Summaries);
    return Summaries;
}

void CRunStore::AddAmplitudes(std::vector<CRunSummary>& rSummaries) {
    std::map<std::int64_t, CRunSummary*> ById;
    for (CRunSummary& rSummary : rSummaries) {
        ById[rSummary.m_Id] = &rSummary;
    }
    constexpr std::size_t BATCH = 200;
    for (auto Next = ById.begin(); Next != ById.end();) {
        std::string Places;
        Values Ids;
        for (; Next != ById.end() && Ids.size() < BATCH; ++Next) {
            Places += Places.empty() ? "?" : ", ?";
            Ids.emplace_back(Next->first);
        }
        // A test that was repeated stands twice; the first and the final measurement come once.
        for (const CRow& rRow : m_Connection.Query(
                 "SELECT m.run, m.which, p.plane, p.smoothed_x, p.smoothed_y FROM run_measurement m JOIN "
                 "run_plane p ON p.run = m.run AND p.position = m.position WHERE m.run IN (" +
                     Places + ")",
                 Ids)) {
            CRunSummary& rSummary = *ById.at(rRow.GetInteger(0));
            const auto Which = static_cast<Measurement>(rRow.GetInteger(1));
            const std::int64_t Plane = rRow.GetInteger(2);
            if (Plane < 0 || Plane > 1 || (Which != Measurement::eFirst && Which != Measurement::eFinal)) {
                continue;
            }
            (Which == Measurement::eFirst ? rSummary.m_Before : rSummary.m_After)
                .at(static_cast<std::size_t>(Plane)) = std::hypot(rRow.GetDouble(3), rRow.GetDouble(4));
        }
    }
}

std::optional<CRunRecord> CRunStore::Load(std::int64_t Id) {
    const CTransaction Transaction(m_Connection, CTransaction::eReading);
    const auto Rows = m_Connection.Query(
        "SELECT machine, rotor, started, driver, rebalance, version, family, addresses, ended, state, "
        "result, "
        "saved, setup FROM run JOIN run_setup ON run_setup.run = run.id WHERE id = ?",
        {Id});
    if (Rows.empty()) {
        return std::nullopt;
    }
    const CRow& rRow = Rows[0];
    CRunRecord Record;
    Record.m_Id = Id;
    Record.m_Machine = rRow.GetText(0);
    Record.m_Rotor = rRow.GetText(1);
    Record.m_Started = ToMoment(rRow.GetInteger(2));
    Record.m_Driver = ToDriver(rRow.GetInteger(3));
    Record.m_bRebalance = rRow.GetInteger(4) != 0;
    Record.m_Version = rRow.GetText(5);
    Record.m_Family = rRow.GetText(6);
    Record.m_Addresses = ToAddresses(rRow.GetText(7));
    Record.m_Ended = ToMoment(rRow.GetInteger(8));
    Record.m_State = ToState(rRow.GetInteger(9));
    Record.m_Result = rRow.GetText(10);
    Record.m_bSaved = rRow.GetInteger(11) != 0;
    Record.m_Setup = SetupFromText(rRow.GetText(12)).value_or(CRunSetup());
    LoadMeasurements(Record);
    LoadRest(Record);
    return Record;
}

void CRunStore::LoadMeasurements(CRunRecord& rRecord) {
    std::map<std::int64_t, std::size_t> Places;
    for (const CRow& rRow :
         m_Connection.Query("SELECT position, which, time, mean_rpm, min_rpm, max_rpm FROM run_measurement "
                            "WHERE run = ? ORDER BY position",
                            {rRecord.m_Id})) {
        Places[rRow.GetInteger(0)] = rRecord.m_Measurements.size();
        CRunMeasurement& rMeasurement = rRecord.m_Measurements.emplace_back();
        rMeasurement.m_Which = ToEnum(rRow.GetInteger(1), Measurement::eFinal, Measurement::eNone);
        rMeasurement.m_Time = static_cast<std::uint64_t>(rRow.GetInteger(2));
        rMeasurement.m_MeanRpm = rRow.GetDouble(3);
        rMeasurement.m_MinRpm = rRow.GetDouble(4);
        rMeasurement.m_MaxRpm = rRow.GetDouble(5);
    }
    for (const CRow& rRow : m_Connection.Query(
             "SELECT position, plane, smoothed_x, smoothed_y, count, mean_x, mean_y, variance_x, variance_y, "
             "covariance_xy, fitted, readings FROM run_plane WHERE run = ?",
             {rRecord.m_Id})) {
        const auto Place = Places.find(rRow.GetInteger(0));
        const std::int64_t Number = rRow.GetInteger(1);
        if (Place == Places.end() || Number < 0 || Number > 1) {
            continue;
        }
        CMeasuredPlane& rPlane =
            rRecord.m_Measurements[Place->second].m_Planes.at(static_cast<std::size_t>(Number)).emplace();
        rPlane.m_Smoothed = {rRow.GetDouble(2), rRow.GetDouble(3)};
        rPlane.m_nReadings = static_cast<std::size_t>(rRow.GetInteger(4));
        rPlane.m_Mean = {rRow.GetDouble(5), rRow.GetDouble(6)};
        rPlane.m_VarianceX = rRow.GetDouble(7);
        rPlane.m_VarianceY = rRow.GetDouble(8);
        rPlane.m_CovarianceXY = rRow.GetDouble(9);
        rPlane.m_Fitted = FittingFromText(rRow.GetText(10)).value_or(CPlaneFitting());
        rPlane.m_Readings = ReadingsFromText(rRow.GetText(11)).value_or(std::vector<CArchivedReading>());
    }
}

void CRunStore::LoadRest(CRunRecord& rRecord) {
    for (const CRow& rRow : m_Connection.Query(
             "SELECT time, warning, text FROM run_warning WHERE run = ? ORDER BY position", {rRecord.m_Id})) {
        rRecord.m_Warnings.push_back({static_cast<std::uint64_t>(rRow.GetInteger(0)),
                                      static_cast<std::uint32_t>(rRow.GetInteger(1)), rRow.GetText(2)});
    }
    for (const CRow& rRow : m_Connection.Query(
             "SELECT plane, x, y, variance_x, variance_y, covariance_xy, amplitude, at_most_95 FROM "
             "run_prediction WHERE run = ? AND plane BETWEEN 0 AND 1",
             {rRecord.m_Id})) {
        rRecord.m_Prediction.at(static_cast<std::size_t>(rRow.GetInteger(0))) =
            CPlanePrediction{{rRow.GetDouble(1), rRow.GetDouble(2)},
                             rRow.GetDouble(3),
                             rRow.GetDouble(4),
                             rRow.GetDouble(5),
                             rRow.GetDouble(6),
                             rRow.GetDouble(7)};
    }
    for (const CRow& rRow : m_Connection.Query(
             "SELECT rpm, inv_a, ua_1, ua_2, reference_1, reference_2 FROM run_calibration WHERE run = ?",
             {rRecord.m_Id})) {
        const auto InvA = PreBalDB::MatrixFromText(rRow.GetText(1));
        if (!InvA) {
            continue;
        }
        CRunCalibration& rCalibration = rRecord.m_Calibration.emplace();
        rCalibration.m_Rpm = static_cast<std::uint32_t>(rRow.GetInteger(0));
        rCalibration.m_InvA = *InvA;
        rCalibration.m_ReferenceWeight = {rRow.GetDouble(4), rRow.GetDouble(5)};
        for (const std::size_t Column : {2U, 3U}) {
            if (const auto UA = PreBalDB::MatrixFromText(rRow.GetText(Column))) {
                rCalibration.m_UA.push_back(*UA);
            }
        }
    }
}

std::vector<std::string> CRunStore::LoadNames(const char* pColumn) {
    std::vector<std::string> Names;
    for (const CRow& rRow :
         m_Connection.Query(std::string("SELECT DISTINCT ") + pColumn + " FROM run ORDER BY 1")) {
        if (std::string Name = rRow.GetText(0); !Name.empty()) {
            Names.push_back(std::move(Name));
        }
    }
    return Names;
}

std::vector<std::string> CRunStore::GetMachines() {
    return LoadNames("machine");
}

std::vector<std::string> CRunStore::GetRotors() {
    return LoadNames("rotor");
}

std::vector<std::string> CRunStore::GetPictures(std::int64_t Id) {
    std::vector<std::string> Names;
    for (const CRow& rRow :
         m_Connection.Query("SELECT name FROM run_picture WHERE run = ? ORDER BY name", {Id})) {
        Names.push_back(rRow.GetText(0));
    }
    return Names;
}

std::optional<std::vector<unsigned char>> CRunStore::LoadPicture(std::int64_t Id, const std::string& rName) {
    const auto Rows =
        m_Connection.Query("SELECT png FROM run_picture WHERE run = ? AND name = ?", {Id, Clean(rName)});
    return Rows.empty() ? std::nullopt : BytesFromText(Rows[0].GetText(0));
}

void CRunStore::ForEachBatch(std::span<const std::int64_t> Ids, const std::vector<const char*>& rStatements) {
    constexpr std::size_t BATCH = 100;
    for (std::size_t Done = 0; Done < Ids.size(); Done += BATCH) {
        CTransaction Transaction(m_Connection, CTransaction::eWriting);
        for (const std::int64_t Id : Ids.subspan(Done, std::min(BATCH, Ids.size() - Done))) {
            for (const char* const pStatement : rStatements) {
                m_Connection.Execute(pStatement, {Id});
            }
        }
        Transaction.Commit();
    }
}

void CRunStore::Remove(std::span<const std::int64_t> Ids) {
    ForEachBatch(Ids, {"DELETE FROM run WHERE id = ?"});
}

void CRunStore::RemoveReadings(std::span<const std::int64_t> Ids) {
    ForEachBatch(
        Ids, {"UPDATE run_plane SET readings = '' WHERE run = ?", "DELETE FROM run_picture WHERE run = ?"});
}
