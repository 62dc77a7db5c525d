#pragma once
#include <chrono>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>

#include "platform/rvmdb/localstore.h"
#include "platform/rvmdb/offline.h"
#include "platform/rvmdb/store.h"
#include "platform/rvmdb/storethread.h"

namespace PreBalDB {

/// The store of a CPreBalDatabase, wherever it lies: a file, or a server, which the console's own disk stands
/// in for while it is away (Offline). Throws CSqlError.
class CStoreAccess {
public:
    /// Opens the store. Throws also CDatabaseError.
    CStoreAccess(const std::string& rMachineName, const std::string& rConnection);

    /// Does work that changes what only the store itself may change.
    template <typename Work>
    std::invoke_result_t<Work, CStore&> Run(Work Do) {
        OpenLater();
        return m_Store.Run(std::move(Do));
    }

    /// Does work that only reads.
    template <typename Work>
    std::invoke_result_t<Work, CStore&> Read(Work Do) {
        if (m_pLocal != nullptr && !Offline::IsAway()) {
            try {
                return Run(Do);
            } catch (const CSqlError& rError) {
                NoteAway(rError);
            }
        }
        return m_pLocal != nullptr ? m_pLocal->Run(std::move(Do)) : m_Store.Run(std::move(Do));
    }

    std::optional<CStoredConfiguration> LoadConfiguration(const std::string& rName);
    CLoadedNames LoadProcessNames(CPreBalDatabase::BalancingMode Mode, CTypeBase::AffectedPlane Plane,
                                  std::uint8_t Sensor1, std::uint8_t Sensor2);
    CConfigurationWritten WriteConfiguration(const CConfigurationWrite& rWrite);
    CDefaultsSet SetDefaults();

private:
    /// Of the patience, for the local disk.
    static constexpr std::chrono::milliseconds LOCAL_SHARE{1000};

    void Open(const std::string& rFile);
    void OpenServer();
    /// If the server was away until now.
    void OpenLater();
    /// Whatever means that the server is away; anything else is thrown on.
    static void NoteAway(const CSqlError& rError);
    /// Keeps what the server has now.
    void Copy();
    template <typename Work>
    auto RunLocally(Work Do) {
        return m_pLocal->Run(
            [Do = std::move(Do)](CStore& rStore) { return Do(static_cast<CLocalStore&>(rStore)); });
    }
    /// Until the write of that number, if there is one, is done, now or before.
    CConfigurationWritten Deliver(std::int64_t Number, const CConfigurationWrite& rWrite);
    CConfigurationWritten FindWritten(const CConfigurationWrite& rWrite);
    CConfigurationWritten WriteLocally(const CConfigurationWrite& rWrite);

    std::string m_MachineName;
    std::string m_Connection;
    CStoreThread m_Store;
    bool m_bOpen = false;
    std::unique_ptr<CStoreThread> m_pLocal;  ///< null: the store is a file, or there is no copy
    std::vector<CTableRows> m_Copied;
};

}  // namespace PreBalDB
