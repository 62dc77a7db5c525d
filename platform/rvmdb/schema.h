#pragma once

namespace PreBalDB {

class CDirectSQL;

/// The tables and their version. The tables mirror the records: machine, configuration, single_plane,
/// two_plane, weight_compensation, screw_compensation, screw_table, screw; delivery tells what was brought
/// from consoles whose server was away. Names are the keys, so that a person with a database shell reads them
/// without looking up numbers. All that belongs to a machine or a configuration goes with it. A new store is
/// made from the properties' rows (property.h), an older one is brought to the same tables step by step.
namespace Schema {

constexpr int CURRENT_VERSION = 4;

/// Brings the store to the current version, from nothing or from an older one, in one transaction; an older
/// SQLite file is copied beside itself before (storebackup.h). Throws CDatabaseError for a damaged or foreign
/// store and for one of a newer version, which it leaves as they are.
void Prepare(CDirectSQL& rConnection);

}  // namespace Schema
}  // namespace PreBalDB
