#include "tests/windows/windowstates.h"

#include <string_view>

#include "console/headline.h"
#include "console/liveview.h"
#include "console/machineview.h"
#include "console/messagelist.h"
#include "console/operatorrules.h"
#include "console/pagequestion.h"
#include "console/softkeybar.h"
#include "console/trainingsetup.h"
#include "console/trainingsituations.h"
#include "contract/warnings.h"

namespace {

constexpr std::size_t CONFIRM = CSoftkeys::CONFIRM_PLACE;
constexpr std::size_t HELP = CSoftkeys::HELP_PLACE;
constexpr std::size_t END = CSoftkeys::END_PLACE;

using Measuring = CPreBalProgress::CMeasuring;

CWindowStage::Moment InState(std::string_view State) {
    return [State](const CSituation& rNow) { return rNow.m_Progress.m_State.ends_with(State); };
}

CWindowStage::Moment WithWarning(std::uint32_t Warning) {
    return [Warning](const CSituation& rNow) { return rNow.m_Progress.m_WarningMode == Warning; };
}

bool IsWaiting(const CSituation& rNow) {
    const Measuring& rMeasuring = rNow.m_Progress.m_Measuring;
    return rMeasuring.m_Which != Measurement::eNone && !rMeasuring.m_bSampling;
}

bool IsHalfMeasured(const CSituation& rNow) {
    const Measuring& rMeasuring = rNow.m_Progress.m_Measuring;
    return rMeasuring.m_bSampling && 2 * rMeasuring.m_nAveraged > rMeasuring.m_nNeeded;
}

bool IsMeasured(const CSituation& rNow) {
    const Measuring& rMeasuring = rNow.m_Progress.m_Measuring;
    return rMeasuring.m_bSampling && rMeasuring.m_nAveraged >= rMeasuring.m_nNeeded;
}

class CStates {
public:
    CStates(const std::string& rModuleLibrary, const WindowVisitor& rVisit) : m_rVisit(rVisit) {
        m_Options.m_ModuleLibrary = rModuleLibrary;
    }

    void VisitConfiguration() const {
        CWindowStage Stage(m_Options, CRotorFile::GetBuiltIn());
        m_rVisit("settings", Stage);
        Stage.Press(END);
        m_rVisit("settings-more-keys", Stage);
        Stage.PressButton("SK_CODE");
        m_rVisit("code", Stage);
    }
    void VisitRunWithWeights() const {
        CWindowStage Stage(m_Options, CRotorFile::GetBuiltIn());
        Stage.Start();
        m_rVisit("instruction", Stage);
        Stage.PlayUntil(IsWaiting);
        m_rVisit("waiting", Stage);
        Stage.PlayUntil(IsHalfMeasured);
        m_rVisit("measuring", Stage);
        Stage.Request({{"fault", {{"kind", "unlock_ms"}, {"value", 5000}}}});
        Stage.Wait(1500);
        m_rVisit("out-of-lock", Stage);
        Stage.PlayUntil(IsMeasured);
        m_rVisit("measured", Stage);
        VisitParts(Stage);
        Stage.PlayUntil(InState("PreBalanceSetWeights"));
        m_rVisit("correction", Stage);
        Stage.PlayUntil(IsMeasuredVerdict);
        m_rVisit("verdict-within", Stage);
        Stage.Unfold(&Stage.Find<CLiveView>());
        m_rVisit("verdict-live", Stage);
        Stage.Press(END);
        m_rVisit("saved", Stage);
    }
    void VisitOverTarget() const {
        CWindowStage Stage(m_Options, CRotorFile::GetBuiltIn());
        Stage.Start();
        Stage.PlayUntil(InState("PreBalanceRPMStart"));
        Stage.Request(MakeRequest({0, 0, {0, 170}, false, {}}));
        Stage.PlayUntil(IsMeasuredVerdict);
        m_rVisit("verdict-over", Stage);
        Stage.Press(END);
        m_rVisit("saved-over", Stage);
    }
    void VisitChangedPositions() const {
        CWindowStage Stage(m_Options, CRotorFile::GetBuiltIn());
        Stage.GetSession().StartProcedure(Actions::eStart);
        Stage.Press(CONFIRM + 1);
        m_rVisit("change-positions", Stage);
    }
    void VisitScrews() const {
        CRotorFile Rotor = CRotorFile::GetBuiltIn();
        Rotor.m_Planes[0].m_Holes = 24;
        Rotor.m_Planes[0].m_Unbalance = {3.2, 77.0};
        Rotor.m_Influence[0][0] = {40.0, 40.0};
        COptions Options = m_Options;
        Options.m_Methods = {"screws"};
        CWindowStage Stage(Options, Rotor);
        Stage.Press(END);  // to the keys behind
        Stage.Press(Stage.Find<CSoftkeyBar>().FindPlace(Actions::eNextTab).value());
        m_rVisit("screw-page", Stage);
        Stage.Start();
        Stage.PlayUntil(InState("TestUnbalanceSetWeights"));
        m_rVisit("screws-test", Stage);
        Stage.PlayUntil(InState("PreBalanceSetWeights"));
        m_rVisit("screws-correction", Stage);
        Stage.PlayUntil(IsMeasuredVerdict);
        m_rVisit("screws-verdict", Stage);
    }
    void VisitTwoPlanes() const {
        COptions Options = m_Options;
        Options.m_Mode = "two-plane";
        CWindowStage Stage(Options, CRotorFile::GetBuiltIn(CRotorFile::eKestrelPair));
        m_rVisit("two-planes-settings", Stage);
        Stage.Start();
        Stage.PlayUntil(IsHalfMeasured);
        m_rVisit("two-planes-measuring", Stage);
        Stage.PlayUntil(InState("PreBalanceSetWeights"));
        Stage.PressButton("MACHINE_COVERS");
        m_rVisit("two-planes-correction", Stage);
        Stage.PlayUntil(IsMeasuredVerdict);
        m_rVisit("two-planes-verdict", Stage);
        Stage.Unfold(&Stage.Find<CLiveView>());
        m_rVisit("two-planes-live", Stage);
    }
    void VisitFailure() const {
        const CTrainingSituation& rCapacity = *std::ranges::find_if(
            GetTrainingSituations(),
            [](const auto& rOne) { return std::string_view(rOne.m_pId) == "capacity"; });
        CWindowStage Stage(m_Options, CTrainingSetup(rCapacity, m_Options).GetRotor());
        Stage.Start();
        Stage.PlayUntil(WithWarning(Warnings::eCapacity));
        m_rVisit("capacity", Stage);
    }
    void VisitNoConnection() const {
        COptions Options = m_Options;
        Options.m_Link = "serial:/dev/ttyBalance";
        CWindowStage Stage(Options, CRotorFile::GetBuiltIn());
        m_rVisit("no-connection", Stage);
    }
    void VisitTraining() const {
        COptions Options = m_Options;
        Options.m_bTraining = true;
        CWindowStage Stage(Options, CRotorFile::GetBuiltIn());
        Stage.Train(3);
        m_rVisit("training", Stage);
        Stage.Start();
        Stage.PlayUntil(IsHalfMeasured);
        m_rVisit("training-run", Stage);
    }
    void VisitDemo() const {
        COptions Options = m_Options;
        Options.m_bDemo = true;
        Options.m_bProcedureGiven = true;
        CWindowStage Stage(Options, CRotorFile::GetBuiltIn());
        m_rVisit("demo", Stage);
        const auto Runs = [&Stage] { return InState("PreBalanceSetWeights")(Stage.GetSession().Look()); };
        constexpr std::uint32_t LONGEST = 600000;
        if (!Stage.GetLoop().RunUntil(Runs, LONGEST)) {
            throw std::runtime_error("the demonstration doesn't play");
        }
        Stage.Wait(500);
        m_rVisit("demo-run", Stage);
    }

private:
    /// What can be opened over and beside the page.
    void VisitParts(CWindowStage& rStage) const {
        auto& rQuestion = rStage.Find<CPageQuestion>();
        rStage.Press(END);
        m_rVisit("question", rStage);
        rQuestion.Answer(0);
        rStage.Find<CHeadLine>().OnLight(CHeadState::eModule);
        rStage.Wait(500);
        m_rVisit("light", rStage);
        rQuestion.Answer(0);
        rStage.Press(HELP);
        m_rVisit("help", rStage);
        rStage.Press(HELP);
        rStage.Unfold(&rStage.Find<CMessageList>());
        m_rVisit("messages", rStage);
        rStage.Unfold(&rStage.Find<CLiveView>());
        m_rVisit("live", rStage);
        rStage.Unfold(nullptr);
        m_rVisit("folded", rStage);
        rStage.Unfold(&rStage.Find<CMachineView>());
        rStage.PressButton("MACHINE_FAULTS");
        m_rVisit("faults", rStage);
        rStage.PressButton("MACHINE_FAULTS");
    }

    const WindowVisitor& m_rVisit;
    COptions m_Options;
};

}  // namespace

void VisitWindowStates(const std::string& rModuleLibrary, const WindowVisitor& rVisit) {
    const CStates States(rModuleLibrary, rVisit);
    States.VisitConfiguration();
    States.VisitRunWithWeights();
    States.VisitOverTarget();
    States.VisitChangedPositions();
    States.VisitScrews();
    States.VisitTwoPlanes();
    States.VisitFailure();
    States.VisitNoConnection();
    States.VisitTraining();
    States.VisitDemo();
}
