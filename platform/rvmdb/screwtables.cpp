// The screw tables of a machine, and the defaults that every store has.
#include <algorithm>

#include "platform/rvmdb/databaseimpl.h"
#include "platform/rvmdb/names.h"
#include "platform/rvmdb/newentrydefaults.h"

namespace PreBalDB {

namespace {

const std::string& GetDefaultName() {
    static const std::string ms_Name = CNewEntryDefaults::eScrewTableName;
    return ms_Name;
}

Base::CWDArray<CScrew> MakeDefaultScrews() {
    Base::CWDArray<CScrew> Screws;
    for (const double Weight : CNewEntryDefaults::eScrewWeights) {
        Screws.Add(CScrew(CScrew("", Weight).GetWeightAsString() + " g", Weight));
    }
    return Screws;
}

}  // namespace

Base::CWDArray<CScrew> CScrewCompensationTableEntry::GetScrewTable() const {
    if (m_pDatabase == nullptr) {
        return {};
    }
    return m_pDatabase->ReadScrews(m_ScrewTableName);
}

std::vector<std::string> CPreBalDatabase::Impl::LoadScrewTableNames() {
    std::vector<std::string> Names;
    for (const CDirectSQL::CRow& rRow :
         m_Connection.Query("SELECT name FROM screw_table WHERE machine = ?", {m_MachineName})) {
        Names.push_back(rRow.GetText(0));
    }
    SortNames(Names);
    return Names;
}

Base::CWDArray<CScrew> CPreBalDatabase::Impl::LoadScrews(const std::string& rTable) {
    Base::CWDArray<CScrew> Screws;
    for (const CDirectSQL::CRow& rRow : m_Connection.Query(
             "SELECT name, weight FROM screw WHERE machine = ? AND screw_table = ? ORDER BY position",
             {m_MachineName, rTable})) {
        Screws.Add(CScrew(rRow.GetText(0), rRow.GetDouble(1)));
    }
    return Screws;
}

void CPreBalDatabase::Impl::StoreScrews(const std::string& rTable, const Base::CWDArray<CScrew>& rScrews) {
    if (rTable.empty()) {
        throw CSqlError("a screw table needs a name");
    }
    m_Connection.Execute("DELETE FROM screw_table WHERE machine = ? AND name = ?", {m_MachineName, rTable});
    m_Connection.Execute("INSERT INTO screw_table (machine, name) VALUES (?, ?)", {m_MachineName, rTable});
    std::int64_t Position = 0;
    for (const CScrew& rScrew : rScrews) {
        m_Connection.Execute(
            "INSERT INTO screw (machine, screw_table, position, name, weight) VALUES (?, ?, ?, ?, ?)",
            {m_MachineName, rTable, Position++, rScrew.GetScrewName(), rScrew.GetWeight()});
    }
}

bool CPreBalDatabase::Impl::SetDefaults() {
    bool bChanged = false;
    CTransaction Transaction(m_Connection, CTransaction::eWriting);
    if (LoadScrews(GetDefaultName()).IsEmpty()) {
        StoreScrews(GetDefaultName(), MakeDefaultScrews());
        bChanged = true;
    }
    // Without a screw nothing can be balanced.
    bChanged |= m_Connection.Execute(
                    "DELETE FROM screw_table WHERE machine = ? AND NOT EXISTS (SELECT 1 FROM screw "
                    "WHERE screw.machine = screw_table.machine AND screw.screw_table = screw_table.name)",
                    {m_MachineName}) > 0;
    bChanged |=
        m_Connection.Execute(
            "UPDATE screw_compensation SET screw_table = ? WHERE machine = ? AND NOT EXISTS (SELECT 1 FROM "
            "screw_table WHERE screw_table.machine = screw_compensation.machine "
            "AND screw_table.name = screw_compensation.screw_table)",
            {GetDefaultName(), m_MachineName}) > 0;
    const std::vector<std::string> Names = LoadScrewTableNames();
    Transaction.Commit();

    // The configuration in memory would bring the missing name back.
    if (m_pConfiguration != nullptr) {
        const auto Repair = [&Names, &bChanged](CPlaneCompensation& rCompensation) {
            CScrewCompensationTableEntry* pScrew = rCompensation.m_pScrew.get();
            if (pScrew != nullptr &&
                std::find(Names.begin(), Names.end(), pScrew->GetScrewTableName()) == Names.end()) {
                pScrew->SetScrewTableName(GetDefaultName());
                bChanged = true;
            }
        };
        if (m_pConfiguration->m_pSinglePlane != nullptr) {
            Repair(m_pConfiguration->m_pSinglePlane->m_Compensation);
        }
        if (m_pConfiguration->m_pTwoPlane != nullptr) {
            Repair(m_pConfiguration->m_pTwoPlane->m_Plane1Compensation);
            Repair(m_pConfiguration->m_pTwoPlane->m_Plane2Compensation);
        }
    }
    return bChanged;
}

}  // namespace PreBalDB
