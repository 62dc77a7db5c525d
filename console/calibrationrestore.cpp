#include "console/calibrationrestore.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <vector>

#include "console/configurationjson.h"
#include "platform/rvldb/gettext.h"
#include "platform/rvmdb/directsql.h"
#include "platform/rvmdb/prebaldatabase.h"
#include "platform/rvmdb/storetexts.h"

using PreBalDB::StoreTexts::Fill;

namespace {

using Json = nlohmann::ordered_json;
using PreBalDB::CProperty;
using PreBalDB::CRecordLayout;

/// The properties of the role by their names, each once.
std::vector<std::string> GetBasis() {
    std::vector<std::string> Names;
    for (const CRecordLayout& rLayout : PreBalDB::ConfigurationFields::GetLayouts()) {
        for (const CProperty* const pProperty : rLayout.m_Properties) {
            if (pProperty->m_Role == CProperty::Role::eBasis &&
                std::ranges::find(Names, pProperty->m_pName) == Names.end()) {
                Names.emplace_back(pProperty->m_pName);
            }
        }
    }
    return Names;
}

/// Names of what the calibration rests on and what differs.
std::string FindDifferences(const Json& rThen, const Json& rNow) {
    std::string Differences;
    const auto Compare = [&Differences](const Json& rLeft, const Json& rRight, const std::string& rWhere) {
        for (const std::string& rName : GetBasis()) {
            if (rLeft.value(rName, Json()) != rRight.value(rName, Json())) {
                Differences += Differences.empty() ? "" : ", ";
                Differences += rWhere;
                Differences += rName;
            }
        }
    };
    Compare(rThen, rNow, "");
    const Json ThenPlanes = rThen.value("planes", Json::array());
    const Json NowPlanes = rNow.value("planes", Json::array());
    if (ThenPlanes.size() != NowPlanes.size()) {
        return "planes";
    }
    for (std::size_t i = 0; i < ThenPlanes.size(); ++i) {
        Compare(ThenPlanes[i], NowPlanes[i], "planes[" + std::to_string(i) + "].");
    }
    return Differences;
}

}  // namespace

bool CCalibrationRestore::IsConfigurationThere() const {
    PreBalDB::CDirectSQL Connection(PreBalDB::GetDatabaseConnection());
    return Connection.HasTable("configuration") &&
           !Connection
                .Query("SELECT 1 FROM configuration WHERE machine = ? AND name = ?",
                       {m_rRun.m_Machine, m_rRun.m_Setup.m_Configuration})
                .empty();
}

std::string CCalibrationRestore::FindObstacle() const {
    const std::string Number = std::to_string(m_rRun.m_Id);
    if (!m_rRun.m_Calibration) {
        return Fill("ARCHIVE_COMMAND_NO_CALIBRATION", {Number});
    }
    const std::string& rName = m_rRun.m_Setup.m_Configuration;
    if (!IsConfigurationThere()) {
        return Fill("ARCHIVE_COMMAND_CONFIGURATION_GONE", {rName, m_rRun.m_Machine});
    }
    PreBalDB::CPreBalDatabase Database(m_rRun.m_Machine);
    const PreBalDB::CPreBalBaseTableEntry& rEntry = Database.ReadConfiguration(rName);
    const Json Then = Json::parse(m_rRun.m_Setup.m_Properties, nullptr, false);
    const Json Now = ConfigurationToJson(m_rRun.m_Machine, m_rRun.m_Setup.m_Mode, rName,
                                         PreBalDB::ConfigurationFields::Read(rEntry));
    const std::string Differences = Then.is_object() ? FindDifferences(Then, Now) : "properties";
    return Differences.empty() ? std::string() : Fill("ARCHIVE_COMMAND_BASIS_DIFFERS", {rName, Differences});
}

std::string CCalibrationRestore::Restore() const {
    const CRunCalibration& rCalibration = m_rRun.m_Calibration.value();
    PreBalDB::CPreBalDatabase Database(m_rRun.m_Machine);
    PreBalDB::CPreBalBaseTableEntry& rEntry = Database.ReadConfiguration(m_rRun.m_Setup.m_Configuration);
    const auto& rWeights = rCalibration.m_ReferenceWeight;
    if (PreBalDB::CTwoPlaneBalancingTableEntry* const pPlanes = rEntry.GetTwoPlane()) {
        pPlanes->SetInvA(rCalibration.m_InvA);
        pPlanes->SetUAPlane1(rCalibration.m_UA.at(0));
        pPlanes->SetUAPlane2(rCalibration.m_UA.at(1));
        if (pPlanes->GetPlane1ScrewCompensationTableEntry() != nullptr && rWeights[0] > 0.0) {
            pPlanes->CreatePlane1ScrewCompensationTableEntry().SetReferenceWeight(rWeights[0]);
        }
        if (pPlanes->GetPlane2ScrewCompensationTableEntry() != nullptr && rWeights[1] > 0.0) {
            pPlanes->CreatePlane2ScrewCompensationTableEntry().SetReferenceWeight(rWeights[1]);
        }
    } else if (PreBalDB::CSinglePlaneBalancingTableEntry* const pPlane = rEntry.GetSinglePlane()) {
        pPlane->SetInvA(rCalibration.m_InvA);
        pPlane->SetUA(rCalibration.m_UA.at(0));
        const double Grams = rWeights[0] + rWeights[1];  // one of them, whichever plane it is
        if (pPlane->GetScrewCompensationTableEntry() != nullptr && Grams > 0.0) {
            pPlane->CreateScrewCompensationTableEntry().SetReferenceWeight(Grams);
        }
    }
    rEntry.SetCalibratedRPM(rCalibration.m_Rpm);
    rEntry.SetCalibrationDateTime(m_rRun.m_Ended);
    rEntry.SetIsCalibrated(1);
    if (Database.WriteConfiguration() == 0) {
        return Database.GetOutcome().m_Failure;
    }
    return Database.GetOutcome().m_bCalibrationLost ? GetText("ARCHIVE_COMMAND_CHANGED_MEANWHILE")
                                                    : std::string();
}
