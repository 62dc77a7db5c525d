#pragma once
#include <QTemporaryDir>
#include <memory>
#include <string>

#include "platform/rvmdb/prebaldatabase.h"
#include "rvlib/rvbas/array.h"

/// A configuration with screws in a machine database of its own: the screw table comes out of the database.
class CScrewEntry {
public:
    explicit CScrewEntry(const Base::CWDArray<PreBalDB::CScrew>& rTable, std::uint32_t nHoles = 12,
                         std::uint8_t nScrews = 2) {
        PreBalDB::SetDatabaseConnection("sqlite:" + m_Directory.filePath("db.sqlite").toStdString());
        m_pDatabase = std::make_unique<PreBalDB::CPreBalDatabase>("0#3#255-0-123456-4711-2");
        m_pDatabase->ReadScrewTable("table").SetScrewArray(rTable);
        m_pDatabase->WriteScrewTable();
        m_pEntry = &m_pDatabase->ReadConfiguration("Default");
        PreBalDB::CScrewCompensationTableEntry& rScrews = Screws();
        rScrews.SetScrewTableName("table");
        rScrews.SetNumberOfHoles(nHoles);
        rScrews.SetNumberOfScrews(nScrews);
    }
    ~CScrewEntry() {
        m_pDatabase.reset();
        PreBalDB::SetDatabaseConnection("");
    }
    CScrewEntry(const CScrewEntry&) = delete;
    CScrewEntry& operator=(const CScrewEntry&) = delete;

    PreBalDB::CPreBalBaseTableEntry& Base() { return *m_pEntry; }
    PreBalDB::CScrewCompensationTableEntry& Screws() {
        return m_pEntry->CreateSinglePlane().CreateScrewCompensationTableEntry();
    }

private:
    QTemporaryDir m_Directory;
    std::unique_ptr<PreBalDB::CPreBalDatabase> m_pDatabase;
    PreBalDB::CPreBalBaseTableEntry* m_pEntry = nullptr;
};
