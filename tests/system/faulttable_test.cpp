// Every single frame of a whole run is struck by every kind of fault, one at a time.
#include <gtest/gtest.h>

#include <set>

#include "tests/system/wholerun.h"

namespace {

using nlohmann::json;
using Procedure = COptions::Procedure;

#if defined(__SANITIZE_ADDRESS__)
constexpr std::uint64_t EVERY = 10;
#else
constexpr std::uint64_t EVERY = 1;
#endif

struct CFamilyCase {
    const char* m_pName;
    CRotorFile::Modules m_Modules;
    const char* m_pMode;
    /// With Kestrel each frame of the run; the longer runs take the frames around each change of the panel
    /// and every so many of those between, which are speeds and readings one like the other.
    std::uint64_t m_nStep;
};
constexpr CFamilyCase FAMILIES[] = {
    {"Kestrel", CRotorFile::eKestrel, "", 1},
    {"KestrelPair", CRotorFile::eKestrelPair, "", 23},
    {"LannerPlane1", CRotorFile::eLanner, "plane1", 23},
    {"LannerPlane2", CRotorFile::eLanner, "plane2", 23},
};

struct CFaultCase {
    const char* m_pName;
    const char* m_pFault;  ///< without the number of the frame
};
constexpr CFaultCase FAULTS[] = {
    {"Lost", R"({"kind": "drop"})"},
    {"Doubled", R"({"kind": "double"})"},
    {"Late", R"({"kind": "delay_ms", "value": 600})"},
    {"Cut", R"({"kind": "cut"})"},
    {"Corrupted", R"({"kind": "corrupt"})"},
};

/// Without noise every reading of a state is the same, so the result must be too, to the last digit.
CRotorFile MakeRotor(CRotorFile::Modules Modules) {
    CRotorFile Rotor = CRotorFile::GetBuiltIn(Modules);
    Rotor.m_NoiseCounts = 0.0;
    Rotor.m_RampRpmPerS = 30000.0;
    return Rotor;
}

struct CFaultRun : CWholeRun {
    CFaultRun(const CFamilyCase& rFamily, const json& rFault) : CWholeRun(MakeRotor(rFamily.m_Modules)) {
        m_Options.m_Mode = rFamily.m_pMode;
        m_Options.m_bShowPage = false;
        OnSession = [this, rFault](CConsoleSession& rSession) {
            m_pSimulator = rSession.GetSimulator();
            if (!rFault.is_null()) {
                EXPECT_EQ(m_pSimulator->Carry({{"fault", rFault}}), json({{"ok", true}}));
            }
        };
        OnSituation = [this](const CSituation&, CConsoleSession&) {
            const json State = m_pSimulator->Carry({{"state", json::object()}});
            m_nSent.push_back(State["sent"]);
            m_nReceived = State["received"];
        };
    }
    /// What the run found and did, without the way to it.
    std::string GetOutcome() const {
        nlohmann::ordered_json Outcome = m_Report;
        Outcome.erase("steps");
        return Outcome.dump();
    }
    CSimulator* m_pSimulator = nullptr;
    std::vector<std::uint64_t> m_nSent;  ///< frames of the modules at every change of the panel
    std::uint64_t m_nReceived = 0;       ///< and for them, at the last one
};

/// Numbers of the frames to strike.
std::set<std::uint64_t> ChooseFrames(const CFaultRun& rReference, std::uint64_t nStep) {
    constexpr std::uint64_t nInitialisation = 20;
    std::set<std::uint64_t> Frames;
    for (std::uint64_t nFrame = 1; nFrame <= rReference.m_nSent.back(); nFrame += nStep * EVERY) {
        Frames.insert(nFrame);
    }
    for (std::uint64_t nFrame = 1; nFrame <= nInitialisation; nFrame += EVERY) {
        Frames.insert(nFrame);
    }
    for (const std::uint64_t nSent : rReference.m_nSent) {
        for (std::uint64_t nBack = 0; nBack < 3 && nBack < nSent && EVERY == 1; ++nBack) {
            Frames.insert(nSent - nBack);
        }
    }
    return Frames;
}

using CCase = std::tuple<CFamilyCase, CFaultCase>;
class EveryFrame : public testing::TestWithParam<CCase> {};

}  // namespace

// The run completes, and with the result that it has without the fault, to the last digit: a lost or damaged
// reading is never taken for a value, and no lost report leaves the procedure waiting.
TEST_P(EveryFrame, MayBeStruckWithoutHarm) {
    const auto& [rFamily, rFault] = GetParam();
    CFaultRun Reference(rFamily, nullptr);
    ASSERT_EQ(Reference.Run(Procedure::ePrebalance), eExitWithinTarget);
    ASSERT_GT(Reference.m_nSent.back(), 400U);
    for (const std::uint64_t nFrame : ChooseFrames(Reference, rFamily.m_nStep)) {
        json Fault = json::parse(rFault.m_pFault);
        Fault["at"] = nFrame;
        CFaultRun Run(rFamily, Fault);
        Run.Run(Procedure::ePrebalance);
        EXPECT_EQ(Run.GetOutcome(), Reference.GetOutcome()) << "frame " << nFrame;
    }
}

// The same for the questions.
TEST_P(EveryFrame, MayBeARequestAsWell) {
    const auto& [rFamily, rFault] = GetParam();
    CFaultRun Reference(rFamily, nullptr);
    ASSERT_EQ(Reference.Run(Procedure::ePrebalance), eExitWithinTarget);
    ASSERT_GT(Reference.m_nReceived, 10U);
    for (std::uint64_t nRequest = 1; nRequest <= Reference.m_nReceived; nRequest += EVERY) {
        json Fault = json::parse(rFault.m_pFault);
        Fault["at"] = nRequest;
        Fault["only"] = "requests";
        CFaultRun Run(rFamily, Fault);
        Run.Run(Procedure::ePrebalance);
        EXPECT_EQ(Run.GetOutcome(), Reference.GetOutcome()) << "request " << nRequest;
    }
}

INSTANTIATE_TEST_SUITE_P(WholeRun, EveryFrame,
                         testing::Combine(testing::ValuesIn(FAMILIES), testing::ValuesIn(FAULTS)),
                         [](const auto& rInfo) {
                             return std::string(std::get<0>(rInfo.param).m_pName) +
                                    std::get<1>(rInfo.param).m_pName;
                         });

namespace {

class OneOfTwoModules : public testing::TestWithParam<int> {};

}  // namespace

// The module falls silent while the test weights are fitted and the spindle comes up again, so that its last
// readings are those of the run before. They must not be taken for new ones, whatever the other module says.
TEST_P(OneOfTwoModules, SilentIsWaitedFor) {
    CFaultRun Reference(FAMILIES[1], nullptr);
    ASSERT_EQ(Reference.Run(Procedure::ePrebalance), eExitWithinTarget);
    CFaultRun Run(FAMILIES[1], nullptr);
    bool bDone = false;
    Run.OnSituation = [&](const CSituation& rSituation, CConsoleSession& rSession) {
        if (!bDone && rSituation.m_Progress.m_State == "Plane1TestUnbalanceRPMStart") {
            bDone = true;
            const json Fault = {{"kind", "silence_ms"}, {"value", 15000}, {"module", GetParam()}};
            EXPECT_EQ(rSession.GetSimulator()->Carry({{"fault", Fault}}), json({{"ok", true}}));
        }
    };
    Run.Run(Procedure::ePrebalance);
    ASSERT_TRUE(bDone);
    EXPECT_EQ(Run.GetOutcome(), Reference.GetOutcome());
}

INSTANTIATE_TEST_SUITE_P(WholeRun, OneOfTwoModules, testing::Values(1, 2),
                         [](const auto& rInfo) { return rInfo.param == 1 ? "Master" : "Slave"; });
