// Every combination of family, mode, means and senses, balanced at the window: by its function keys alone,
// and by the mouse alone. What comes out is what an automatic run of the same rotor gives, to the degree and
// the hole.
#include <gmock/gmock.h>

#include <QTest>

#include "console/operatorrules.h"
#include "console/softkeybar.h"
#include "contract/actions.h"
#include "tests/system/pagesfixture.h"

namespace {

using Procedure = COptions::Procedure;
using Sense = CRotorFile::Sense;

struct CCombination {
    std::string m_Name;
    CRotorFile::Modules m_Modules;
    std::string m_Mode;
    std::vector<std::string> m_Methods;
    Sense m_Rotation = CRotorFile::eClockwise;
    std::vector<Sense> m_Scales = {};
};

void PrintTo(const CCombination& rValue, std::ostream* pOut) {
    *pOut << rValue.m_Name;
}

const char* ToName(Sense Value) {
    return Value == CRotorFile::eClockwise ? "Cw" : "Ccw";
}

void AddSenses(std::vector<CCombination>& rList, const CCombination& rOf, std::size_t nPlanes) {
    constexpr std::array SENSES = {CRotorFile::eClockwise, CRotorFile::eCounterClockwise};
    for (const Sense Rotation : SENSES) {
        for (const Sense First : SENSES) {
            for (const Sense Second : SENSES) {
                if (nPlanes == 1 && Second != CRotorFile::eClockwise) {
                    continue;
                }
                CCombination Value = rOf;
                Value.m_Rotation = Rotation;
                Value.m_Scales = {First, Second};
                Value.m_Name += std::string("Rotation") + ToName(Rotation) + "Scale" + ToName(First);
                if (nPlanes == 2) {
                    Value.m_Name += std::string("And") + ToName(Second);
                }
                rList.push_back(Value);
            }
        }
    }
}

std::vector<CCombination> MakeCombinations() {
    constexpr auto SHORT = [](const std::string& rMethod) {
        return rMethod == "weights" ? "Weights" : "Screws";
    };
    const std::vector<std::string> MEANS = {"weights", "screws"};
    std::vector<CCombination> List;
    for (const std::string& rFirst : MEANS) {
        AddSenses(List, {std::string("Kestrel") + SHORT(rFirst), CRotorFile::eKestrel, "plane1", {rFirst}},
                  1);
        AddSenses(List,
                  {std::string("LannerPlane1") + SHORT(rFirst), CRotorFile::eLanner, "plane1", {rFirst}}, 1);
        AddSenses(List,
                  {std::string("LannerPlane2") + SHORT(rFirst), CRotorFile::eLanner, "plane2", {rFirst}}, 2);
        for (const std::string& rSecond : MEANS) {
            const std::string Means = std::string(SHORT(rFirst)) + SHORT(rSecond);
            AddSenses(List, {"Pair" + Means, CRotorFile::eKestrelPair, "two-plane", {rFirst, rSecond}}, 2);
            AddSenses(List, {"Lanner" + Means, CRotorFile::eLanner, "two-plane", {rFirst, rSecond}}, 2);
        }
    }
#if defined(__SANITIZE_ADDRESS__)
    // Each family, mode and means once, with all senses among them.
    std::vector<CCombination> Some;
    for (std::size_t i = 0; i < List.size(); i += 3) {
        Some.push_back(List[i]);
    }
    return Some;
#else
    return List;
#endif
}

/// A rotor that needs something in every plane, with some coupling and without noise: the figures of two runs
/// are the same then whenever the readings were taken.
CRotorFile MakeRotor(const CCombination& rCase) {
    CRotorFile Rotor = CRotorFile::GetBuiltIn(rCase.m_Modules);
    Rotor.m_NoiseCounts = 0.0;
    Rotor.m_RampRpmPerS = 6000.0;
    Rotor.m_Rotation = rCase.m_Rotation;
    for (std::size_t i = 0; i < Rotor.m_Planes.size(); ++i) {
        Rotor.m_Planes[i].m_Scale = rCase.m_Scales[i];
        Rotor.m_Planes[i].m_Unbalance = {0.7 + 0.2 * static_cast<double>(i),
                                         123.0 + 77.0 * static_cast<double>(i)};
        for (std::size_t k = 0; k < Rotor.m_Planes.size(); ++k) {
            Rotor.m_Influence[i][k] =
                i == k ? CRotorFile::CInfluence{150.0, 40.0} : CRotorFile::CInfluence{30.0, 75.0};
        }
    }
    return Rotor;
}

/// What a run ends with.
struct CFigures {
    std::vector<double> m_Final;  ///< amplitude per plane of the machine that takes part
    std::vector<double> m_Residual;
};

class WindowCombinations : public CPagesTestBase, public testing::WithParamInterface<CCombination> {
protected:
    enum class Input { eKeys, eMouse };

    void Configure(COptions& rOptions) const {
        rOptions.m_Mode = GetParam().m_Mode;
        rOptions.m_Methods = GetParam().m_Methods;
    }
    CSoftkeyBar& GetBar() {
        for (QWidget* const pWidget : m_pWindow->findChildren<QWidget*>()) {
            if (auto* const pBar = dynamic_cast<CSoftkeyBar*>(pWidget)) {
                return *pBar;
            }
        }
        throw std::logic_error("no softkeys");
    }
    /// The softkey of an action, wherever it stands.
    void PressSoftkey(Actions::Action Action) {
        const std::optional<std::size_t> Place = GetBar().FindPlace(Action);
        ASSERT_TRUE(Place) << Action;
        if (m_Input == Input::eKeys) {
            QTest::keyClick(m_pWindow.get(), static_cast<Qt::Key>(Qt::Key_F1 + *Place));
        } else {
            QTest::mouseClick(GetBar().findChildren<QAbstractButton*>().at(static_cast<int>(*Place)),
                              Qt::LeftButton);
        }
        m_Loop.Advance(500);
    }
    /// The machine's own controls are no keys of the panel: without a mouse it is somebody else's hand.
    void OperateMachine(const QString& rButton, const std::vector<nlohmann::json>& rRequests) {
        if (m_Input == Input::eMouse) {
            QAbstractButton* const pButton = FindButton(rButton);
            ASSERT_NE(pButton, nullptr);
            ASSERT_TRUE(pButton->isEnabled()) << rButton.toStdString();
            QTest::mouseClick(pButton, Qt::LeftButton);
        } else {
            for (const nlohmann::json& rRequest : rRequests) {
                m_pSession->GetMachine()->Request(rRequest, [](const nlohmann::json&) {});
            }
        }
        m_Loop.Advance(500);
    }
    void Fit() {
        std::vector<nlohmann::json> Requests;
        for (const CFitting& rFitting : FindFittings(m_pSession->Look(), m_pSession->GetHoleRings())) {
            Requests.push_back(MakeRequest(rFitting));
        }
        OperateMachine("Fit as shown", Requests);
    }
    void SetTurning(bool bTurning) {
        if (m_bTurning != bTurning) {
            m_bTurning = bTurning;
            OperateMachine(bTurning ? "Start spindle" : "Stop spindle", {{{"speed", bTurning ? 3000 : 0}}});
        }
        m_Loop.Advance(250);
    }

    /// From the configuration to the verdict, doing what the page asks for.
    CFigures BalanceAtTheWindow(Input How) {
        m_Input = How;
        m_bTurning = false;
        OpenInFront();
        PressSoftkey(Actions::eStart);
        constexpr int MOST_LOOKS = 1000;
        for (int nLook = 0; nLook < MOST_LOOKS && !HasFatalFailure(); ++nLook) {
            const CSituation Situation = m_pSession->Look();
            switch (ChooseDeed(Situation)) {
                case Deed::eWait:
                    m_Loop.Advance(250);
                    break;
                case Deed::eStopSpindle:
                    SetTurning(false);
                    break;
                case Deed::eStartSpindle:
                    SetTurning(true);
                    break;
                case Deed::eFitAndConfirm:
                    Fit();
                    PressSoftkey(Actions::eNext);
                    break;
                case Deed::eConfirm:
                    PressSoftkey(Actions::eNext);
                    break;
                case Deed::eJudge: {
                    const CFigures Figures = ReadFigures(Situation);
                    PressSoftkey(Actions::eTerminate);
                    EXPECT_FALSE(m_pSession->Look().m_bRunning);
                    EXPECT_TRUE(m_pSession->GetHost().IsCalibrated());
                    Close();
                    return Figures;
                }
                case Deed::eGiveUp:
                    ADD_FAILURE() << Situation.m_Progress.m_Warning;
                    Close();
                    return {};
            }
        }
        ADD_FAILURE() << "stuck in " << GetState();
        Close();
        return {};
    }
    CFigures ReadFigures(const CSituation& rSituation) {
        CFigures Figures;
        const CRotor& rRotor = m_pSession->GetSimulator()->GetRotor();
        for (std::size_t i = 0; i < rRotor.GetNumberOfPlanes(); ++i) {
            if (rSituation.m_Progress.m_Readings.at(i).m_bShown) {
                Figures.m_Final.push_back(rSituation.m_Progress.m_Readings.at(i).m_Amplitude);
            }
            Figures.m_Residual.push_back(std::abs(rRotor.GetResidual(i)));
        }
        return Figures;
    }
    CFigures BalanceHeadless() {
        CWholeRun Run(m_Run.m_Rotor);
        Configure(Run.m_Options);
        // A table of screws is coarse: what it leaves may be over the target.
        EXPECT_THAT(Run.Run(Procedure::ePrebalance), testing::AnyOf(eExitWithinTarget, eExitOverTarget));
        CFigures Figures;
        for (const auto& rPlane : Run.m_Report["final"]) {
            Figures.m_Final.push_back(rPlane["amplitude"].get<double>());
        }
        for (const std::complex<double> Residual : Run.m_Residuals) {
            Figures.m_Residual.push_back(std::abs(Residual));
        }
        return Figures;
    }
    static void ExpectSame(const CFigures& rSeen, const CFigures& rExpected, const char* pHow) {
        using testing::DoubleNear;
        using testing::Pointwise;
        constexpr double SAME = 1e-9;
        EXPECT_THAT(rSeen.m_Final, Pointwise(DoubleNear(SAME), rExpected.m_Final)) << pHow;
        EXPECT_THAT(rSeen.m_Residual, Pointwise(DoubleNear(SAME), rExpected.m_Residual)) << pHow;
    }

    Input m_Input = Input::eKeys;
    bool m_bTurning = false;
};

}  // namespace

TEST_P(WindowCombinations, EndAsAnAutomaticRunDoes) {
    m_Run.m_Rotor = MakeRotor(GetParam());
    Configure(m_Run.m_Options);
    const CFigures Automatic = BalanceHeadless();
    ASSERT_FALSE(Automatic.m_Final.empty());
    for (std::size_t i = 0; i < Automatic.m_Final.size(); ++i) {
        constexpr double LEAST_AT_FIRST = 0.7 * 150.0;  // counts: that of plane 1 alone
        EXPECT_LT(Automatic.m_Final[i], LEAST_AT_FIRST / 3.0) << "the rotor runs better";
    }
    ExpectSame(BalanceAtTheWindow(Input::eKeys), Automatic, "by function keys");
    ExpectSame(BalanceAtTheWindow(Input::eMouse), Automatic, "by the mouse");
}

INSTANTIATE_TEST_SUITE_P(All, WindowCombinations, testing::ValuesIn(MakeCombinations()),
                         [](const auto& rInfo) { return rInfo.param.m_Name; });
