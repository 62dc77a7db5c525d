// The final reading, which decides on the exit status, is a measurement: the whole window taken in lock and
// at speed. What happens in the middle of it counts as much as the physics say.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <functional>
#include <optional>
#include <set>

#include "platform/rvmdb/prebaldatabase.h"
#include "tests/support/pagecolors.h"
#include "tests/support/tempdirectory.h"
#include "tests/system/wholerun.h"

namespace {

using nlohmann::json;
using Procedure = COptions::Procedure;

/// Into the sampling of the final measurement, with the window of two seconds half full.
constexpr std::uint32_t STRIKE_AFTER = 1000;
constexpr std::uint32_t LOSS_MS = 300;

struct CLossCase {
    const char* m_pName;
    CRotorFile::Modules m_Modules;
    bool m_bSpeed;  ///< the speed leaves its window; else the lock is lost
    Procedure m_Procedure;
};

/// No weight moves by itself, but balancing rings shift and wheels lose pieces, and that is what costs the
/// lock.
class LossInTheFinalMeasurement : public testing::TestWithParam<CLossCase> {
protected:
    static CRotorFile MakeRotor() {
        CRotorFile Rotor = CRotorFile::GetBuiltIn(GetParam().m_Modules);
        Rotor.m_NoiseCounts = 0.0;
        Rotor.m_RampRpmPerS = 30000.0;
        return Rotor;
    }

    LossInTheFinalMeasurement() {
        if (GetParam().m_Modules == CRotorFile::eLanner) {
            m_Run.m_Options.m_Mode = "two-plane";
        }
        if (GetParam().m_Procedure == Procedure::eRebalance) {
            EXPECT_EQ(m_Run.Run(Procedure::ePrebalance), eExitWithinTarget);
        }
    }
    /// Amount: what the last plane's unbalance becomes, in weights, when the condition is lost.
    ExitCode RunWithLoss(std::optional<double> Amount) {
        m_Run.OnSituation = [this, Amount](const CSituation& rSituation, CConsoleSession& rSession) {
            if (!m_bStruck && IsVerdict(rSituation.m_Notification.GetStep())) {
                m_bStruck = true;
                After(STRIKE_AFTER, [this, Amount, &rSession] { Strike(Amount, *rSession.GetSimulator()); });
            }
        };
        return m_Run.Run(GetParam().m_Procedure);
    }
    /// What the sensors read of what is really left on the rotor.
    double GetTrueReading(std::size_t Sensor) const {
        std::complex<double> Reading;
        for (std::size_t Plane = 0; Plane < m_Run.m_Residuals.size(); ++Plane) {
            const auto& rInfluence = m_Run.m_Rotor.m_Influence[Sensor][Plane];
            Reading += std::polar(rInfluence.m_Amplitude, rInfluence.m_PhaseDeg * std::acos(-1.0) / 180.0) *
                       std::conj(m_Run.m_Residuals[Plane]);
        }
        return std::abs(Reading);
    }
    void ExpectTrueFinalReadings() const {
        const auto& rFinal = m_Run.m_Report.at("final");
        ASSERT_EQ(rFinal.size(), m_Run.m_Residuals.size());
        for (std::size_t Sensor = 0; Sensor < rFinal.size(); ++Sensor) {
            EXPECT_NEAR(rFinal[Sensor].at("amplitude").get<double>(), GetTrueReading(Sensor), 1.0);
        }
    }

    CWholeRun m_Run{MakeRotor()};
    bool m_bStruck = false;

private:
    static void After(std::uint32_t Milliseconds, std::function<void()> Do) {
        IFEventLoop::Current().SetTimer(Milliseconds, [Do = std::move(Do)](std::uint32_t Id) {
            IFEventLoop::Current().KillTimer(Id);
            Do();
        });
    }
    void Strike(std::optional<double> Amount, CSimulator& rSimulator) const {
        const json Good = {{"ok", true}};
        if (GetParam().m_bSpeed) {
            EXPECT_EQ(rSimulator.Carry({{"speed", 3060}}), Good);
            After(LOSS_MS, [&rSimulator] { rSimulator.Carry({{"speed", 3000}}); });
        } else {
            EXPECT_EQ(rSimulator.Carry({{"fault", {{"kind", "unlock_ms"}, {"value", LOSS_MS}}}}), Good);
        }
        if (Amount) {
            const std::size_t nPlanes = m_Run.m_Rotor.m_Planes.size();
            const double AngleDeg = m_Run.m_Rotor.m_Planes[nPlanes - 1].m_Unbalance.m_AngleDeg;
            EXPECT_EQ(
                rSimulator.Carry(
                    {{"unbalance", {{"plane", nPlanes}, {"amount", *Amount}, {"angle_deg", AngleDeg}}}}),
                Good);
        }
    }
};

}  // namespace

TEST_P(LossInTheFinalMeasurement, IsFollowedByAWholeMeasurementThatIsJudged) {
    EXPECT_EQ(RunWithLoss(std::nullopt), eExitWithinTarget);
    ASSERT_TRUE(m_bStruck);
    ExpectTrueFinalReadings();
    EXPECT_TRUE(m_Run.GetAssertions().empty());
}

TEST_P(LossInTheFinalMeasurement, DoesNotHideWhatTheRotorHasBecome) {
    EXPECT_EQ(RunWithLoss(1.5), eExitOverTarget);
    ASSERT_TRUE(m_bStruck);
    ExpectTrueFinalReadings();
    EXPECT_EQ(m_Run.m_Report["exit"], 1);
}

INSTANTIATE_TEST_SUITE_P(
    WholeRun, LossInTheFinalMeasurement,
    testing::Values(CLossCase{"LockOnePlane", CRotorFile::eKestrel, false, Procedure::ePrebalance},
                    CLossCase{"LockOnePlaneRebalancing", CRotorFile::eKestrel, false, Procedure::eRebalance},
                    CLossCase{"LockTwoPlanes", CRotorFile::eKestrelPair, false, Procedure::ePrebalance},
                    CLossCase{"LockTwoPlanesRebalancing", CRotorFile::eKestrelPair, false,
                              Procedure::eRebalance},
                    CLossCase{"SpeedOnePlane", CRotorFile::eKestrel, true, Procedure::ePrebalance},
                    CLossCase{"SpeedTwoPlanes", CRotorFile::eKestrelPair, true, Procedure::ePrebalance},
                    CLossCase{"LockOneModuleTwoPlanes", CRotorFile::eLanner, false, Procedure::ePrebalance}),
    [](const auto& rInfo) { return rInfo.param.m_pName; });

namespace {

/// Steps of the notifications that were recorded, without repetitions.
std::vector<int> GetVerdicts(const CWholeRun& rRun) {
    std::vector<int> Verdicts;
    for (const auto& rStep : rRun.m_Report.at("steps")) {
        const int Step = rStep.at("notification").at(0).get<int>();
        if (IsVerdict(Step) && (Verdicts.empty() || Verdicts.back() != Step)) {
            Verdicts.push_back(Step);
        }
    }
    return Verdicts;
}

/// Ends over the target: two weights don't suffice.
CRotorFile MakeHeavyRotor() {
    CRotorFile Rotor = CRotorFile::GetBuiltIn();
    Rotor.m_NoiseCounts = 0.0;
    Rotor.m_Planes[0].m_Unbalance = {2.4, 255.0};
    return Rotor;
}

}  // namespace

TEST(FinalReading, VerdictBeginsWithTheEmptiedAverageUnlessTheFlagAsksForTheWholeWindow) {
    CWholeRun Run(MakeHeavyRotor());
    EXPECT_EQ(Run.Run(Procedure::ePrebalance), eExitOverTarget);
    EXPECT_EQ(GetVerdicts(Run),
              (std::vector<int>{CPreBalCodes::eSetupSuccess, CPreBalCodes::eSetupOverTarget}));
    CWholeRun WithFlag(MakeHeavyRotor());
    WithFlag.WriteSettings("PreBalancingVerdictOnFullWindow=\"1\"");
    EXPECT_EQ(WithFlag.Run(Procedure::ePrebalance), eExitOverTarget);
    EXPECT_EQ(GetVerdicts(WithFlag), std::vector<int>{CPreBalCodes::eSetupOverTarget});
    EXPECT_TRUE(WithFlag.GetAssertions().empty());
    EXPECT_EQ(WithFlag.m_Report["final"], Run.m_Report["final"]);
}

namespace {

/// Length of the gauge's bar on a picture of the page, over the length of its scale. The scale's axis is the
/// longest level line of ink that has the bar standing on its left end; 0 if there is none.
double GetGauge(const CBitmap& rPicture) {
    const auto GetRun = [&](int x, int y) {
        int nRun = 0;
        while (rPicture.GetPixel(x + nRun, y) == PageColors::INK) {
            ++nRun;
        }
        return nRun;
    };
    int nAxis = 0;
    int nBar = 0;
    for (int y = 1; y < rPicture.GetSize().cy; ++y) {
        for (int x = 0; x < rPicture.GetSize().cx; ++x) {
            const int nRun = GetRun(x, y);
            const bool bAlone = rPicture.GetPixel(x - 1, y) == PageColors::PANEL &&
                                rPicture.GetPixel(x + nRun, y) == PageColors::PANEL;
            if (nRun > nAxis && bAlone && GetRun(x, y - 1) > 0) {
                nAxis = nRun;
                nBar = GetRun(x, y - 1);
            }
            x += nRun;
        }
    }
    return nAxis > 1 ? static_cast<double>(nBar - 1) / (nAxis - 1) : 0.0;
}

}  // namespace

// 0.4 weights are left of 150 counts each: 60 counts, of the gauge's 200. Within a target of 100 counts, so
// that the verdict is told once, with the first sample, when the average has just been emptied.
TEST(FinalReading, LastScreenshotShowsTheResult) {
    const CTempDirectory Pictures;
    CWholeRun Run(MakeHeavyRotor());
    ASSERT_EQ(Run.Run(Procedure::ePrebalance), eExitOverTarget);
    {
        PreBalDB::SetDatabaseConnection("sqlite:" + Run.m_Installation.GetDatabaseFile().string());
        PreBalDB::CPreBalDatabase Database(Run.m_MachineName);
        Database.ReadConfiguration("Default").SetTargetUnbalance(100);
        Database.WriteConfiguration();
    }
    Run.m_Options.m_ScreenshotDirectory = Pictures.GetPath().string();
    ASSERT_EQ(Run.Run(Procedure::ePrebalance), eExitWithinTarget);
    ASSERT_EQ(GetVerdicts(Run), std::vector<int>{CPreBalCodes::eSetupSuccess});
    std::set<std::filesystem::path> Files;
    for (const auto& rEntry : std::filesystem::directory_iterator(Pictures.GetPath())) {
        Files.insert(rEntry.path());
    }
    ASSERT_GT(Files.size(), 11U);
    CBitmap Last;
    ASSERT_TRUE(Last.LoadPng(Files.rbegin()->string())) << *Files.rbegin();
    const double Final = Run.m_Report["final"][0]["amplitude"].get<double>();
    ASSERT_GT(Final, 50.0);
    EXPECT_NEAR(GetGauge(Last), Final / 200.0, 0.02) << *Files.rbegin();
}
