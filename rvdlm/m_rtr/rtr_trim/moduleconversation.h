#pragma once
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "platform/rvmdb/prebaldatabase.h"
#include "platform/system/timer.h"
#include "rvdlm/m_rtr/rtr_trim/communication/iftocommunication.h"
#include "rvdlm/m_rtr/rtr_trim/communication/set.h"
#include "rvdlm/m_rtr/rtr_trim/modulewatch.h"
#include "rvlib/rvprt/reason.h"

class CPreBalancing;

/// Where a balancing mode takes speed and readings from, as the set says. 255: not in use, or unknown.
struct CSources {
    std::uint8_t m_Input = 255;
    std::uint8_t m_Sensor1 = 255;
    std::uint8_t m_Sensor2 = 255;
    bool m_bComplete = false;  ///< all that the mode needs is known
};

/// What the conversation needs of the window; none may be empty.
struct CConversationCallbacks {
    /// Sends a frame to the modules.
    std::function<void(std::span<const std::uint8_t> Frame)> m_Send;
    /// The running procedure, or null.
    std::function<CPreBalancing*()> m_GetProcedure;
    /// One to abort: the running one, or with a configuration on hand one started for the purpose; else null.
    std::function<CPreBalancing*()> m_GetProcedureToAbort;
    /// Module and set are known, and with them the key of the database.
    std::function<void(const CSources& rSources)> m_OnMachineKnown;
    /// The module has told a set that can't be balanced with.
    std::function<void()> m_OnUnusableSet;
    /// The procedure has got another speed.
    std::function<void()> m_OnSpeed;
    /// Carries out what a timer has called for; no exception may leave it.
    std::function<void(const char* pName, const std::function<void()>& rOperation)> m_Guard;
};

/// The conversation with the module, or the pair of them. It finds out by a chain of queries (identification,
/// set, state, speed, readings) who is there, keeps what was told, hands it to the procedure, and aborts that
/// if the module changes under it. While a run lasts it watches that the module goes on telling
/// (modulewatch.h).
///
/// Only eSuccess and eIndication with their data are looked at; eSuccess also asks the next question. A
/// question that can't be sent is an assertion, and the chain stops there until the module reports by itself.
/// Window thread only.
class CModuleConversation {
public:
    explicit CModuleConversation(CConversationCallbacks Callbacks);

    /// The mapper that speaks the modules' language. Without one nothing is asked and frames are dropped.
    void SetMapper(std::unique_ptr<IFToCommunication> pMapper) { m_pCommunicationIF = std::move(pMapper); }
    const IFToCommunication* GetMapper() const { return m_pCommunicationIF.get(); }
    /// Begins the chain with the modules of these addresses.
    void Begin(const std::vector<std::uint8_t>& rModules, PreBalDB::CPreBalDatabase::BalancingMode Mode);
    /// Forgets machine and set: whatever is told next begins anew.
    void End();
    /// A frame of a module, header included.
    void OnFrame(std::span<const std::uint8_t> Frame);
    /// Asks for readings; sampling is to begin with them, or goes on.
    void QueryReadings();

    /// A run begins, and the modules are watched; everything that was found out begins anew.
    void BeginWatch();
    void EndWatch() { m_WatchTimer.Stop(); }

    // What the mapper tells, as in IFFromCommunication.
    void OnQueryModuleIdentification(Reason Why, const std::string* pArticle, const std::uint32_t* pSerial);
    void OnSetRequest(Reason Why, const CSet* pSet);
    void OnModuleState(Reason Why, const std::uint32_t* pOutOfLockPlane1,
                       const std::uint32_t* pInvalidRPMPlane1, const std::uint32_t* pOutOfLockPlane2,
                       const std::uint32_t* pInvalidRPMPlane2, const std::uint32_t* pWrongState);
    void OnRPMData(Reason Why, const std::uint32_t* pPlane, const std::uint32_t* pRPM);
    void OnUnbalanceXYValues(Reason Why, const std::uint32_t* pPlane, const std::uint32_t* pX,
                             const std::uint32_t* pY);

    /// Key of the database. Empty: no module has told who it is; article and serial number alone: no set yet.
    const std::string& GetMachineName() const { return m_MachineName; }
    /// The first one since Begin, so that every later report of another one aborts.
    const CSet& GetSet() const { return m_Set; }
    /// Whether the set's speeds are the rotor's own.
    bool IsSetUsable() const { return m_Set.RPMFactorPlane1 == 1 && m_Set.RPMFactorPlane2 == 1; }
    /// rpm; 0xFFFF until it is told.
    std::uint16_t GetCurrentRPM() const { return m_CurrentRPM; }
    /// As told, of the planes in use; 1 until then.
    int GetOutOfLock() const { return m_OutOfLock; }
    int GetInvalidRPM() const { return m_InvalidRPM; }

private:
    using Query = int (IFToCommunication::*)();

    /// Asks if there is a mapper. rName: of the query, with its brackets.
    void Ask(Query pQuery, const std::string& rName);
    void OnFirstSet(const CSet& rSet);
    void UpdateWatchConditions() { m_ModuleWatch.OnConditions(m_CurrentRPM != 0, m_OutOfLock == 0); }
    /// Readings that stay away count as a lost lock: the measurement waits, and begins anew when they come
    /// again and the modules have told their state.
    void WatchModules();
    /// Whether there is a procedure that lock and validity of the speed matter to at present.
    bool DependsOnModules() const;
    /// The lock as a procedure may count on it.
    int GetLockLost() const { return m_OutOfLock != 0 || m_ModuleWatch.IsSilent() ? 1 : 0; }

    CConversationCallbacks m_Callbacks;
    std::unique_ptr<IFToCommunication> m_pCommunicationIF;
    PreBalDB::CPreBalDatabase::BalancingMode m_Mode = PreBalDB::CPreBalDatabase::eModePlane1;
    std::string m_MachineName;
    CSet m_Set;
    std::uint16_t m_CurrentRPM = 0xFFFF;
    int m_OutOfLock = 1;
    int m_InvalidRPM = 1;
    CModuleWatch m_ModuleWatch;
    CTimer m_WatchTimer;
};
