// Every single frame of a whole run is struck by a fault, one at a time: by each kind with
// ROTOR_TRIM_TEST_FULL in the environment, else the kinds take turns, but around each change of the panel,
// where each kind strikes.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <set>

#include "tests/support/chance.h"
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
    /// Every so many of the frames between two changes of the panel, which are speeds and readings one like
    /// the other. With as many as there are kinds of faults each frame is struck by one of them.
    std::uint64_t m_nStep;
};
constexpr CFamilyCase FAMILIES[] = {
    {"Kestrel", CRotorFile::eKestrel, "", 5},
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
        // When it was, which readings arrived, and what is made of how they scatter.
        for (const char* const pWay : {"steps", "measurements", "quality", "prediction", "explanation"}) {
            Outcome.erase(pWay);
        }
        return Outcome.dump();
    }
    CSimulator* m_pSimulator = nullptr;
    std::vector<std::uint64_t> m_nSent;  ///< frames of the modules at every change of the panel
    std::uint64_t m_nReceived = 0;       ///< and for them, at the last one
};

/// Numbers of the frames to strike. nTurn: that of the fault's kind.
std::set<std::uint64_t> ChooseFrames(const CFaultRun& rReference, std::uint64_t nStep, std::uint64_t nTurn) {
    constexpr std::uint64_t INITIALISATION = 20;
    std::set<std::uint64_t> Frames;
    if (std::getenv("ROTOR_TRIM_TEST_FULL") != nullptr) {
        nStep = 1;
    }
    for (std::uint64_t nFrame = 1 + nTurn % nStep; nFrame <= rReference.m_nSent.back();
         nFrame += nStep * EVERY) {
        Frames.insert(nFrame);
    }
    for (std::uint64_t nFrame = 1; nFrame <= INITIALISATION; nFrame += EVERY) {
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
    const auto Turn = static_cast<std::uint64_t>(
        std::ranges::find(FAULTS, rFault.m_pName, &CFaultCase::m_pName) - std::begin(FAULTS));
    for (const std::uint64_t nFrame : ChooseFrames(Reference, rFamily.m_nStep, Turn)) {
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

struct CSeries {
    std::string m_Name;
    CFamilyCase m_Family;
    bool m_bScrews = false;
    Procedure m_Procedure = Procedure::ePrebalance;

    std::unique_ptr<CFaultRun> MakeRun(const json& rFault) const {
        auto pRun = std::make_unique<CFaultRun>(m_Family, rFault);
        if (m_bScrews) {
            pRun->m_Options.m_Methods = {"screws"};
            pRun->m_Options.m_ScrewTable = {0.1, 0.2, 0.3, 0.4, 0.5, 0.7, 0.9, 1.2};
        }
        return pRun;
    }
};

std::vector<CSeries> MakeAllSeries() {
    std::vector<CSeries> All;
    std::vector<CFamilyCase> Families(std::begin(FAMILIES), std::end(FAMILIES));
    Families.push_back({"LannerTwoPlane", CRotorFile::eLanner, "two-plane", 1});
    for (const CFamilyCase& rFamily : Families) {
        for (const bool bScrews : {false, true}) {
            for (const Procedure Which : {Procedure::ePrebalance, Procedure::ePrebalanceAndRebalance}) {
                const bool bBoth = Which == Procedure::ePrebalanceAndRebalance;
                All.push_back({std::string(rFamily.m_pName) + (bScrews ? " screws" : " weights") +
                                   (bBoth ? " pre and re" : " pre"),
                               rFamily, bScrews, Which});
            }
        }
    }
    return All;
}

/// What a run without a fault does.
struct CReference {
    std::string m_Outcome;
    std::uint64_t m_nSent = 0;
    std::uint64_t m_nReceived = 0;
};

}  // namespace

// All families, both means, one and both procedures; each kind of fault, one, two and three frames in a row,
// of the modules or to them: drawn by lot, 5,000 of them with ROTOR_TRIM_TEST_FULL in the environment.
TEST(FramesInARow, MayBeStruckWithoutHarm) {
    const int nDraws = std::getenv("ROTOR_TRIM_TEST_FULL") != nullptr ? 5000 : EVERY == 1 ? 150 : 15;
    const std::vector<CSeries> All = MakeAllSeries();
    std::map<std::string, CReference> References;
    CChance Chance(1);
    for (int nDraw = 0; nDraw < nDraws; ++nDraw) {
        const CSeries& rSeries = Chance.Pick(All);
        CReference& rReference = References[rSeries.m_Name];
        if (rReference.m_nSent == 0) {
            const auto pRun = rSeries.MakeRun(nullptr);
            ASSERT_EQ(pRun->Run(rSeries.m_Procedure), eExitWithinTarget) << rSeries.m_Name;
            rReference = {pRun->GetOutcome(), pRun->m_nSent.back(), pRun->m_nReceived};
        }
        const CFaultCase& rFault = Chance.Pick(FAULTS);
        json Fault = json::parse(rFault.m_pFault);
        const bool bRequests = Chance.Happens(0.2);
        Fault["at"] = 1 + Chance.Draw(bRequests ? rReference.m_nReceived : rReference.m_nSent);
        Fault["next"] = 1 + Chance.Draw(3);
        if (bRequests) {
            Fault["only"] = "requests";
        }
        const auto pRun = rSeries.MakeRun(Fault);
        pRun->Run(rSeries.m_Procedure);
        EXPECT_EQ(pRun->GetOutcome(), rReference.m_Outcome) << rSeries.m_Name << ", " << Fault.dump();
    }
}

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
