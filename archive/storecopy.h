#pragma once
#include <cstddef>
#include <string>
#include <vector>

#include "platform/rvmdb/directsql.h"

/// Copies a whole store, configurations, screw tables, data for ISO grades and the archive, into another one
/// of whichever kind: all of it or nothing, as of one moment, and compared row by row before it counts.
class CStoreCopy {
public:
    struct CTable {
        std::string m_Name;
        std::size_t m_nRows = 0;
    };

    /// "sqlite:PATH" of a path, and a connection as it is.
    static std::string MakeConnection(const std::string& rText);
    /// Makes the tables of a new store, or brings an older one to the version of this program; a server's
    /// must be called by a role that may do so. Throws PreBalDB::CDatabaseError.
    static void Prepare(PreBalDB::CDirectSQL& rStore);

    /// Opens both. From is only read and must be there, in the version of this program; To is made when it is
    /// missing. Throws PreBalDB::CDatabaseError.
    CStoreCopy(const std::string& rFrom, const std::string& rTo);

    const std::string& GetFromName() const { return m_From.GetName(); }
    const std::string& GetToName() const { return m_To.GetName(); }
    /// Whether nothing is lost by copying.
    bool IsTargetEmpty();
    /// What was copied. Empties To before. Throws PreBalDB::CSqlError; To is as it was then.
    std::vector<CTable> Copy();

private:
    void Empty();
    std::vector<CTable> CopyRows();
    std::size_t CopyTable(const std::string& rTable, const std::string& rCondition = {},
                          const std::vector<PreBalDB::CDirectSQL::CValue>& rValues = {});
    void CopyRuns(std::vector<CTable>& rCopied);
    void CheckCounts(const std::vector<CTable>& rCopied);

    PreBalDB::CDirectSQL m_From;
    PreBalDB::CDirectSQL m_To;
};
