#pragma once
#include <QMainWindow>
#include <array>
#include <cstdint>
#include <vector>

#include "console/screenrun.h"
#include "console/session.h"
#include "contract/menukeys.h"
#include "platform/system/lifetime.h"
#include "platform/system/timer.h"

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

    /// Ends a run that is under way, and keeps nothing of it.
    void BreakOff() { m_Run.End(false); }

private:
    static constexpr std::size_t eNumberOfKeys = 8;
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
    void RefreshMachine();
    void FitAsShown();
    void Command(const nlohmann::json& rRequest);

    CConsoleSession& m_rSession;
    CScreenRun m_Run;
    CWindowView* m_pPage = nullptr;
    QLabel* m_pConnection = nullptr;
    bool m_bLinkOpen = false;  ///< at the last look
    std::array<QPushButton*, eNumberOfKeys> m_Keys{};
    std::vector<MenuKeys::CKey> m_Shown;
    QSpinBox* m_pSpeed = nullptr;
    QLabel* m_pMachineState = nullptr;
    QLabel* m_pWeights = nullptr;
    QLabel* m_pResidual = nullptr;
    CTimer m_RefreshTimer;
    CTimer m_InitTimer;
    CLifetime m_Lifetime;
};
