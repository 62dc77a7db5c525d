#pragma once
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "platform/rvmdb/postgresurl.h"

namespace PreBalDB {

/// A value in a statement or in a result. NULL is the empty text.
using CSqlValue = std::variant<std::int64_t, double, std::string>;

/// What the database, or the way to it, said when something failed: its own text.
class CSqlDriverError : public std::runtime_error {
public:
    explicit CSqlDriverError(const std::string& rText, std::string Code = {})
        : std::runtime_error(rText), m_Code(std::move(Code)) {}
    /// SQLite's result code in digits, or PostgreSQL's SQLSTATE; empty if it didn't come so far.
    const std::string& GetCode() const { return m_Code; }

private:
    std::string m_Code;
};

/// A connection to a database as a toolkit or client library gives it. Belongs to the thread that made it.
/// All operations throw CSqlDriverError.
class IFSqlDriver {
public:
    virtual ~IFSqlDriver() = default;

    /// Connects; an open connection must be closed before.
    virtual void Open() = 0;
    virtual void Close() = 0;
    /// Runs a statement with values for "?" in order; the result is the number of rows that it changed.
    /// Without values it isn't prepared: not every kind of statement can be.
    virtual int Execute(const std::string& rStatement, const std::vector<CSqlValue>& rValues) = 0;
    /// The same for a statement that gives rows.
    virtual std::vector<std::vector<CSqlValue>> Query(const std::string& rStatement,
                                                      const std::vector<CSqlValue>& rValues) = 0;
    virtual std::vector<std::string> GetTables() const = 0;
    /// The client library's handle of an open connection to a PostgreSQL server, null if it can't be told.
    virtual const void* GetServerHandle() const = 0;
};

/// Not yet open. A statement waits so long in ms while another connection writes. Throws CSqlDriverError if
/// the driver is missing, with what to do.
std::unique_ptr<IFSqlDriver> MakeSqliteDriver(const std::string& rPath, int BusyTimeout);
/// The same for a server.
std::unique_ptr<IFSqlDriver> MakePostgresDriver(const CPostgresUrl& rUrl);

}  // namespace PreBalDB
