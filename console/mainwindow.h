#pragma once
#include <QMainWindow>
#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "console/screenrun.h"
#include "console/session.h"
#include "console/softkeys.h"
#include "contract/menukeys.h"
#include "platform/system/lifetime.h"
#include "platform/system/timer.h"

class CHelpView;
class CWindowView;
class QLabel;
class QPushButton;
class QSpinBox;

/// The console with a screen: the module's page, a bar of softkeys below it, and, with a machine to command,
/// a panel that stands for the machine: spindle, fitted weights and the rotor's true unbalance.
class CMainWindow : public QMainWindow {
public:
    explicit CMainWindow(CConsoleSession& rSession);
    ~CMainWindow() override;

    /// Why the window has ended itself: the options don't go with what the machine is configured for. Empty
    /// if it hasn't.
    const std::string& GetRefusal() const { return m_Refusal; }
    /// Ends a run that is under way, and keeps nothing of it.
    void BreakOff() { m_Run.End(false); }

private:
    static constexpr int eRefreshPeriod = 250;  ///< ms, of the machine panel

    QWidget* MakeSoftkeyBar();
    QWidget* MakeMachinePanel();
    /// Asks the module's window to find its module, and again until it has.
    void AskForModule();
    /// Says what is missing while the link isn't open or the module doesn't answer.
    void ShowConnection();
    void OnKeyDown(std::size_t Index);
    void OnKeyUp(std::size_t Index);
    /// Puts the labels of the present menu on the softkeys.
    void ShowMenu();
    CSoftkeys::CState GetSoftkeyState() const;
    /// The first time that the module has a configuration: sets it up if nobody has yet.
    void CommissionOnce();
    void ShowHelp();
    /// Asks, without waiting, whether what the page shows by its name is to go.
    void AskToDelete();
    void Delete(const CShownConfiguration& rShown, bool bTable);
    void RefreshMachine();
    void FitAsShown();
    void Command(const nlohmann::json& rRequest);

    CConsoleSession& m_rSession;
    CScreenRun m_Run;
    CWindowView* m_pPage = nullptr;
    CHelpView* m_pHelp = nullptr;
    QLabel* m_pConnection = nullptr;
    bool m_bLinkOpen = false;  ///< at the last look
    CSoftkeys m_Softkeys;
    std::array<QPushButton*, CSoftkeys::PLACES> m_Keys{};
    std::array<std::optional<MenuKeys::CKey>, CSoftkeys::PLACES> m_Down{};  ///< held, to be let go
    bool m_bConfigured = false;    ///< the module has found its configuration
    bool m_bCommissioned = false;  ///< behind that: no run begins before
    std::string m_Refusal;
    QSpinBox* m_pSpeed = nullptr;
    QLabel* m_pMachineState = nullptr;
    QLabel* m_pWeights = nullptr;
    QLabel* m_pResidual = nullptr;
    CTimer m_RefreshTimer;
    CTimer m_InitTimer;
    CLifetime m_Lifetime;
};
