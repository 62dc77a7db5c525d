#pragma once
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "contract/menus.h"
#include "platform/window/displayrate.h"
#include "platform/window/webbrowser2.h"
#include "platform/window/wnd.h"
#include "rvdlm/m_rtr/rtr_trim/communication/iffromcommunication.h"
#include "rvdlm/m_rtr/rtr_trim/mainwndmakers.h"
#include "rvdlm/m_rtr/rtr_trim/moduleconversation.h"
#include "rvdlm/m_rtr/rtr_trim/nc/prebalfromncinterface.h"
#include "rvdlm/m_rtr/rtr_trim/ncdesk.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/prebalancing.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/prebalmainwndinterface.h"
#include "rvdlm/m_rtr/rtr_trim/prebalconfigtabs.h"
#include "rvdlm/m_rtr/rtr_trim/speedcontrol.h"
#include "rvlib/rvgui/proptree/dynamichelpif.h"

/// The module's window. It owns all else, and every event of the module enters through it: messages of the
/// host, frames of the transport, requests of the NC. It shows the configuration pane with the help, or a
/// running procedure. All on the host's window thread. An exception that reaches a message handler ends the
/// handling of that message with an error in the log; the host never sees it.
///
/// What it doesn't decide itself it hands on: to the conversation with the module (moduleconversation.h), the
/// desk of the NC (ncdesk.h), the speed settings with the weight positions (speedcontrol.h), the painter of
/// the page (pagepainter.h). They know the window by callbacks only. Its own are the life of the window and
/// the way of messages (prebalancingmainwnd.cpp), what the host's actions and states mean
/// (mainwndactions.cpp), and start and end of procedures (mainwndruncontrol.cpp).
class CPreBalancingMainWnd : public CWnd,
                             public IFFromCommunication,
                             public PropTree::CDynamicHelpIF,
                             public CPreBalMainWndInterface,
                             public CPreBalFromNCInterface {
public:
    static constexpr UINT TAB_CTRL_ID = 101;
    static constexpr UINT BROWSER_ID = 103;
    /// Timer that holds the help back, and its period in ms.
    static constexpr UINT HELP_TIMER = 1;
    static constexpr UINT HELP_DELAY = 350;
    /// Timer for a speed that came too soon after the last picture of the status line.
    static constexpr UINT STATUS_TIMER = 2;

    /// Makers: what mapper and procedure are made with.
    explicit CPreBalancingMainWnd(CMainWndMakers Makers = {});
    ~CPreBalancingMainWnd() override;

    // IFFromCommunication
    void SendRawData(const std::uint8_t* pData, std::uint32_t nSize) override;
    void OnQueryModuleIdentification(Reason Why, const std::string* pArticle,
                                     const std::uint32_t* pSerial) override {
        m_Conversation.OnQueryModuleIdentification(Why, pArticle, pSerial);
    }
    void OnSetRequest(Reason Why, const CSet* pSet) override { m_Conversation.OnSetRequest(Why, pSet); }
    /// The lock of the module's panel isn't looked at.
    void OnModuleState(Reason Why, const std::uint32_t* /*pUILocked*/, const std::uint32_t* pOutOfLockPlane1,
                       const std::uint32_t* pInvalidRPMPlane1, const std::uint32_t* pOutOfLockPlane2,
                       const std::uint32_t* pInvalidRPMPlane2, const std::uint32_t* pWrongState) override {
        m_Conversation.OnModuleState(Why, pOutOfLockPlane1, pInvalidRPMPlane1, pOutOfLockPlane2,
                                     pInvalidRPMPlane2, pWrongState);
    }
    void OnRPMData(Reason Why, const std::uint32_t* pPlane, const std::uint32_t* pRPM) override {
        m_Conversation.OnRPMData(Why, pPlane, pRPM);
    }
    void OnUnbalanceXYValues(Reason Why, const std::uint32_t* pPlane, const std::uint32_t* pX,
                             const std::uint32_t* pY) override {
        m_Conversation.OnUnbalanceXYValues(Why, pPlane, pX, pY);
    }

    // PropTree::CDynamicHelpIF
    void SetHelpTopic(const std::string& rTopic) override;

    // CPreBalMainWndInterface
    void SetMenu(std::int32_t Menu) override;
    std::int32_t GetMenu() const override { return m_Menu; }
    void RepaintAll() override { Repaint(CPreBalancing::ePaintAll); }
    void RepaintMeasurement() override { Repaint(CPreBalancing::ePaintMeasurement); }
    void PleaseQueryXYValuesNOW() override { m_Conversation.QueryReadings(); }
    void SetBalancingActivity(std::int32_t Activity) override;
    void PreBalNotification(const CPreBalNotification& rNotification) override {
        m_NCDesk.PreBalNotification(rNotification);
    }
    void WarningModeChanged(std::uint32_t Mode) override { m_NCDesk.WarningModeChanged(Mode); }
    const CWeightPositionStore& GetWeightPositionStore() const override { return m_SpeedControl.GetStore(); }
    CWeightPositionStore& GetWeightPositionStore() override { return m_SpeedControl.GetStore(); }
    int GetSpeedIncrement() override;
    std::uint32_t GetModuleAddress() const override { return m_ModuleAddress; }

    // CPreBalFromNCInterface
    void OnValueFromNCChanged(std::int32_t Value) override { m_NCDesk.OnValueFromNCChanged(Value); }

    /// Tells the NC that the configuration is shown: step ParameterWithReBal for a calibrated one, else
    /// Parameter.
    void NotifyConfigurationShown(bool bCalibrated);

    const CPreBalancing* GetSequence() const { return m_pPrebalancingSequence.get(); }
    const CPreBalConfigTabs& GetTabs() const { return m_tabCtrl; }
    const CWebBrowser2& GetBrowser() const { return m_Browser; }
    const std::string& GetHelpFormat() const { return m_HelpFormat; }
    const std::string& GetHelpTopic() const { return m_HelpTopic; }
    // What the module has told.
    const IFToCommunication* GetCommunicationIF() const { return m_Conversation.GetMapper(); }
    const std::string& GetMachineName() const { return m_Conversation.GetMachineName(); }
    const CSet& GetSet() const { return m_Conversation.GetSet(); }
    std::uint16_t GetCurrentRPM() const { return m_Conversation.GetCurrentRPM(); }
    int GetOutOfLock() const { return m_Conversation.GetOutOfLock(); }
    int GetInvalidRPM() const { return m_Conversation.GetInvalidRPM(); }
    // The items that are linked; null for the others.
    const CPreBalInterfaceFromNC* GetInterfaceFromNC() const { return m_NCDesk.GetInterfaceFromNC(); }
    const CPreBalInterfaceToNC* GetInterfaceToNC() const { return m_NCDesk.GetInterfaceToNC(); }
    const CPreBalInterfaceToNCWarnings* GetInterfaceToNCWarnings() const {
        return m_NCDesk.GetInterfaceToNCWarnings();
    }

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
    using StartOperation = CNCDeskCallbacks::StartOperation;

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
    LRESULT OnQueryReadings(WPARAM wParam, LPARAM lParam);
    LRESULT OnQueryConfiguration(WPARAM wParam, LPARAM lParam);
    LRESULT OnLanguageChanged(WPARAM wParam, LPARAM lParam);
    CConversationCallbacks MakeConversationCallbacks();
    CNCDeskCallbacks MakeNCDeskCallbacks();
    void CreateMapper(std::uint32_t Address, const CInitFlags& rFlags);
    /// The module has told who it is and which set it works with: the configuration is read.
    void OpenDatabase(const CSources& rSources);
    void ShowTitle();
    CRect GetBrowserRect() const;
    void PostToParent(UINT Message, WPARAM wParam, LPARAM lParam = 0);
    /// What is to be seen of the page now; all of it later, while nobody looks.
    void Repaint(unsigned Mask);
    /// Speeds come with the frames, quicker than a display shows them.
    void RepaintStatus();
    /// Tells the NC that this window works no more, unless that was told.
    void LeaveNC();

    // Actions
    void DoModuleAction(int Action, int Flag);
    void OnRebalanceAction();
    void OnKeyAction(int Action, int Flag);

    // Run control
    CPreBalancing* StartPrebalancingSequence();
    /// A procedure to abort: the running one, or with a configuration on hand one started for the purpose;
    /// else null.
    CPreBalancing* GetProcedureToAbort();
    /// Starts a procedure and its run with the present speed and flags. Nonzero for success.
    int StartRun(StartOperation pStart);
    void TerminatePrebalancingSequence();
    void ShowConfiguration();
    void HideConfiguration();
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
    /// The NC's way out of a run. False if there is a result that couldn't be kept.
    bool EndForNC();
    bool IsCalibrated() const { return m_tabCtrl.IsCalibrated(); }

    CMainWndMakers m_Makers;
    CModuleConversation m_Conversation;                      ///< with the mapper and what the module told
    std::unique_ptr<CPreBalancing> m_pPrebalancingSequence;  ///< the running procedure
    CPreBalConfigTabs m_tabCtrl;                             ///< configuration pane, left half
    std::string m_HelpFormat;                                ///< URL with "%s" for language and topic
    std::string m_HelpTopic;
    CWebBrowser2 m_Browser;  ///< help pane, right half
    std::uint32_t m_ModuleAddress = 0xFFFFFFFF;
    CNCDesk m_NCDesk;                    ///< with the three items
    CSpeedControl m_SpeedControl;        ///< with the weight positions
    bool m_bSaveFailed = false;          ///< in the present run
    std::int32_t m_Menu = Menus::eNone;  ///< last given to SetMenu
    CDisplayRate m_StatusRate;
    bool m_bStatusDelayed = false;  ///< STATUS_TIMER runs
};
