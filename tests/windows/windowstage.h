#pragma once
#include <QApplication>
#include <QSize>
#include <array>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>

#include "console/installation.h"
#include "console/mainwindow.h"
#include "console/operator.h"
#include "console/session.h"
#include "console/traininglesson.h"
#include "console/trainingticks.h"
#include "platform/system/temporarydirectory.h"
#include "platform/system/virtualeventloop.h"
#include "simulator/rotorfile.h"

/// The whole window on a simulated machine under virtual time, with somebody who operates it up to a moment
/// that is to be looked at.
class CWindowStage {
public:
    using Moment = std::function<bool(const CSituation&)>;

    /// The sizes that a picture of the window is taken in.
    static constexpr std::array SIZES = {QSize(800, 480), QSize(1024, 768), QSize(1920, 1080)};
    static constexpr std::array LANGUAGES = {"en", "de"};

    CWindowStage(const COptions& rOptions, CRotorFile Rotor);
    ~CWindowStage();
    CWindowStage(const CWindowStage&) = delete;
    CWindowStage& operator=(const CWindowStage&) = delete;

    CMainWindow& GetWindow() { return *m_pWindow; }
    CConsoleSession& GetSession() { return m_Session; }
    CVirtualEventLoop& GetLoop() { return m_Loop; }

    /// The present state in a size and a language, laid out and painted as an operator would see it.
    void ShowIn(const QSize& rSize, const char* pLanguage);
    /// With the line of a training situation, from 0.
    void Train(std::size_t Situation);
    /// Begins a run.
    void Start();
    /// Operates until that is on the panel, then stands back. Throws if it never is.
    void PlayUntil(const Moment& rMoment);
    void Wait(std::uint32_t Milliseconds);
    /// A softkey by its place from 0, as by a finger.
    void Press(std::size_t Place);
    /// A button of the window by the key of its text.
    void PressButton(const char* pTextKey);
    void Request(const nlohmann::json& rRequest);
    /// Unfolds a view at the page's side; null folds it.
    void Unfold(QWidget* pView);

    /// The part of the window of that class.
    template <typename T>
    T& Find() {
        for (QWidget* const pWidget : m_pWindow->findChildren<QWidget*>()) {
            if (auto* const pPart = dynamic_cast<T*>(pWidget)) {
                return *pPart;
            }
        }
        throw std::logic_error("the window has no such part");
    }

private:
    void Settle();

    struct CFreshRoot {
        CFreshRoot();
    };

    CFreshRoot m_FreshRoot;  ///< the installation isn't that of the stage before
    CConsoleInstallation m_Installation{"", true};
    CVirtualEventLoop m_Loop;
    CRotorFile m_Rotor;
    CConsoleSession m_Session;
    std::unique_ptr<CTemporaryDirectory> m_pTicksDirectory;
    std::unique_ptr<CTrainingTicks> m_pTicks;
    std::unique_ptr<CTrainingLesson> m_pLesson;
    std::unique_ptr<CMainWindow> m_pWindow;
    std::unique_ptr<COperator> m_pOperator;
    Moment m_Moment;
    bool m_bReached = true;
};
