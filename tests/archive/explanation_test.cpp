#include "archive/explanation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "archive/advice.h"
#include "platform/rvldb/gettext.h"
#include "tests/archive/simulatedrun.h"

namespace {

CSimulatedRun::CSetup MakeSetup(const std::string& rMode = "plane1", bool bScrews = false) {
    CSimulatedRun::CSetup Setup;
    Setup.m_Mode = rMode;
    Setup.m_bScrews = bScrews;
    Setup.m_Noise = 3.0;
    Setup.m_Rotor =
        CRotorFile::GetBuiltIn(rMode == "plane1" ? CRotorFile::eKestrel : CRotorFile::eKestrelPair);
    Setup.m_Rotor.m_Planes[0].m_Unbalance = {1.1, 123.0};
    Setup.m_Table = {{"A", 0.25}, {"B", 0.5}, {"C", 1.0}};
    if (rMode == "two-plane") {
        Setup.m_Rotor.m_Planes[1].m_Unbalance = {0.7, 205.0};
        Setup.m_Rotor.m_Influence = {{{150.0, 40.0}, {45.0, 75.0}}, {{38.0, 10.0}, {140.0, 300.0}}};
    }
    return Setup;
}

CRunAdvice::CExplanation Explain(CSimulatedRun& rRun) {
    SetLanguage("en");
    return Advise(rRun.GetRecord(), {.m_Repeatability = 0.0, .m_Earlier = {}, .m_Asked = {}})
        .m_Explanation.value();
}

CRunAdvice::CExplanation ExplainWith(CSimulatedRun::CSetup Setup, CSimulatedRun::Hand Wrong) {
    CSimulatedRun Run(std::move(Setup));
    Run.SetHand(std::move(Wrong));
    Run.Run();
    return Explain(Run);
}

bool Names(const CRunAdvice::CExplanation& rExplanation, const std::string& rMistake) {
    return ("|" + rExplanation.m_Mistake + "|").find("|" + rMistake + "|") != std::string::npos;
}

}  // namespace

TEST(Explanation, RightRunIsNotAccused) {
    for (const bool bScrews : {false, true}) {
        for (const char* const pMode : {"plane1", "two-plane"}) {
            CSimulatedRun Run(MakeSetup(pMode, bScrews));
            Run.Run();
            const auto Text = Explain(Run);
            EXPECT_TRUE(Text.m_bInside) << pMode << bScrews;
            EXPECT_EQ(Text.m_Mistake, "");
            EXPECT_NE(Text.m_Text.find("as expected"), std::string::npos) << Text.m_Text;
        }
    }
}

TEST(Explanation, WeightThatStayedIsNamedWithItsPlace) {
    const auto Text =
        ExplainWith(MakeSetup(), [](Measurement Which, std::size_t, const CPlaneFitting& rNoted) {
            CPlaneFitting True = rNoted;
            if (Which == Measurement::eFinal) {
                True.m_Weights[1] = 180;
            }
            return True;
        });
    EXPECT_FALSE(Text.m_bInside);
    EXPECT_TRUE(Names(Text, "weight_not_moved")) << Text.m_Mistake;
    EXPECT_NE(Text.m_Text.find("as if weight 2 had stayed at 180°"), std::string::npos) << Text.m_Text;
}

TEST(Explanation, WeightElsewhereIsEstimated) {
    int Noted = 0;
    const auto Text =
        ExplainWith(MakeSetup(), [&](Measurement Which, std::size_t, const CPlaneFitting& rNoted) {
            CPlaneFitting True = rNoted;
            if (Which == Measurement::eFinal) {
                Noted = rNoted.m_Weights[0];
                True.m_Weights[0] += 25;
            }
            return True;
        });
    EXPECT_TRUE(Names(Text, "weight_elsewhere")) << Text.m_Mistake;
    const std::string Instead = " instead of " + std::to_string(Noted) + "°";
    EXPECT_NE(Text.m_Text.find(Instead), std::string::npos) << Text.m_Text;
}

TEST(Explanation, SensesCantBeToldApart) {
    CSimulatedRun::CSetup Setup = MakeSetup();
    CSimulatedRun Run(Setup);
    Run.TurnSense();
    Run.Run();
    const auto Text = Explain(Run);
    EXPECT_TRUE(Names(Text, "scale_sense")) << Text.m_Mistake;
    EXPECT_TRUE(Names(Text, "rotation_sense")) << Text.m_Mistake;
    EXPECT_NE(Text.m_Text.find("the rotation or scale sense were the other one"), std::string::npos)
        << Text.m_Text;
}

TEST(Explanation, OppositeAtTheEndOrInTheTestCantBeToldApart) {
    for (const Measurement Wrong : {Measurement::eTest1, Measurement::eFinal}) {
        const auto Text =
            ExplainWith(MakeSetup(), [Wrong](Measurement Which, std::size_t, const CPlaneFitting& rNoted) {
                CPlaneFitting True = rNoted;
                for (int& rEach : True.m_Weights) {
                    rEach += Which == Wrong ? 180 : 0;
                }
                return True;
            });
        EXPECT_TRUE(Names(Text, "weights_opposite")) << Text.m_Mistake;
        EXPECT_TRUE(Names(Text, "weights_opposite_in_test")) << Text.m_Mistake;
        EXPECT_NE(Text.m_Text.find("both at the end, or both in the test run"), std::string::npos)
            << Text.m_Text;
    }
}

TEST(Explanation, ExchangedEqualWeightsHaveNoEffect) {
    const auto Text =
        ExplainWith(MakeSetup(), [](Measurement Which, std::size_t, const CPlaneFitting& rNoted) {
            CPlaneFitting True = rNoted;
            if (Which == Measurement::eFinal) {
                std::swap(True.m_Weights[0], True.m_Weights[1]);
            }
            return True;
        });
    EXPECT_TRUE(Text.m_bInside);
}

TEST(Explanation, ForgottenScrewIsNamed) {
    const auto Text = ExplainWith(MakeSetup("plane1", true),
                                  [](Measurement Which, std::size_t, const CPlaneFitting& rNoted) {
                                      CPlaneFitting True = rNoted;
                                      if (Which == Measurement::eFinal) {
                                          True.m_Screws.pop_back();
                                      }
                                      return True;
                                  });
    EXPECT_TRUE(Names(Text, "screw_forgotten")) << Text.m_Mistake;
    EXPECT_NE(Text.m_Text.find("were missing"), std::string::npos) << Text.m_Text;
}

TEST(Explanation, TestScrewThatWasLeftInIsNamed) {
    const auto Text = ExplainWith(MakeSetup("plane1", true),
                                  [](Measurement Which, std::size_t, const CPlaneFitting& rNoted) {
                                      CPlaneFitting True = rNoted;
                                      if (Which == Measurement::eFinal) {
                                          True.m_Screws.push_back({1, 1.0});
                                      }
                                      return True;
                                  });
    EXPECT_TRUE(Names(Text, "test_screw_left")) << Text.m_Mistake;
    EXPECT_NE(Text.m_Text.find("the test screw were still in hole 1"), std::string::npos) << Text.m_Text;
}

TEST(Explanation, ExchangedPlanesAreNamed) {
    CSimulatedRun Run(MakeSetup("two-plane"));
    Run.SetHand([&Run](Measurement Which, std::size_t Plane, const CPlaneFitting& rNoted) {
        return Which == Measurement::eFinal ? Run.GetNoted()[1 - Plane] : rNoted;
    });
    Run.Run();
    const auto Text = Explain(Run);
    EXPECT_TRUE(Names(Text, "planes_exchanged")) << Text.m_Mistake;
}

TEST(Explanation, WeightOfTheSecondPlaneIsNamedWithIt) {
    const auto Text = ExplainWith(MakeSetup("two-plane"),
                                  [](Measurement Which, std::size_t Plane, const CPlaneFitting& rNoted) {
                                      CPlaneFitting True = rNoted;
                                      if (Which == Measurement::eFinal && Plane == 1) {
                                          True.m_Weights[1] = 180;
                                      }
                                      return True;
                                  });
    EXPECT_NE(Text.m_Text.find("weight 2 of plane 2 had stayed at 180°"), std::string::npos) << Text.m_Text;
}

TEST(Explanation, NothingSingleExplainsARotorThatChanged) {
    CSimulatedRun Run(MakeSetup("two-plane"));
    Run.RunTests();
    Run.GetRotor().SetUnbalance(0, 1.9, 290.0);
    Run.GetRotor().SetUnbalance(1, 1.7, 15.0);
    Run.RunFinal();
    const auto Text = Explain(Run);
    EXPECT_FALSE(Text.m_bInside);
    EXPECT_EQ(Text.m_Mistake, "");
    EXPECT_NE(Text.m_Text.find("Look for"), std::string::npos) << Text.m_Text;
}

TEST(Explanation, FewReadingsAccuseNobody) {
    auto Setup = MakeSetup();
    Setup.m_nReadings = 4;
    CSimulatedRun Run(Setup);
    Run.SetHand([](Measurement Which, std::size_t, const CPlaneFitting& rNoted) {
        return Which == Measurement::eFinal ? CPlaneFitting{{0, 180}, {}} : rNoted;
    });
    Run.Run();
    EXPECT_FALSE(Advise(Run.GetRecord()).m_Explanation);
}
