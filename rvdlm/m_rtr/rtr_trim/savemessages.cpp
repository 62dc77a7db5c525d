#include "rvdlm/m_rtr/rtr_trim/savemessages.h"

#include <algorithm>
#include <iterator>
#include <vector>

#include "platform/rvldb/gettext.h"
#include "platform/rvmdb/configurationfields.h"
#include "platform/window/messagebox.h"

using PreBalDB::CStoreOutcome;
using PreBalDB::StoreFailure;

namespace SaveMessages {

namespace {

/// Null for a cause that the store's own words tell best.
const char* GetCauseKey(StoreFailure Cause) {
    switch (Cause) {
        case StoreFailure::eFull:
            return "STORE_FULL";
        case StoreFailure::eReadOnly:
            return "STORE_READ_ONLY";
        case StoreFailure::eLocked:
            return "STORE_LOCKED";
        case StoreFailure::eUnreachable:
            return "STORE_UNREACHABLE";
        case StoreFailure::eNoAnswer:
            return "STORE_NO_ANSWER";
        case StoreFailure::eOther:
        case StoreFailure::eRefused:
            break;
    }
    return nullptr;
}

std::string DescribeFailure(const CStoreOutcome& rOutcome) {
    const char* const pKey = GetCauseKey(rOutcome.m_Cause);
    return pKey == nullptr ? rOutcome.m_Failure : GetText(pKey) + " (" + rOutcome.m_Failure + ")";
}

std::string Join(const std::vector<std::string>& rTexts) {
    std::string Text;
    for (const std::string& rText : rTexts) {
        Text += (Text.empty() ? "" : ", ") + rText;
    }
    return Text;
}

/// The text of the key with its first "%s" replaced by rName, its second one by rDetail.
void Show(const char* pKey, const std::string& rName, const std::string& rDetail = {}) {
    std::string Text = GetText(pKey);
    std::size_t Position = 0;
    for (const std::string* const pPart : {&rName, &rDetail}) {
        Position = Text.find("%s", Position);
        if (Position == std::string::npos) {
            break;
        }
        Text.replace(Position, 2, *pPart);
        Position += pPart->size();
    }
    ShowMessageBox(Text, GetText("ERROR"));
}

void TellSaving(const char* pFailureKey, const std::string& rName, const CStoreOutcome& rOutcome) {
    if (!rOutcome.m_Failure.empty()) {
        Show(pFailureKey, rName, DescribeFailure(rOutcome));
    } else if (rOutcome.m_bCalibrationLost) {
        Show("RESULT_SUPERSEDED", rName);
    } else if (!rOutcome.m_Conflicts.empty()) {
        std::vector<std::string> Labels;
        std::ranges::transform(rOutcome.m_Conflicts, std::back_inserter(Labels),
                               PreBalDB::ConfigurationFields::GetLabel);
        Show("STORED_VALUES_STAY", rName, Join(Labels));
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

void TellReading(const std::string& rConfiguration, const CStoreOutcome& rOutcome) {
    if (!rOutcome.m_Failure.empty()) {
        Show("CONFIGURATION_NOT_READ", rConfiguration, DescribeFailure(rOutcome));
    } else if (!rOutcome.m_Problems.empty()) {
        Show("VALUES_LEFT_OUT", rConfiguration, Join(rOutcome.m_Problems));
    }
}

}  // namespace SaveMessages
