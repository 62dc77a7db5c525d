#pragma once
#include <QFrame>
#include <array>
#include <functional>
#include <string>

#include "console/lights.h"

class QLabel;
class CHeadButton;

/// What the head line shows.
struct CHeadState {
    enum Place { eLink, eModule, eNc, eDatabase, PLACES };
    std::string m_Machine;
    std::string m_Configuration;
    std::array<CLight, PLACES> m_Lights;
    std::string m_Message;
    std::string m_Clock;
};

/// The line at the top of the window: machine and configuration, a light with a word for each thing that a
/// run rests on, the newest message, the time of day. A light says on a press what is wrong and what to do.
class CHeadLine : public QFrame {
public:
    explicit CHeadLine(QWidget* pParent = nullptr);

    void Show(const CHeadState& rState);
    /// Key of the text that names a light.
    static const char* GetNameKey(CHeadState::Place Place);

    std::function<void(CHeadState::Place)> OnLight;
    std::function<void()> OnMachine;
    std::function<void()> OnMessage;

protected:
    void changeEvent(QEvent* pEvent) override;
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;

private:
    void FitWindow();

    CHeadState m_State;
    CHeadButton* m_pMachine = nullptr;
    std::array<CHeadButton*, CHeadState::PLACES> m_Lights{};
    CHeadButton* m_pMessage = nullptr;
    QLabel* m_pClock = nullptr;
};
