#pragma once
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "contract/menus.h"
#include "platform/rvopc/prebalfromncinterface.h"
#include "platform/rvopc/prebalinterfacefromnc.h"
#include "platform/rvopc/prebalinterfacetonc.h"
#include "platform/rvopc/prebalinterfacetoncwarnings.h"
#include "platform/window/webbrowser2.h"
#include "platform/window/wnd.h"
#include "rvdlm/m_rtr/rtr_trim/communication/iffromcommunication.h"
#include "rvdlm/m_rtr/rtr_trim/communication/iftocommunication.h"
#include "rvdlm/m_rtr/rtr_trim/mainwndmakers.h"
#include "rvdlm/m_rtr/rtr_trim/methods/weightpositionstore.h"
#include "rvdlm/m_rtr/rtr_trim/modulewatch.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/prebalancing.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/prebalmainwndinterface.h"
#include "rvdlm/m_rtr/rtr_trim/prebalconfigtabs.h"
#include "rvdlm/m_rtr/rtr_trim/prebalnotification.h"
#include "rvlib/rvgui/proptree/dynamichelpif.h"

/// The module's window. It owns all else, and every event of the module enters through it: messages of the
/// host, frames of the transport, requests of the NC. It shows the configuration pane with the help, or a
/// running procedure. All on the host's window thread. An exception that reaches a message handler ends the
/// handling of that message with an error in the log; the host never sees it.
///
/// The implementation stands in a file for each of its ideas: prebalancingmainwnd.cpp (life and messages),
/// mainwndactions.cpp (actions and states that the host asks for), mainwndpaint.cpp (what is on the screen),
/// mainwndquerychain.cpp (what the module reports), mainwndruncontrol.cpp (start and end of procedures),
/// mainwndspeedcontrol.cpp (speed settings and weight positions), mainwndnc.cpp (the NC).
class CPreBalancingMainWnd : public CWnd,
                             public IFFromCommunication,
                             public PropTree::CDynamicHelpIF,
                             public CPreBalMainWndInterface,
                             public CPreBalFromNCInterface {
public:
    static constexpr UINT eTabCtrlId = 101;
    static constexpr UINT eBrowserId = 103;
    /// Timer that holds the help back, and its period in ms.
    static constexpr UINT eHelpTimer = 1;
    static constexpr UINT eHelpDelay = 350;
    /// Timer of the module watch; runs while a procedure does.
    static constexpr UINT eWatchTimer = 2;

    /// Makers: what mapper and procedure are made with.
    explicit CPreBalancingMainWnd(CMainWndMakers Makers = {});
    ~CPreBalancingMainWnd() override;

    // IFFromCommunication. Only eSuccess and eIndication with their data are looked at; eSuccess also asks
    // the next question of the chain identification, set, state, speed, readings.
    void SendRawData(const std::uint8_t* pData, std::uint32_t nSize) override;
    void OnQueryModuleIdentification(Reason Why, const std::string* pArticle,
                                     const std::uint32_t* pSerial) override;
    void OnSetRequest(Reason Why, const CSet* pSet) override;
    void OnModuleState(Reason Why, const std::uint32_t* pUILocked, const std::uint32_t* pOutOfLockPlane1,
                       const std::uint32_t* pInvalidRPMPlane1, const std::uint32_t* pOutOfLockPlane2,
                       const std::uint32_t* pInvalidRPMPlane2, const std::uint32_t* pWrongState) override;
    void OnRPMData(Reason Why, const std::uint32_t* pPlane, const std::uint32_t* pRPM) override;
    void OnUnbalanceXYValues(Reason Why, const std::uint32_t* pPlane, const std::uint32_t* pX,
                             const std::uint32_t* pY) override;

    // PropTree::CDynamicHelpIF
    void SetHelpTopic(const std::string& rTopic) override;

    // CPreBalMainWndInterface
    void SetMenu(std::int32_t Menu) override;
    std::int32_t GetMenu() const override { return m_Menu; }
    void RepaintAll() override { Repaint(CPreBalancing::ePaintAll); }
    void RepaintMeasurement() override { Repaint(CPreBalancing::ePaintMeasurement); }
    void PleaseQueryXYValuesNOW() override;
    void SetBalancingActivity(std::int32_t Activity) override;
    void PreBalNotification(const CPreBalNotification& rNotification) override;
    void WarningModeChanged(std::uint32_t Mode) override;
    const CWeightPositionStore& GetWeightPositionStore() const override { return m_WeightPositions; }
    CWeightPositionStore& GetWeightPositionStore() override { return m_WeightPositions; }
    int GetSpeedIncrement() override;
    std::uint32_t GetModuleAddress() const override { return m_ModuleAddress; }

    // CPreBalFromNCInterface
    void OnValueFromNCChanged(std::int32_t Value) override;

    /// Tells the NC that the configuration is shown: step ParameterWithReBal for a calibrated one, else
    /// Parameter.
    void NotifyConfigurationShown(bool bCalibrated);

    const CPreBalancing* GetSequence() const { return m_pPrebalancingSequence.get(); }
    const CPreBalConfigTabs& GetTabs() const { return m_tabCtrl; }
    const CWebBrowser2& GetBrowser() const { return m_Browser; }
    const std::string& GetMachineName() const { return m_MachineName; }
    const std::string& GetHelpFormat() const { return m_HelpFormat; }

protected:
    LRESULT WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) override;

private:
    using MessageHandler = LRESULT (CPreBalancingMainWnd::*)(WPARAM wParam, LPARAM lParam);
    struct CMessageMapEntry {
        UINT m_First;
        UINT m_Last;
        const char* m_pName;  ///< for the log
        MessageHandler m_pHandler;
    };
    static const CMessageMapEntry ms_MessageMap[];
    /// The handlers of the NC's requests give the answer.
    using RequestHandler = std::int32_t (CPreBalancingMainWnd::*)();
    struct CRequest {
        std::int32_t m_Value;
        RequestHandler m_pHandler;
    };
    static const CRequest ms_Requests[];
    using StartOperation = int (CPreBalancing::*)(std::uint16_t wRPM, int NotLocked, int InvalidRPM);

    // Messages
    LRESULT OnCreate(WPARAM wParam, LPARAM lParam);
    LRESULT OnSize(WPARAM wParam, LPARAM lParam);
    LRESULT OnPaint(WPARAM wParam, LPARAM lParam);
    LRESULT OnTimer(WPARAM wParam, LPARAM lParam);
    LRESULT OnInitWindow(WPARAM wParam, LPARAM lParam);
    LRESULT OnRawData(WPARAM wParam, LPARAM lParam);
    LRESULT OnModuleAction(WPARAM wParam, LPARAM lParam);
    LRESULT SetPrebalancingState(WPARAM wParam, LPARAM lParam);
    LRESULT OnDestroy(WPARAM wParam, LPARAM lParam);
    LRESULT OnDestroyPending(WPARAM wParam, LPARAM lParam);
    LRESULT OnDBInitDone(WPARAM wParam, LPARAM lParam);
    LRESULT OnStoreChanged(WPARAM wParam, LPARAM lParam);
    LRESULT OnQueryProgress(WPARAM wParam, LPARAM lParam);
    void CreateMapper(std::uint32_t Address, const CInitFlags& rFlags);
    CRect GetBrowserRect() const;
    void PostToParent(UINT Message, WPARAM wParam, LPARAM lParam = 0);

    // Actions
    void DoModuleAction(int Action, int Flag);
    void OnRebalanceAction();
    void OnKeyAction(int Action, int Flag);

    // Query chain
    void OnFirstSet(const CSet& rSet);
    /// Readings that stay away count as a lost lock: the measurement waits, and begins anew when they come
    /// again and the modules have told their state.
    void WatchModules();
    /// Whether there is a procedure that lock and validity of the speed matter to at present.
    bool DependsOnModules() const;
    /// The lock as a procedure may count on it.
    int GetOutOfLock() const { return m_OutOfLock != 0 || m_ModuleWatch.IsSilent() ? 1 : 0; }
    void UpdateWatchConditions() { m_ModuleWatch.OnConditions(m_CurrentRPM != 0, m_OutOfLock == 0); }
    /// A procedure to abort: the running one, or with a configuration on hand one started for the purpose.
    bool EnsureSequence();

    // Run control
    CPreBalancing* StartPrebalancingSequence();
    /// Starts a procedure and its run with the present speed and flags. Nonzero for success.
    int StartRun(StartOperation pStart);
    void TerminatePrebalancingSequence();
    void ShowConfiguration();
    void HideConfiguration();
    void BeginWatch();
    enum Commitment {
        eNoResult,    ///< the run has none that is to be kept
        eSaved,       ///< it stands in the database
        eNotSaved,    ///< it stays in memory, and the next save tries again
        eSuperseded,  ///< another console has stored one, which stays
    };
    /// Saves the run's result if it is to be kept. If that fails the operator and the host are told.
    Commitment CommitAndSave();
    /// Whether a run that was to end stays on the page, so that ending it once more tries again.
    bool StaysForNextTry(Commitment Result);
    bool IsCalibrated() const;
    /// Whether the set's speeds are the rotor's own.
    bool IsSetUsable() const;

    // Painting
    void Repaint(unsigned Mask);

    // Speed settings and weight positions
    void ReadSpeedControl();
    /// Reads the three numbers of the test step.
    void ReadSpeedSettings();
    /// Reads the store from its file. False if the file is damaged and could not be kept: it must not be
    /// written then.
    bool LoadWeightPositions();
    bool OnWeightPositionsDamaged(const std::string& rReason);
    /// Guarded(), and a damaged file of weight positions, which any operation of a procedure may come upon,
    /// is set aside.
    bool GuardedByWindow(const char* pName, const std::function<void()>& rOperation);

    // NC
    void ConnectOpc();
    void SendStep(CPreBalNotification::Step Step);
    /// Tells the NC that this window works no more, unless that was told.
    void LeaveNC();
    void ResetNotificationFromNC(std::int32_t nErrorCode);
    std::int32_t OnNCStartPreBalancing();
    std::int32_t OnNCStartReBalancing();
    std::int32_t OnNCNextStep();
    std::int32_t OnNCAbort();

    CMainWndMakers m_Makers;
    std::unique_ptr<IFToCommunication> m_pCommunicationIF;   ///< the mapper
    std::unique_ptr<CPreBalancing> m_pPrebalancingSequence;  ///< the running procedure
    CPreBalConfigTabs m_tabCtrl;                             ///< configuration pane, left half
    std::string m_HelpFormat;                                ///< URL with "%s" for language and topic
    std::string m_HelpTopic;
    CWebBrowser2 m_Browser;  ///< help pane, right half
    std::uint32_t m_ModuleAddress = 0xFFFFFFFF;
    std::string m_MachineName;  ///< key of the database
    CSet m_Set;                 ///< the first since OnInitWindow
    std::uint16_t m_CurrentRPM = 0xFFFF;
    int m_OutOfLock = 1;
    int m_InvalidRPM = 1;
    std::unique_ptr<CPreBalInterfaceFromNC> m_pInterfaceFromNC;
    std::unique_ptr<CPreBalInterfaceToNC> m_pInterfaceToNC;
    std::unique_ptr<CPreBalInterfaceToNCWarnings> m_pInterfaceToNCWarnings;
    CWeightPositionStore m_WeightPositions;
    bool m_bSaveFailed = false;          ///< in the present run
    std::int32_t m_Menu = Menus::eNone;  ///< last given to SetMenu
    CModuleWatch m_ModuleWatch;
};
