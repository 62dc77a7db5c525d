#include "console/commission.h"

#include <QString>
#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string_view>

#include "console/sessionerror.h"
#include "platform/rvldb/gettext.h"
#include "platform/rvmdb/configurationfields.h"
#include "platform/rvmdb/recordfields.h"

using PreBalDB::CCompensationTableEntry;
using PreBalDB::CPreBalDatabase;
using PreBalDB::CProperty;
using PreBalDB::CTypeBase;

namespace {

/// The screw table of COptions::m_ScrewTable.
constexpr const char* SCREW_TABLE = "Rotor";

CTypeBase::Direction ToDirection(CRotorFile::Sense Value) {
    return Value == CRotorFile::eClockwise ? CTypeBase::eClockwise : CTypeBase::eCounterClockwise;
}

/// The same rotation from the rotor's other end.
CTypeBase::Direction TurnAround(CTypeBase::Direction Value) {
    return Value == CTypeBase::eClockwise ? CTypeBase::eCounterClockwise : CTypeBase::eClockwise;
}

bool IsForPeople(const std::string& rField) {
    const CProperty* const pProperty = PreBalDB::ConfigurationFields::FindProperty(rField);
    return pProperty != nullptr && pProperty->IsForPeople();
}

bool HasScrews(const PreBalDB::CPreBalBaseTableEntry& rEntry) {
    const PreBalDB::CSinglePlaneBalancingTableEntry* const pPlane = rEntry.GetSinglePlane();
    const PreBalDB::CTwoPlaneBalancingTableEntry* const pPlanes = rEntry.GetTwoPlane();
    return (pPlane != nullptr && pPlane->GetUsedCompensationMethod() == CCompensationTableEntry::eScrews) ||
           (pPlanes != nullptr &&
            (pPlanes->GetPlane1UsedCompensationMethod() == CCompensationTableEntry::eScrews ||
             pPlanes->GetPlane2UsedCompensationMethod() == CCompensationTableEntry::eScrews));
}

/// The fields that people set and that differ. One that only one of the two has belongs to means that the
/// other doesn't use, and is told as the method of that plane.
std::vector<std::string> FindDifferences(const PreBalDB::CFieldValues& rStored,
                                         const PreBalDB::CFieldValues& rWanted) {
    std::vector<std::string> Fields;
    const auto Add = [&](const std::string& rField) {
        if (std::find(Fields.begin(), Fields.end(), rField) == Fields.end()) {
            Fields.push_back(rField);
        }
    };
    for (const auto& [rField, rValue] : rWanted) {
        const auto Stored = rStored.find(rField);
        if (!IsForPeople(rField)) {
            continue;
        }
        if (Stored == rStored.end()) {
            Add(rField.substr(0, rField.rfind('.')) + ".method");
        } else if (Stored->second != rValue) {
            Add(rField);
        }
    }
    return Fields;
}

std::string JoinLabels(const std::vector<std::string>& rFields) {
    std::string Labels;
    for (const std::string& rField : rFields) {
        Labels += (Labels.empty() ? "" : ", ") + PreBalDB::ConfigurationFields::GetLabel(rField);
    }
    return Labels;
}

/// The pages hold a number of holes to its range: screws would go to another ring than the rotor's.
void RefuseRing(int nHoles) {
    const auto& rFields = PreBalDB::CConfigurationFields::Of<PreBalDB::CScrewCompensationTableEntry>();
    const auto Holes = std::ranges::find_if(
        rFields, [](const auto& rField) { return std::string_view(rField.m_Property.m_pName) == "holes"; });
    const CProperty::CRange Range = Holes->m_Property.m_Range.value();
    if (nHoles < Range.m_Min || nHoles > Range.m_Max) {
        throw CSessionError(
            "--rotor: a ring of " + std::to_string(nHoles) + " holes can't be balanced with screws: " +
            std::to_string(std::lround(Range.m_Min)) + " to " + std::to_string(std::lround(Range.m_Max)) +
            " can; give \"holes\" one of these, or balance "
            "with --method weights");
    }
}

/// A run with another configuration than its rotor's would balance to the wrong places.
void RefuseUnwritten(const CPreBalDatabase& rDatabase, int bWritten) {
    if (bWritten == 0) {
        throw std::runtime_error("The configuration can't be set up for this rotor: " +
                                 rDatabase.GetOutcome().m_Failure);
    }
}

/// True if the table was another one.
bool WriteScrewTable(CPreBalDatabase& rDatabase, const std::vector<double>& rWeights) {
    Base::CWDArray<PreBalDB::CScrew> Screws;
    for (const double Weight : rWeights) {
        const PreBalDB::CScrew Nameless("", Weight);
        Screws.Add({Nameless.GetWeightAsString() + " g", Weight});
    }
    PreBalDB::CScrewTableEntry& rTable = rDatabase.ReadScrewTable(SCREW_TABLE);
    if (rTable.GetScrewArray() == Screws) {
        return false;
    }
    rTable.SetScrewArray(Screws);
    RefuseUnwritten(rDatabase, rDatabase.WriteScrewTable());
    return true;
}

}  // namespace

bool CCommission::IsNew(const PreBalDB::CPreBalBaseTableEntry& rEntry) {
    if (rEntry.IsCalibrated() != 0 || HasScrews(rEntry)) {
        return false;
    }
    const PreBalDB::CFieldValues& rDefaults = PreBalDB::ConfigurationFields::GetDefaults();
    const PreBalDB::CFieldValues Values = PreBalDB::ConfigurationFields::Read(rEntry);
    return std::all_of(Values.begin(), Values.end(), [&](const auto& rField) {
        return !IsForPeople(rField.first) || rDefaults.at(rField.first) == rField.second;
    });
}

CCommission::COutcome CCommission::SetUp(const std::string& rMachine,
                                         const std::string& rConfiguration) const {
    CPreBalDatabase Database(rMachine);
    // First: reading a table invalidates the configuration that was read.
    const bool bTable =
        !m_rOptions.m_ScrewTable.empty() && WriteScrewTable(Database, m_rOptions.m_ScrewTable);
    PreBalDB::CPreBalBaseTableEntry& rEntry = Database.ReadConfiguration(rConfiguration);
    const bool bSetUp = m_rOptions.m_bCommission || IsNew(rEntry);
    const PreBalDB::CFieldValues Stored = PreBalDB::ConfigurationFields::Read(rEntry);
    Apply(rEntry);
    const std::vector<std::string> Fields =
        FindDifferences(Stored, PreBalDB::ConfigurationFields::Read(rEntry));
    if (Fields.empty() && !bTable && !m_rOptions.m_bCommission) {
        return {};
    }
    if (!bSetUp) {
        RefuseOtherMeans(rConfiguration, Fields);
        const QString Line =
            QString::fromStdString(GetText("CONSOLE_DISAGREES"))
                .arg(QString::fromStdString(rConfiguration), QString::fromStdString(JoinLabels(Fields)));
        return {bTable, Fields.empty() ? std::string() : Line.toStdString()};
    }
    rEntry.SetIsCalibrated(0);
    RefuseUnwritten(Database, Database.WriteConfiguration());
    return {true, {}};
}

void CCommission::RefuseOtherMeans(const std::string& rConfiguration,
                                   const std::vector<std::string>& rFields) const {
    const auto Ends = [&](std::string_view End) {
        return std::any_of(rFields.begin(), rFields.end(),
                           [End](const std::string& rField) { return rField.ends_with(End); });
    };
    const char* pOption = nullptr;
    if (!m_rOptions.m_Methods.empty() && Ends(".method")) {
        pOption = "--method";
    } else if (m_rOptions.m_nScrews != 0 && Ends(".number_of_screws")) {
        pOption = "--screws";
    }
    if (pOption != nullptr) {
        throw CSessionError(std::string(pOption) + ": the configuration \"" + rConfiguration +
                            "\" is set otherwise (" + JoinLabels(rFields) +
                            "); leave the option out to run as configured, or give --commission to set it up "
                            "anew, which clears its calibration");
    }
}

void CCommission::Apply(PreBalDB::CPreBalBaseTableEntry& rEntry) const {
    if (m_Mode == CPreBalDatabase::eModeTwoPlane) {
        ApplyTwoPlane(rEntry);
    } else {
        ApplySinglePlane(rEntry);
    }
}

void CCommission::ApplySinglePlane(PreBalDB::CPreBalBaseTableEntry& rEntry) const {
    const bool bPlane2 = m_Mode == CPreBalDatabase::eModePlane2;
    const CTypeBase::Direction Rotation = ToDirection(m_rRotor.m_Rotation);
    PreBalDB::CSinglePlaneBalancingTableEntry& rPlane = rEntry.CreateSinglePlane();
    // The rotor file tells the rotation as seen from plane 1's end.
    rPlane.SetRotationDirection(bPlane2 ? TurnAround(Rotation) : Rotation);
    const CRotorFile::CRotorPlane& rRotorPlane = m_rRotor.m_Planes.at(bPlane2 ? 1 : 0);
    if (UsesScrews(0, rPlane.GetUsedCompensationMethod())) {
        ApplyScrews(rPlane.CreateScrewCompensationTableEntry(), rRotorPlane);
    } else {
        rPlane.CreateWeightCompensationTableEntry().SetScalingDirection(ToDirection(rRotorPlane.m_Scale));
    }
}

void CCommission::ApplyTwoPlane(PreBalDB::CPreBalBaseTableEntry& rEntry) const {
    PreBalDB::CTwoPlaneBalancingTableEntry& rPlanes = rEntry.CreateTwoPlane();
    rPlanes.SetRotationDirection(ToDirection(m_rRotor.m_Rotation));
    const CRotorFile::CRotorPlane& rPlane1 = m_rRotor.m_Planes.front();
    const CRotorFile::CRotorPlane& rPlane2 = m_rRotor.m_Planes.back();
    if (UsesScrews(0, rPlanes.GetPlane1UsedCompensationMethod())) {
        ApplyScrews(rPlanes.CreatePlane1ScrewCompensationTableEntry(), rPlane1);
    } else {
        rPlanes.CreatePlane1WeightCompensationTableEntry().SetScalingDirection(ToDirection(rPlane1.m_Scale));
    }
    if (UsesScrews(1, rPlanes.GetPlane2UsedCompensationMethod())) {
        ApplyScrews(rPlanes.CreatePlane2ScrewCompensationTableEntry(), rPlane2);
    } else {
        rPlanes.CreatePlane2WeightCompensationTableEntry().SetScalingDirection(ToDirection(rPlane2.m_Scale));
    }
}

void CCommission::ApplyScrews(PreBalDB::CScrewCompensationTableEntry& rScrews,
                              const CRotorFile::CRotorPlane& rPlane) const {
    RefuseRing(rPlane.m_Holes);
    rScrews.SetScalingDirection(ToDirection(rPlane.m_Scale));
    rScrews.SetNumberOfHoles(static_cast<std::uint32_t>(rPlane.m_Holes));
    if (m_rOptions.m_nScrews != 0) {
        rScrews.SetNumberOfScrews(static_cast<std::uint8_t>(m_rOptions.m_nScrews));
    }
    if (!m_rOptions.m_ScrewTable.empty()) {
        rScrews.SetScrewTableName(SCREW_TABLE);
    }
}

bool CCommission::UsesScrews(std::size_t Plane, CCompensationTableEntry::CompensationMethod Used) const {
    const std::vector<std::string>& rMethods = m_rOptions.m_Methods;
    return rMethods.empty() ? Used == CCompensationTableEntry::eScrews
                            : rMethods.at(std::min(Plane, rMethods.size() - 1)) == "screws";
}
