#include "console/runreport.h"

#include <algorithm>
#include <array>
#include <utility>

#include "archive/fixeddate.h"
#include "console/recordjson.h"
#include "contract/units.h"
#include "platform/rvldb/gettext.h"
#include "platform/system/files.h"
#include "platform/system/version.h"

#include "console/configurationjson.h"

namespace {

using Json = nlohmann::ordered_json;

constexpr std::array<const char*, 11> STEP_NAMES = {
    "Inactive",     "Parameter",    "ParameterWithReBal", "Setup",           "ReBalActive",     "Failure",
    "SetupAborted", "SetupSuccess", "RebalSuccess",       "SetupOverTarget", "RebalOverTarget",
};

}  // namespace

const char* CRunReport::StepToString(std::int32_t Step) {
    return Step >= 0 && static_cast<std::size_t>(Step) < STEP_NAMES.size()
               ? STEP_NAMES[static_cast<std::size_t>(Step)]
               : "undefined";
}

bool CRunReport::AddSituation(std::uint64_t TimeMs, const CSituation& rSituation) {
    if (!rSituation.m_bRunning) {
        m_Last.reset();
        return false;
    }
    const CPreBalProgress& rProgress = rSituation.m_Progress;
    if (m_Last && m_Last->m_Progress.m_State == rProgress.m_State &&
        m_Last->m_Progress.m_Step == rProgress.m_Step && m_Last->m_Menu == rSituation.m_Menu &&
        m_Last->m_Warning == rSituation.m_Warning && m_Last->m_Notification == rSituation.m_Notification) {
        return false;
    }
    m_Last = rSituation;
    m_LastStep = rSituation.m_Notification.GetStep();
    m_Steps.push_back({
        {"t_ms", TimeMs},
        {"step", rProgress.m_Step},
        {"of", rProgress.m_NumberOfSteps},
        {"instruction", rProgress.m_Instruction},
        {"warning", rSituation.m_Warning},
        {"menu", rSituation.m_Menu},
        {"notification", rSituation.m_Notification.m_Values},
    });
    return true;
}

nlohmann::ordered_json CRunReport::ReadingsToJson(const CSituation& rSituation) {
    Json Readings = Json::array();
    for (const CPreBalProgress::CReading& rReading : rSituation.m_Progress.m_Readings) {
        if (rReading.m_bShown) {
            Readings.push_back({{"amplitude", rReading.m_Amplitude}, {"angle_deg", rReading.m_AngleDeg}});
        }
    }
    return Readings;
}

void CRunReport::SetInitial(const CSituation& rSituation) {
    if (m_Initial.empty()) {
        m_Initial = ReadingsToJson(rSituation);
    }
}

void CRunReport::SetFinal(const CSituation& rSituation) {
    m_Final = ReadingsToJson(rSituation);
    // What the verdict rests on: another console may have stored another target since.
    m_Target = rSituation.m_Progress.m_TargetUnbalance;
}

nlohmann::ordered_json& CRunReport::GetPositions(std::size_t Plane) {
    while (m_Positions.size() <= Plane) {
        m_Positions.push_back(Json::object());
    }
    return m_Positions[Plane];
}

void CRunReport::SetWeights(std::size_t Plane, const std::vector<int>& rAngles) {
    GetPositions(Plane) = {{"weights", rAngles}};
}

void CRunReport::SetScrews(std::size_t Plane, const std::vector<CRotorScrew>& rScrews) {
    Json Screws = Json::array();
    for (const CRotorScrew& rScrew : rScrews) {
        Screws.push_back({{"hole", rScrew.m_Hole}, {"grams", rScrew.m_Grams}});
    }
    GetPositions(Plane) = {{"screws", Screws}};
}

void CRunReport::SetCalibration(const std::string& rConfiguration, std::uint32_t CalibratedRPM,
                                const math::matrix<double>& rInvA,
                                const std::vector<math::matrix<double>>& rUA) {
    m_Configuration = rConfiguration;
    m_CalibratedRPM = CalibratedRPM;
    m_InvA = MatrixToJson(rInvA);
    m_UA = Json::array();
    for (const math::matrix<double>& rVector : rUA) {
        for (std::uint32_t i = 0; i < rVector.RowNo(); ++i) {
            m_UA.push_back(Json::array({rVector(i, 0)}));
        }
    }
}

std::string CRunReport::GetResult() const {
    return StepToString(m_LastStep);
}

ExitCode CRunReport::GetExitCode() const {
    if (!m_bFinished || !m_bSaved) {
        return eExitFailed;
    }
    switch (m_LastStep) {
        case CPreBalCodes::eSetupSuccess:
        case CPreBalCodes::eRebalSuccess:
            return eExitWithinTarget;
        case CPreBalCodes::eSetupOverTarget:
        case CPreBalCodes::eRebalOverTarget:
            return eExitOverTarget;
        default:
            return eExitFailed;
    }
}

void CRunReport::SetRecords(std::vector<CRunRecord> Records, const CRunAdvice& rAdvice) {
    m_Records = std::move(Records);
    m_Advice = rAdvice;
}

CRunReport CRunReport::FromRecord(const CRunRecord& rRecord, const CRunAdvice& rAdvice) {
    CRunReport Report;
    Report.SetProcedure(rRecord.m_bRebalance ? "rebalance" : "prebalance");
    const auto Step = std::ranges::find(STEP_NAMES, rRecord.m_Result);
    if (Step != STEP_NAMES.end()) {
        Report.m_LastStep = static_cast<std::int32_t>(Step - STEP_NAMES.begin());
    }
    Report.m_bFinished = rRecord.m_State == CRunRecord::State::eFinished;
    Report.m_bSaved = rRecord.m_bSaved;
    Report.m_Configuration = rRecord.m_Setup.m_Configuration;
    Report.m_Target = rRecord.m_Setup.m_TargetUnbalance;
    if (const CRunMeasurement* const pFirst = rRecord.Find(Measurement::eFirst)) {
        Report.m_Initial = RecordJson::MakeReadings(*pFirst);
    }
    if (const CRunMeasurement* const pFinal = rRecord.Find(Measurement::eFinal)) {
        Report.m_Final = RecordJson::MakeReadings(*pFinal);
    }
    if (rRecord.m_Calibration) {
        Report.SetCalibration(rRecord.m_Setup.m_Configuration, rRecord.m_Calibration->m_Rpm,
                              rRecord.m_Calibration->m_InvA, rRecord.m_Calibration->m_UA);
    }
    Report.m_Positions = RecordJson::MakePositions(rRecord);
    Report.SetRecords({rRecord}, rAdvice);
    return Report;
}

void CRunReport::AddRecords(nlohmann::ordered_json& rJson) const {
    if (m_Records.empty()) {
        return;
    }
    const CRunRecord& rLast = m_Records.back();
    rJson["started"] = RecordJson::WriteInstant(m_bFixedDate ? FIXED_DATE : m_Records.front().m_Started);
    rJson["machine"] = rLast.m_Machine;
    rJson["module"] = RecordJson::MakeModule(rLast);
    rJson["set"] = RecordJson::MakeSet(rLast);
    rJson["rotor"] = rLast.m_Rotor;
    rJson["measurements"] = RecordJson::MakeMeasurements(m_Records);
    const std::initializer_list<std::pair<const char*, Json>> Computed = {
        {"quality", RecordJson::MakeQuality(m_Advice)},
        {"prediction", RecordJson::MakePrediction(rLast, m_Advice)},
        {"explanation", RecordJson::MakeExplanation(m_Advice)},
        {"iso", RecordJson::MakeIso(rLast)}};
    for (const auto& [pName, rValue] : Computed) {
        if (!rValue.is_null()) {
            rJson[pName] = rValue;
        }
    }
}

nlohmann::ordered_json CRunReport::ToJson() const {
    Json Report = {
        {"procedure", m_Procedure},
        {"result", GetResult()},
        {"exit", static_cast<int>(GetExitCode())},
        {"configuration", m_Configuration},
        {"calibrated_rpm", m_CalibratedRPM},
        {"target", m_Target},
        {"initial", m_Initial},
        {"final", m_Final},
        {"inv_a", m_InvA},
        {"ua", m_UA},
        {"positions", m_Positions},
        {"steps", m_Steps},
        {"assertions", m_Assertions},
        {"saved", m_bSaved},
        {"delivered", m_bDelivered || !m_bSaved},
        {"version", GetProjectVersion()},
        {"language", GetLanguage()},
        {"unit", Units::UNBALANCE},
    };
    AddRecords(Report);
    return Report;
}

bool CRunReport::Write(const std::string& rPath) const {
    // Names come from people and files: what is no UTF-8 in them is replaced.
    constexpr int INDENT = 2;
    const std::string Text = ToJson().dump(INDENT, ' ', false, Json::error_handler_t::replace) + '\n';
    // In one step: whoever reads it finds a whole report, also if the power fails or the disk is full.
    return Files::WriteAll(rPath, {Text.begin(), Text.end()});
}
