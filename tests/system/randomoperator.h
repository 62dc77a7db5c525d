#pragma once
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "platform/rvmdb/directsql.h"
#include "tests/support/logcapture.h"
#include "tests/system/pagesfixture.h"

class CSoftkeyBar;
class CPageQuestion;

/// Somebody at the window who does now what the page asks for, now anything at all, at any moment; and what
/// must hold whatever he does, looked at after every single thing.
class CRandomOperatorTestBase : public CPagesTestBase {
protected:
    ~CRandomOperatorTestBase() override;

    void Play(std::uint32_t Seed, int nActions);

    /// Runs that have come to a verdict that was kept.
    int GetFinished() const { return m_nFinished; }
    int GetEnded() const { return m_nEnded; }

    /// For what happens besides: before each thing that he does.
    virtual void BeforeActing() {}
    /// Whether there is a good reason for an assertion.
    virtual bool IsExplained(const std::string& rAssertion) const;

private:
    /// What kind of thing is done: it may explain what happens.
    enum class By { ePage, ePanel, eMachine, eTime, eClose };
    using Deed = std::function<void()>;

    int Draw(int nBelow) { return static_cast<int>(m_Random() % static_cast<std::uint32_t>(nBelow)); }
    bool Chance(int Percent) { return Draw(100) < Percent; }
    template <typename T>
    const T& Pick(const std::vector<T>& rList) {
        return rList.at(static_cast<std::size_t>(Draw(static_cast<int>(rList.size()))));
    }

    /// Does one thing, and looks at what has become of it.
    void Do(By Kind, const std::string& rWhat, const Deed& rDeed);
    void Wait(std::uint32_t Milliseconds);
    void Act();
    void ActPatiently();
    void ActAnyhow();
    void PressSomeKey();
    void HoldSomething();
    void LetGo();
    void ClickSoftkey();
    void ClickSomeButton();
    void ClickSomewhere();
    void Resize();
    void Deactivate();
    void AskToClose();
    void SwitchLanguage();
    void Reopen();

    void LookForTrouble(By Kind);
    void LookAtRun(By Kind, const CSituation& rNow);
    void LookAtCalibration(By Kind, const CSituation& rNow);
    void LookAtStore();
    /// What the calibration of each configuration rests on, as it is stored.
    std::map<std::string, std::string> ReadBases();
    void LookAtLabels();

    CSoftkeyBar& GetBar();
    CPageQuestion& GetQuestion();
    bool IsEndAsked();
    QWidget& GetFocus();

    std::mt19937 m_Random;
    std::unique_ptr<CLogCapture> m_pLog;
    std::unique_ptr<PreBalDB::CDirectSQL> m_pStore;
    std::string m_Last;  ///< what was done last
    std::deque<std::string> m_History;
    CSituation m_Before;
    bool m_bEndAsked = false;  ///< before that
    std::optional<Qt::Key> m_HeldKey;
    QPointer<QWidget> m_pHeld;  ///< under the mouse
    CShownConfiguration m_Shown;
    std::set<std::string> m_Stored;   ///< calibrated configurations
    std::set<std::string> m_Changed;  ///< no longer calibrated in memory, for a good reason
    std::map<std::string, std::string> m_Bases;
    bool m_bDeleteAsked = false;
    int m_nFinished = 0;
    int m_nEnded = 0;
};
