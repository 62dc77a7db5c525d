#pragma once
#include <string>
#include <vector>

struct COptions;

/// What a console does with its own disk while the server of its store is away, for those who look at it.
namespace OfflineNotes {

/// Prepares the console's own disk for a store on a server; does nothing for a file, or for a run that keeps
/// nothing. rDirectory: where the installation keeps what is its own.
void Prepare(const COptions& rOptions, const std::string& rDirectory);
/// Sentences on what has happened since this was asked last, in the language in use.
std::vector<std::string> Take();
/// Whether all results of this installation are where they belong.
bool IsAllDelivered();

}  // namespace OfflineNotes
