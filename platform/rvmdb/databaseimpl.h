#pragma once
#include <memory>
#include <string>
#include <vector>

#include "platform/rvmdb/directsql.h"
#include "platform/rvmdb/prebaldatabase.h"

namespace PreBalDB {

/// The database's inside. Reading is in configurationreader.cpp, writing in configurationwriter.cpp, the
/// screw tables and the defaults in screwtables.cpp. Its operations throw CSqlError; CPreBalDatabase turns
/// that into a line of the log and a result of 0.
struct CPreBalDatabase::Impl {
    Impl(CPreBalDatabase& rOwner, const std::string& rMachineName);

    /// The configuration of that name; null if there is none.
    std::unique_ptr<CPreBalBaseTableEntry> LoadConfiguration(const std::string& rName);
    std::unique_ptr<CPreBalBaseTableEntry> NewConfiguration(const std::string& rName);
    std::vector<std::string> LoadProcessNames(BalancingMode Mode, CTypeBase::AffectedPlane Plane,
                                              std::uint8_t Sensor1, std::uint8_t Sensor2);
    /// Writes rEntry in place of the configuration rStoredName.
    void StoreConfiguration(const CPreBalBaseTableEntry& rEntry, const std::string& rStoredName);

    // To be called within a transaction.
    std::vector<std::string> LoadScrewTableNames();
    Base::CWDArray<CScrew> LoadScrews(const std::string& rTable);
    void StoreScrews(const std::string& rTable, const Base::CWDArray<CScrew>& rScrews);

    /// True if something was made or changed.
    bool SetDefaults();

    CPreBalDatabase& m_rOwner;
    std::string m_MachineName;
    CDirectSQL m_Connection;

    std::unique_ptr<CPreBalBaseTableEntry> m_pConfiguration;
    std::string m_StoredName;            ///< name under which m_pConfiguration was read
    bool m_bConfigurationSound = false;  ///< false if the store couldn't be read: never written
    std::unique_ptr<CScrewTableEntry> m_pScrewTable;
    bool m_bScrewTableSound = false;

private:
    /// The three places that a compensation belongs to, by their name in the store.
    static constexpr const char* ePartSingle = "single";
    static constexpr const char* ePartPlane1 = "plane1";
    static constexpr const char* ePartPlane2 = "plane2";

    void LoadSinglePlane(CPreBalBaseTableEntry& rEntry);
    void LoadTwoPlane(CPreBalBaseTableEntry& rEntry);
    void LoadCompensation(const std::string& rConfiguration, const char* pPart,
                          CPlaneCompensation& rCompensation);
    bool IsPlane(const std::string& rConfiguration, BalancingMode Mode);

    void StoreSinglePlane(const std::string& rConfiguration, const CSinglePlaneBalancingTableEntry& rRecord);
    void StoreTwoPlane(const std::string& rConfiguration, const CTwoPlaneBalancingTableEntry& rRecord);
    void StoreCompensation(const std::string& rConfiguration, const char* pPart,
                           const CPlaneCompensation& rCompensation);
    bool Exists(const std::string& rConfiguration);
};

}  // namespace PreBalDB
