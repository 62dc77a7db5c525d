#pragma once
#include <cstdint>
#include <string>

namespace PreBalDB {

class CDirectSQL;

/// Copies a SQLite store that is about to be brought to another version to a file beside it,
/// "NAME.backup-WHATn.sqlite" with the version that it has: "prebal.db.backup-schema3.sqlite". The copy
/// appears as a whole, and takes the place of an earlier one of that version. May be called in a writing
/// transaction that hasn't written yet, so that nobody changes the store in between. Does nothing for a
/// server, whose keepers have their own means. Throws CSqlError.
void BackUpBeforeMigration(CDirectSQL& rConnection, const std::string& rWhat, std::int64_t Version);

}  // namespace PreBalDB
