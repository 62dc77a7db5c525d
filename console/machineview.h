#pragma once
#include <QWidget>
#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "console/machinemodel.h"
#include "console/planemeans.h"
#include "platform/system/timer.h"

class CRotorView;
class QBoxLayout;
class QComboBox;
class QLabel;
class QProgressBar;
class QPushButton;
class QSpinBox;
class QStackedWidget;
class QToolButton;

/// The simulated machine, drawn: its rotor from each plane's end, the drawer with the screws, the spindle,
/// and the faults that it can be given. What it shows is what the machine answers, here or elsewhere.
class CMachineView : public QWidget {
public:
    /// WorkingSpeed in rpm, to begin with.
    CMachineView(IFMachine& rMachine, std::uint32_t WorkingSpeed, QWidget* pParent);
    ~CMachineView() override;

    /// By what the planes are balanced.
    void Show(const CMachineMeans& rMeans);

    /// What the page asks to be fitted; nothing where it asks for nothing.
    std::function<std::vector<CFitting>()> GetFittings;
    /// What the operator is told beside this view, too.
    std::function<void(const std::string&)> OnSay;

protected:
    void changeEvent(QEvent* pEvent) override;
    void resizeEvent(QResizeEvent* pEvent) override;

private:
    struct CFaultKey {
        QPushButton* m_pButton = nullptr;
        const char* m_pTextKey = nullptr;
    };

    QToolButton* MakeSwitch(QBoxLayout& rRow);
    void MakeHead(QBoxLayout& rColumn);
    void MakeRotors(QBoxLayout& rColumn);
    void MakeNotes(QBoxLayout& rColumn);
    void MakeFaults();
    void MakeSpindle(QBoxLayout& rColumn);
    QPushButton* MakeKey(QBoxLayout& rRow, std::function<void()> OnPressed);
    void SetTexts();
    void Refresh();
    void RefreshRotors();
    void RefreshScrews();
    void RefreshState();
    void Arrange();
    void FitWindow();
    void ChoosePlane(std::size_t Plane);
    void OnHole(std::size_t Plane, int Hole);
    void Refuse(const std::string& rWhy);
    bool MayTouch();

    CMachineModel m_Model;
    CMachineMeans m_Means;
    std::size_t m_Plane = 0;  ///< the one in view where only one has room
    bool m_bPlaneChosen = false;
    QBoxLayout* m_pBody = nullptr;
    QBoxLayout* m_pFields = nullptr;
    QBoxLayout* m_pKeys = nullptr;
    QStackedWidget* m_pPages = nullptr;
    std::array<QToolButton*, 2> m_PlaneKeys{};
    std::array<CRotorView*, 2> m_Rotors{};
    QToolButton* m_pFaultsKey = nullptr;
    QToolButton* m_pCovers = nullptr;
    QWidget* m_pFaults = nullptr;
    std::vector<CFaultKey> m_FaultKeys;
    QComboBox* m_pScrews = nullptr;
    std::vector<CScrewChoice> m_ShownChoices;
    QLabel* m_pState = nullptr;
    QLabel* m_pResidual = nullptr;
    QProgressBar* m_pRamp = nullptr;
    QSpinBox* m_pSpeed = nullptr;
    QPushButton* m_pStart = nullptr;
    QPushButton* m_pStop = nullptr;
    QPushButton* m_pFit = nullptr;
    std::string m_Refusal;  ///< shown in place of the state, for a while
    CTimer m_RefusalTimer;
};
