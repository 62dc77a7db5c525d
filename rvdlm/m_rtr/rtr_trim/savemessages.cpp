#include "rvdlm/m_rtr/rtr_trim/savemessages.h"

#include <algorithm>
#include <iterator>
#include <vector>

#include "platform/rvldb/gettext.h"
#include "platform/rvmdb/configurationfields.h"
#include "platform/rvmdb/storetexts.h"
#include "platform/window/messagebox.h"

using PreBalDB::CStoreOutcome;
namespace StoreTexts = PreBalDB::StoreTexts;

namespace SaveMessages {

namespace {

void Show(const char* pKey, const std::vector<std::string>& rArguments) {
    ShowMessageBox(StoreTexts::Fill(pKey, rArguments), GetText("ERROR"));
}

void TellSaving(const char* pFailureKey, const std::string& rName, const CStoreOutcome& rOutcome) {
    if (!rOutcome.m_Failure.empty()) {
        Show(pFailureKey, {rName, StoreTexts::GetCause(rOutcome)});
    } else if (rOutcome.m_bCalibrationLost) {
        Show("RESULT_SUPERSEDED", {rName});
    } else if (!rOutcome.m_Conflicts.empty()) {
        std::vector<std::string> Labels;
        std::ranges::transform(rOutcome.m_Conflicts, std::back_inserter(Labels),
                               PreBalDB::ConfigurationFields::GetLabel);
        Show("STORED_VALUES_STAY", {rName, StoreTexts::Join(Labels)});
    }
}

}  // namespace

void TellResult(const std::string& rConfiguration, const CStoreOutcome& rOutcome, bool bAgain) {
    TellSaving(bAgain ? "RESULT_STILL_NOT_SAVED" : "RESULT_NOT_SAVED", rConfiguration, rOutcome);
}

void TellConfiguration(const std::string& rConfiguration, const CStoreOutcome& rOutcome) {
    TellSaving("CONFIGURATION_NOT_SAVED", rConfiguration, rOutcome);
}

void TellScrewTable(const std::string& rTable, const CStoreOutcome& rOutcome) {
    TellSaving("SCREW_TABLE_NOT_SAVED", rTable, rOutcome);
}

void TellNaming(const std::string& rName, const std::string& rFormer, const CStoreOutcome& rOutcome) {
    if (!rOutcome.m_Failure.empty()) {
        ShowMessageBox(StoreTexts::GetNaming(rName, rFormer, rOutcome), GetText("ERROR"));
    }
}

void TellReading(const std::string& rConfiguration, const CStoreOutcome& rOutcome) {
    if (!rOutcome.m_Failure.empty()) {
        Show("CONFIGURATION_NOT_READ", {rConfiguration, StoreTexts::GetCause(rOutcome)});
    } else if (!rOutcome.m_Problems.empty()) {
        Show("VALUES_LEFT_OUT", {rConfiguration, StoreTexts::GetProblems(rOutcome)});
    }
}

void TellNames(const CStoreOutcome& rOutcome) {
    if (!rOutcome.m_Problems.empty()) {
        Show("NAMES_LEFT_OUT", {StoreTexts::Join(rOutcome.m_Problems)});
    }
}

}  // namespace SaveMessages
