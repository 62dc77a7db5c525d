#pragma once
#include <string>
#include <vector>

#include "platform/rvmdb/directsql.h"

namespace PreBalDB {

/// Rows of a table as plain values, to bring them from one store into another, whatever kind these are.
struct CTableRows {
    using CRow = std::vector<CDirectSQL::CValue>;

    std::string m_Table;
    std::vector<std::string> m_Columns;  ///< sorted: an older store has them in another order
    std::vector<CRow> m_Rows;            ///< sorted

    bool operator==(const CTableRows&) const = default;

    /// Those that meet a condition, " WHERE machine = ?", or all. Throws CSqlError.
    static CTableRows Read(CDirectSQL& rConnection, const std::string& rTable,
                           const std::string& rCondition = {},
                           const std::vector<CDirectSQL::CValue>& rValues = {});
    /// Adds them to the table of that name. Throws CSqlError.
    void Insert(CDirectSQL& rConnection) const;
};

}  // namespace PreBalDB
