#include "bench/accuracy/framesrun.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <numbers>

#include "bench/accuracy/truerotor.h"
#include "console/headlessrun.h"
#include "console/session.h"
#include "platform/system/virtualeventloop.h"
#include "rvlib/settings/installation.h"
#include "simulator/noise.h"
#include "simulator/simulator.h"

namespace {

using Complex = std::complex<double>;

/// Readings of a sensor that a session sends at most.
constexpr std::size_t STREAM = 5000;

std::vector<Complex> MakeStream(const CRotorFile& rRotor, std::size_t Sensor) {
    CNoise Noise(rRotor.m_Seed, static_cast<std::uint32_t>(Sensor), rRotor.m_NoiseCounts);
    std::vector<Complex> Stream;
    for (std::size_t i = 0; i < STREAM; ++i) {
        Stream.push_back(Noise.Next());
    }
    return Stream;
}

/// Takes the readings that arrived apart: which of a sensor's noise each had, and which of them the average
/// was made of.
class CReadingSource {
public:
    CReadingSource(const std::vector<Complex>& rNoise, bool bLanner, Complex True,
                   const CMeasuredPlane& rPlane, std::size_t nSamples)
        : m_rNoise(rNoise), m_True(True), m_rPlane(rPlane), m_nSamples(nSamples) {
        // A Lanner module draws noise for the amplitude, too, that it reports after every fourth reading.
        const std::size_t nPhases = bLanner ? EVERY : 1;
        const std::size_t nReadings = rPlane.m_Readings.size();
        for (std::size_t First = 2; First + 2 * nReadings < rNoise.size() && m_Samples.empty(); ++First) {
            for (std::size_t Phase = 0; Phase < nPhases && m_Samples.empty(); ++Phase) {
                std::vector<std::size_t> Places;
                for (std::size_t i = 0; i < nReadings; ++i) {
                    Places.push_back(First + i + (bLanner ? (i + Phase) / EVERY : 0));
                    if (GetCounts(Places.back()) != ToComplex(rPlane.m_Readings[i])) {
                        Places.clear();
                        break;
                    }
                }
                if (!Places.empty()) {
                    m_bFound = true;
                    // The one before the first that was kept.
                    FindSamples(Places, First - 1);
                    if (m_Samples.empty() && bLanner) {
                        FindSamples(Places, First - 2);
                    }
                }
            }
        }
    }
    /// Whether the readings are the rotor's with noise, rounded.
    bool IsFound() const { return m_bFound; }
    /// Places in the noise; empty if the average isn't one of the readings.
    const std::vector<std::size_t>& GetSamples() const { return m_Samples; }

private:
    static constexpr std::size_t EVERY = 4;

    static Complex ToComplex(const CArchivedReading& rReading) {
        return {static_cast<double>(rReading.m_X), static_cast<double>(rReading.m_Y)};
    }
    Complex GetCounts(std::size_t Place) const {
        const Complex Noisy = m_True + m_rNoise[Place];
        return {static_cast<double>(CRotor::ToCounts(Noisy.real())),
                static_cast<double>(CRotor::ToCounts(Noisy.imag()))};
    }
    /// The clock that takes the samples ticks every 50 ms, and takes the latest reading: one may count twice
    /// and another not at all. Sought is the instant of its last tick.
    void FindSamples(const std::vector<std::size_t>& rPlaces, std::size_t Before) {
        constexpr std::int64_t TICK = 50;
        const std::vector<CArchivedReading>& rArrived = m_rPlane.m_Readings;
        const std::int64_t Last = rArrived.back().m_Time;
        for (std::int64_t End = Last + 2 * TICK; End >= Last - 2 * TICK; --End) {
            std::vector<std::size_t> Samples;
            Complex Sum;
            for (std::size_t i = m_nSamples; i-- > 0;) {
                const std::int64_t At = End - static_cast<std::int64_t>(i) * TICK;
                const auto Next =
                    std::ranges::upper_bound(rArrived, At, {}, [](const CArchivedReading& rReading) {
                        return static_cast<std::int64_t>(rReading.m_Time);
                    });
                Samples.push_back(Next == rArrived.begin()
                                      ? Before
                                      : rPlaces[static_cast<std::size_t>(Next - rArrived.begin()) - 1]);
                Sum += GetCounts(Samples.back());
            }
            const Complex Mean(m_rPlane.m_Smoothed.m_X, m_rPlane.m_Smoothed.m_Y);
            if (std::abs(Sum / static_cast<double>(m_nSamples) - Mean) < 1e-6) {
                m_Samples = std::move(Samples);
                return;
            }
        }
    }

    const std::vector<Complex>& m_rNoise;
    Complex m_True;
    const CMeasuredPlane& m_rPlane;
    std::size_t m_nSamples;
    bool m_bFound = false;
    std::vector<std::size_t> m_Samples;
};

Textbook::Vector GetFitted(const CTrueRotor& rRotor, const CRunMeasurement& rMeasured) {
    Textbook::Vector Fitted{};
    for (std::size_t i = 0; i < Fitted.size(); ++i) {
        if (rMeasured.m_Planes[i]) {
            Fitted[i] = rRotor.GetSum(i, rMeasured.m_Planes[i]->m_Fitted);
        }
    }
    return Fitted;
}

bool IsSame(const CPlaneFitting& rLeft, const CPlaneFitting& rRight) {
    return rLeft.m_Weights == rRight.m_Weights &&
           std::ranges::equal(
               rLeft.m_Screws, rRight.m_Screws, [](const CFittedScrew& rOne, const CFittedScrew& rOther) {
                   return rOne.m_Hole == rOther.m_Hole && std::abs(rOne.m_Grams - rOther.m_Grams) < 1e-9;
               });
}

}  // namespace

CAccuracyInstallation::CAccuracyInstallation() : m_Installation("", true) {
    ResetInstallationRootForTest();  // that of the run before
    std::ofstream(m_Installation.GetConfigDirectory() / "mcon.xdb")
        << "<Corvane><system_falconet PreBalancingConsistentWeightOrder=\"1\"></system_falconet></Corvane>";
}

CRandomRun CFramesRun::MakeRun(const CAccuracyWorld& rWorld, bool bLanner, CChance& rChance) {
    CAccuracyConditions Conditions;
    Conditions.m_Samples = {40.0, 40.0};  // what a new configuration has
    Conditions.m_bStandardStep = true;
    CRandomRun Run = CRandomRun::Make(rWorld, Conditions, rChance);
    CSimulatedRun::CSetup& rSetup = Run.m_Setup;
    rSetup.m_TestGrams.fill(rSetup.m_Table[rSetup.m_Table.size() / 2].m_Grams);
    rSetup.m_RelativeNoise = 0.0;
    CRotorFile& rRotor = rSetup.m_Rotor;
    if (bLanner) {
        rRotor.m_Modules = CRotorFile::eLanner;
    }
    rRotor.m_NoiseCounts =
        *std::min_element(Run.m_ReadingDeviation.begin(),
                          Run.m_ReadingDeviation.begin() + static_cast<long>(rWorld.GetPlanes()));
    rRotor.m_Seed = rSetup.m_Seed;
    rRotor.m_RampRpmPerS = 3000.0;
    Run.m_Later = rRotor;
    for (CRotorFile::CRotorPlane& rPlane : Run.m_Later.m_Planes) {
        constexpr double FRACTION = 0.1;
        CRotorFile::CUnbalance& rUnbalance = rPlane.m_Unbalance;
        rUnbalance.m_AngleDeg = std::fmod(
            rUnbalance.m_AngleDeg + std::atan2(FRACTION, rUnbalance.m_Amount) * 180.0 / std::numbers::pi,
            360.0);
        rUnbalance.m_Amount = std::hypot(rUnbalance.m_Amount, FRACTION);
    }
    return Run;
}

CFramesRun::CFramesRun(const CRandomRun& rRun, const std::string& rModuleLibrary) {
    const CSimulatedRun::CSetup& rSetup = rRun.m_Setup;
    COptions Options;
    Options.m_bHeadless = true;
    Options.m_bArchive = false;
    Options.m_bShowPage = false;
    Options.m_Procedure = COptions::Procedure::ePrebalanceAndRebalance;
    Options.m_Mode = rSetup.m_Mode;
    Options.m_ModuleLibrary = rModuleLibrary;
    if (rSetup.m_bScrews) {
        Options.m_Methods = {"screws"};
        Options.m_nScrews = static_cast<int>(rSetup.m_nScrews);
        for (const CTableScrew& rScrew : rSetup.m_Table) {
            Options.m_ScrewTable.push_back(rScrew.m_Grams);
        }
    }
    CVirtualEventLoop Loop;
    CConsoleSession Session(Options, &rSetup.m_Rotor, m_Installation.Get().GetDatabaseFile().string());
    CHeadlessRun Headless(Session, Options);
    Headless.OnProgress = [](const std::string&) {};
    const auto KeepResiduals = [&] {
        std::vector<Complex> Residuals;
        for (std::size_t i = 0; i < rRun.m_World.GetPlanes(); ++i) {
            Residuals.push_back(Session.GetSimulator()->GetRotor().GetResidual(i));
        }
        m_Residuals.push_back(std::move(Residuals));
    };
    Headless.OnSituation = [&](const CSituation& rSituation) {
        m_bGivenUp = m_bGivenUp || !Headless.GetRecorder().GetAdviser().GetDoubt().empty();
        // Both sequences have a state of this name, one of them without its "e".
        if (m_Residuals.empty() && rSituation.m_Progress.m_State.ends_with("PreBalanceMeasurement")) {
            KeepResiduals();
        }
    };
    if (!Session.Initialise()) {
        m_Result = "the module did not answer";
        return;
    }
    Session.Commission();
    Headless.Run();
    KeepResiduals();
    Session.Close();
    m_Result = Headless.GetReport().GetResult();
    m_Records = Headless.GetRecorder().GetRecords();
}

CFramesAgreement CFramesAgreement::Compare(const CRandomRun& rRun, const CFramesRun& rFrames) {
    CFramesAgreement Result;
    const auto Fail = [&Result](const std::string& rWhat) {
        Result.m_bSame = false;
        if (Result.m_Fault.empty()) {
            Result.m_Fault = rWhat;
        }
    };
    const CRotorFile& rRotor = rRun.m_Setup.m_Rotor;
    const std::size_t nPlanes = rRun.m_World.GetPlanes();
    const std::size_t n = rRun.m_Setup.m_nReadings;

    // The measurements without the final ones: their noise, found in the stream of each sensor.
    struct CMeasured {
        const CRunMeasurement* m_pMeasured;
        std::array<std::vector<std::size_t>, 2> m_Samples;
    };
    std::vector<CMeasured> Measured;
    std::array<std::vector<Complex>, 2> Streams;
    for (std::size_t i = 0; i < nPlanes; ++i) {
        Streams[i] = MakeStream(rRotor, i);
    }
    for (std::size_t r = 0; r < rFrames.GetRecords().size(); ++r) {
        const CTrueRotor Rotor(r == 0 ? rRotor : rRun.m_Later);
        for (const CRunMeasurement& rMeasured : rFrames.GetRecords()[r].m_Measurements) {
            if (rMeasured.m_Which == Measurement::eFinal) {
                continue;
            }
            CMeasured Found{&rMeasured, {}};
            const Textbook::Vector Readings = Rotor.GetReading(GetFitted(Rotor, rMeasured));
            for (std::size_t i = 0; i < nPlanes; ++i) {
                const CReadingSource Source(Streams[i], rRotor.m_Modules == CRotorFile::eLanner,
                                            Rotor.FromSensor(Readings[i]), *rMeasured.m_Planes[i], n);
                if (Source.GetSamples().empty()) {
                    Fail(Source.IsFound() ? "an average that isn't one of the readings"
                                          : "readings that aren't the rotor's and the noise's");
                    return Result;
                }
                Found.m_Samples[i] = Source.GetSamples();
            }
            Measured.push_back(std::move(Found));
        }
    }

    CSimulatedRun::CSetup Setup = rRun.m_Setup;
    Setup.m_ReadingNoise = [&](std::size_t Which, std::size_t Plane, std::size_t Reading) {
        return Which < Measured.size() ? Streams[Plane][Measured[Which].m_Samples[Plane][Reading]] : 0.0;
    };
    CSimulatedRun Alone(std::move(Setup));
    std::size_t nCompared = 0;
    const auto CompareMeans = [&] {
        for (const CRunMeasurement& rMeasured : Alone.GetRecord().m_Measurements) {
            if (nCompared == Measured.size()) {
                if (!rFrames.IsGivenUp()) {
                    Fail("fewer measurements over frames: " + rFrames.GetResult());
                }
                return;
            }
            const CRunMeasurement& rOther = *Measured[nCompared++].m_pMeasured;
            for (std::size_t i = 0; i < nPlanes; ++i) {
                const CVectorReading& rOne = rMeasured.m_Planes[i]->m_Smoothed;
                const CVectorReading& rTwo = rOther.m_Planes[i]->m_Smoothed;
                Result.m_MeanDifference =
                    std::max(Result.m_MeanDifference, std::hypot(rOne.m_X - rTwo.m_X, rOne.m_Y - rTwo.m_Y));
                if (!IsSame(rMeasured.m_Planes[i]->m_Fitted, rOther.m_Planes[i]->m_Fitted)) {
                    Fail("what was fitted at a measurement");
                }
            }
        }
    };
    const auto CompareEnd = [&](std::size_t r) {
        const CRunMeasurement* const pFinal =
            r < rFrames.GetRecords().size() ? rFrames.GetRecords()[r].Find(Measurement::eFinal) : nullptr;
        if (pFinal == nullptr || r >= rFrames.GetResiduals().size()) {
            Fail("no final measurement: " + rFrames.GetResult());
            return;
        }
        Alone.Fit(Measurement::eFinal);
        for (std::size_t i = 0; i < nPlanes; ++i) {
            if (!IsSame(Alone.GetNoted()[i], pFinal->m_Planes[i]->m_Fitted)) {
                Fail("the placement");
            }
            Result.m_ResidualDifference =
                std::max(Result.m_ResidualDifference,
                         std::abs(Alone.GetRotor().GetResidual(i) - rFrames.GetResiduals()[r][i]) /
                             rRotor.m_Planes[i].m_Unbalance.m_Amount);
        }
    };
    Alone.RunTests();
    CompareMeans();
    if (rFrames.IsGivenUp()) {
        Result.m_bRefused = true;
        return Result;
    }
    if (!Alone.IsAccepted()) {
        Result.m_bRefused = true;
        if (rFrames.GetRecords().size() != 1 ||
            rFrames.GetRecords()[0].Find(Measurement::eFinal) != nullptr) {
            Fail("a test run that is refused");
        }
        return Result;
    }
    CompareEnd(0);
    const auto& rRecords = rFrames.GetRecords();
    const bool bRefused = rRecords.size() < 2 || rRecords[1].m_Measurements.empty();
    if (!Alone.Rebalance(rRun.m_Later)) {
        Result.m_bRefused = true;
        if (!bRefused) {
            Fail("a re-balancing that is refused");
        }
        return Result;
    }
    if (bRefused) {
        Fail("a re-balancing that is refused over frames only: " + rFrames.GetResult());
        return Result;
    }
    CompareMeans();
    CompareEnd(1);
    return Result;
}
