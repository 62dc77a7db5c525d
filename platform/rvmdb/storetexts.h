#pragma once
#include <string>
#include <vector>

#include "platform/rvmdb/prebaldatabase.h"

/// What became of an operation of the store, in the words of the language in use.
namespace PreBalDB::StoreTexts {

/// The text of the key with its "%s" replaced by the arguments, one after the other.
std::string Fill(const char* pKey, const std::vector<std::string>& rArguments);
/// Separated by commas.
std::string Join(const std::vector<std::string>& rTexts);

/// Why something was not done.
std::string GetCause(const CStoreOutcome& rOutcome);
/// Why something new didn't get a name, and what would be right; rFormer is the name that stays.
std::string GetNaming(const std::string& rName, const std::string& rFormer, const CStoreOutcome& rOutcome);
/// Why a configuration or a screw table was not deleted.
std::string GetDeletion(const std::string& rName, const CStoreOutcome& rOutcome);
/// What was left out at reading, by the labels that the values have on the pages.
std::string GetProblems(const CStoreOutcome& rOutcome);

}  // namespace PreBalDB::StoreTexts
