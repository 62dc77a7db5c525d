#include "platform/rvmdb/localstore.h"

#include <array>
#include <cstdio>
#include <random>

#include "platform/rvmdb/schema.h"

namespace PreBalDB {

namespace {

// A value has no type of its own, so that each comes back as what it was.
constexpr std::array QUEUE_TABLES = {"CREATE TABLE IF NOT EXISTS console (mark TEXT NOT NULL)",
                                     R"(CREATE TABLE IF NOT EXISTS waiting (
        number INTEGER PRIMARY KEY AUTOINCREMENT,
        machine TEXT NOT NULL,
        name TEXT NOT NULL,
        was_there SMALLINT NOT NULL,
        read_failed SMALLINT NOT NULL))",
                                     R"(CREATE TABLE IF NOT EXISTS waiting_value (
        number INTEGER NOT NULL REFERENCES waiting (number) ON DELETE CASCADE,
        side TEXT NOT NULL,
        field TEXT NOT NULL,
        value,
        PRIMARY KEY (number, side, field)))"};

constexpr const char* READ = "read";
constexpr const char* BEFORE = "before";
constexpr const char* NOW = "now";

std::string MakeMark() {
    std::random_device Random;
    std::array<char, 33> Text{};
    std::snprintf(Text.data(), Text.size(), "%08x%08x%08x%08x", Random(), Random(), Random(), Random());
    return Text.data();
}

}  // namespace

CLocalStore::CLocalStore(const std::string& rMachineName, const std::string& rFile)
    : CStore(rMachineName, "sqlite:" + rFile) {
    Schema::Prepare(GetConnection());
    try {
        GetConnection().UseWriteAheadLog();
        PrepareQueue();
    } catch (const CSqlError& rError) {
        throw CDatabaseError(GetConnection().GetUnusableText(rError));
    }
}

void CLocalStore::PrepareQueue() {
    if (GetConnection().HasTable("waiting_value")) {
        return;
    }
    CTransaction Transaction(GetConnection(), CTransaction::eWriting);
    for (const char* const pStatement : QUEUE_TABLES) {
        GetConnection().Execute(pStatement);
    }
    // Two programs may come to a new file at once.
    if (GetConnection().Query("SELECT 1 FROM console").empty()) {
        GetConnection().Execute("INSERT INTO console (mark) VALUES (?)", {MakeMark()});
    }
    Transaction.Commit();
}

bool CLocalStore::HasMachine() {
    return !GetConnection().Query("SELECT 1 FROM machine WHERE name = ?", {GetMachineName()}).empty();
}

void CLocalStore::PutMachine(const std::vector<CTableRows>& rTables) {
    CTransaction Transaction(GetConnection(), CTransaction::eWriting);
    GetConnection().Execute("DELETE FROM machine WHERE name = ?", {GetMachineName()});
    for (const CTableRows& rRows : rTables) {
        if (GetConnection().HasTable(rRows.m_Table)) {
            rRows.Insert(GetConnection());
        }
    }
    Transaction.Commit();
}

std::int64_t CLocalStore::Add(const CConfigurationWrite& rWrite) {
    CTransaction Transaction(GetConnection(), CTransaction::eWriting);
    GetConnection().Execute("INSERT INTO waiting (machine, name, was_there, read_failed) VALUES (?, ?, ?, ?)",
                            {GetMachineName(), rWrite.m_Name, std::int64_t{rWrite.m_Read.has_value()},
                             std::int64_t{rWrite.m_bReadFailed}});
    const std::int64_t Number = GetConnection().Query("SELECT max(number) FROM waiting").at(0).GetInteger(0);
    if (rWrite.m_Read) {
        StoreQueued(Number, READ, rWrite.m_Read->m_Values);
    }
    StoreQueued(Number, BEFORE, rWrite.m_MemoryBefore);
    StoreQueued(Number, NOW, rWrite.m_Memory);
    Transaction.Commit();
    return Number;
}

void CLocalStore::StoreQueued(std::int64_t Number, const char* pSide, const CFieldValues& rValues) {
    for (const auto& [rField, rValue] : rValues) {
        GetConnection().Execute("INSERT INTO waiting_value (number, side, field, value) VALUES (?, ?, ?, ?)",
                                {Number, std::string(pSide), rField, rValue});
    }
}

CFieldValues CLocalStore::LoadQueued(std::int64_t Number, const char* pSide) {
    CFieldValues Values;
    for (const CDirectSQL::CRow& rRow :
         GetConnection().Query("SELECT field, value FROM waiting_value WHERE number = ? AND side = ?",
                               {Number, std::string(pSide)})) {
        Values[rRow.GetText(0)] = rRow.GetValue(1);
    }
    return Values;
}

std::optional<CDelivery> CLocalStore::GetNext() {
    CTransaction Transaction(GetConnection(), CTransaction::eReading);
    const auto Rows = GetConnection().Query(
        "SELECT number, machine, name, was_there, read_failed FROM waiting ORDER BY number LIMIT 1");
    if (Rows.empty()) {
        return std::nullopt;
    }
    CDelivery Next;
    Next.m_Console = GetConnection().Query("SELECT mark FROM console").at(0).GetText(0);
    Next.m_Number = Rows[0].GetInteger(0);
    Next.m_Machine = Rows[0].GetText(1);
    Next.m_Write.m_Name = Rows[0].GetText(2);
    Next.m_Write.m_StoredName = Next.m_Write.m_Name;
    if (Rows[0].GetInteger(3) != 0) {
        Next.m_Write.m_Read = CStoredConfiguration{LoadQueued(Next.m_Number, READ), UNKNOWN_REVISION};
    }
    Next.m_Write.m_bReadFailed = Rows[0].GetInteger(4) != 0;
    Next.m_Write.m_MemoryBefore = LoadQueued(Next.m_Number, BEFORE);
    Next.m_Write.m_Memory = LoadQueued(Next.m_Number, NOW);
    return Next;
}

std::size_t CLocalStore::Count() {
    return static_cast<std::size_t>(
        GetConnection().Query("SELECT count(*) FROM waiting").at(0).GetInteger(0));
}

void CLocalStore::Remove(std::int64_t Number) {
    GetConnection().Execute("DELETE FROM waiting WHERE number = ?", {Number});
}

}  // namespace PreBalDB
