#include "platform/rvmdb/storetexts.h"

#include "platform/rvldb/gettext.h"
#include "platform/rvmdb/configurationfields.h"

namespace PreBalDB::StoreTexts {

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
        default:
            return nullptr;
    }
}

}  // namespace

std::string Fill(const char* pKey, const std::vector<std::string>& rArguments) {
    std::string Text = GetText(pKey);
    std::size_t Position = 0;
    for (const std::string& rArgument : rArguments) {
        Position = Text.find("%s", Position);
        if (Position == std::string::npos) {
            break;
        }
        Text.replace(Position, 2, rArgument);
        Position += rArgument.size();
    }
    return Text;
}

std::string Join(const std::vector<std::string>& rTexts) {
    std::string Text;
    for (const std::string& rText : rTexts) {
        Text += (Text.empty() ? "" : ", ") + rText;
    }
    return Text;
}

std::string GetCause(const CStoreOutcome& rOutcome) {
    const char* const pKey = GetCauseKey(rOutcome.m_Cause);
    return pKey == nullptr ? rOutcome.m_Failure : GetText(pKey) + " (" + rOutcome.m_Failure + ")";
}

std::string GetNaming(const std::string& rName, const std::string& rFormer, const CStoreOutcome& rOutcome) {
    const std::string Longest = std::to_string(LONGEST_NAME);
    switch (rOutcome.m_Cause) {
        case StoreFailure::eNoName:
            return Fill("NAME_EMPTY", {Longest, rFormer});
        case StoreFailure::eNameTooLong:
            return Fill("NAME_TOO_LONG", {rName, Longest, rFormer});
        case StoreFailure::eNameNotText:
            return Fill("NAME_NOT_TEXT", {rFormer});
        case StoreFailure::eNameTaken:
            return Fill("NAME_TAKEN", {rName, rFormer});
        default:
            return Fill("NAME_NOT_STORED", {rName, GetCause(rOutcome), rFormer});
    }
}

std::string GetDeletion(const std::string& rName, const CStoreOutcome& rOutcome) {
    switch (rOutcome.m_Cause) {
        case StoreFailure::eDefault:
            return Fill("DELETE_DEFAULT", {rName});
        case StoreFailure::eInUse:
            return Fill("DELETE_IN_USE", {rName, Join(rOutcome.m_Users)});
        case StoreFailure::eMissing:
            return Fill("DELETE_MISSING", {rName});
        default:
            return Fill("DELETE_FAILED", {rName, GetCause(rOutcome)});
    }
}

std::string GetProblems(const CStoreOutcome& rOutcome) {
    std::vector<std::string> Problems;
    for (const std::string& rProblem : rOutcome.m_Problems) {
        // "field: what is wrong"
        const std::size_t Colon = rProblem.find(": ");
        Problems.push_back(Colon == std::string::npos
                               ? rProblem
                               : ConfigurationFields::GetLabel(rProblem.substr(0, Colon)) +
                                     rProblem.substr(Colon));
    }
    return Join(Problems);
}

}  // namespace PreBalDB::StoreTexts
