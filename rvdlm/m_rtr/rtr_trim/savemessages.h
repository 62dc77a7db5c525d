#pragma once
#include <string>

#include "platform/rvmdb/prebaldatabase.h"

/// What the operator is told when the store doesn't do what it is asked: what was not saved or read, why, and
/// what becomes of it. Each shows a message box if there is something to tell.
namespace SaveMessages {

/// A result was to be saved. bAgain: the second time for this run, which then ends.
void TellResult(const std::string& rConfiguration, const PreBalDB::CStoreOutcome& rOutcome, bool bAgain);
/// Changes made on the pages were to be saved.
void TellConfiguration(const std::string& rConfiguration, const PreBalDB::CStoreOutcome& rOutcome);
void TellScrewTable(const std::string& rTable, const PreBalDB::CStoreOutcome& rOutcome);
/// A configuration or a screw table was to get a name that was typed; rFormer is the one that stays.
void TellNaming(const std::string& rName, const std::string& rFormer,
                const PreBalDB::CStoreOutcome& rOutcome);
/// A configuration was read.
void TellReading(const std::string& rConfiguration, const PreBalDB::CStoreOutcome& rOutcome);
/// Names were read.
void TellNames(const PreBalDB::CStoreOutcome& rOutcome);

}  // namespace SaveMessages
