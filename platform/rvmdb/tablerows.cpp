#include "platform/rvmdb/tablerows.h"

#include <algorithm>

namespace PreBalDB {

namespace {

std::vector<std::string> LoadColumns(CDirectSQL& rConnection, const std::string& rTable) {
    std::vector<std::string> Columns;
    for (const CDirectSQL::CRow& rRow : rConnection.Query(
             rConnection.IsSqlite()
                 ? "SELECT name FROM pragma_table_info(?)"
                 : "SELECT CAST(column_name AS TEXT) FROM information_schema.columns WHERE table_name = ? "
                   "AND table_schema = current_schema()",
             {rTable})) {
        Columns.push_back(rRow.GetText(0));
    }
    std::ranges::sort(Columns);
    return Columns;
}

std::string Join(const std::vector<std::string>& rTexts) {
    std::string Text;
    for (const std::string& rText : rTexts) {
        Text += (Text.empty() ? "" : ", ") + rText;
    }
    return Text;
}

}  // namespace

CTableRows CTableRows::Read(CDirectSQL& rConnection, const std::string& rTable, const std::string& rCondition,
                            const std::vector<CDirectSQL::CValue>& rValues) {
    CTableRows Read;
    Read.m_Table = rTable;
    Read.m_Columns = LoadColumns(rConnection, rTable);
    std::string Statement = "SELECT " + Join(Read.m_Columns);
    Statement.append(" FROM ").append(rTable).append(rCondition);
    for (const CDirectSQL::CRow& rRow : rConnection.Query(Statement, rValues)) {
        CRow& rValuesOfRow = Read.m_Rows.emplace_back();
        for (std::size_t i = 0; i < Read.m_Columns.size(); ++i) {
            rValuesOfRow.push_back(rRow.GetValue(i));
        }
    }
    std::ranges::sort(Read.m_Rows);
    return Read;
}

void CTableRows::Insert(CDirectSQL& rConnection) const {
    const std::string Statement = "INSERT INTO " + m_Table + " (" + Join(m_Columns) + ") VALUES (" +
                                  Join(std::vector<std::string>(m_Columns.size(), "?")) + ")";
    for (const CRow& rRow : m_Rows) {
        rConnection.Execute(Statement, rRow);
    }
}

}  // namespace PreBalDB
