// How accurately the module balances: random rotors through its mathematics and methods, the same over real
// frames, beside theory and beside plain influence coefficients. Prints the tables of docs/accuracy.md; the
// same each time for the same seed. With --plots FOLDER it writes the pictures, too.
//
//     accuracy [--runs N] [--frames N] [--seed N] [--plots FOLDER] [worlds|frames|known|limits]...
#include <CLI/CLI.hpp>
#include <QApplication>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "bench/accuracy/accuracyfigures.h"
#include "bench/accuracy/accuracyplots.h"
#include "bench/accuracy/framesrun.h"

namespace {

using Outcome = CAccuracyRun::Outcome;

struct CArguments {
    std::size_t m_nRuns = 10000;
    std::size_t m_nFrames = 100;
    std::uint64_t m_Seed = 1;
    std::string m_Plots;
    std::vector<std::string> m_Tables;

    bool IsWanted(const std::string& rTable) const {
        return m_Tables.empty() || std::ranges::find(m_Tables, rTable) != m_Tables.end();
    }
};

double Percent(std::size_t nOf, std::size_t nAll) {
    return 100.0 * static_cast<double>(nOf) / static_cast<double>(nAll);
}

void PrintWorlds(const char* pTitle, const CAccuracyConditions& rConditions, const CArguments& rArguments,
                 double LargestError, bool bOwn) {
    std::printf("%s, %zu runs each\n\n", pTitle, rArguments.m_nRuns);
    std::printf(
        "| kind | refused %% | warned %% | median %% | theory | ratio | p95 %% | theory | ratio | worst %% | "
        "textbook: median | p95 | worst "
        "|%s\n|---|---:|---:|---:|---:|---:|---:|---:|---:|---:|---:|---:|---:|%s\n",
        bOwn ? " the plane itself: median |" : "", bOwn ? "---:|" : "");
    double Difference = 0.0;
    std::size_t nMirrored = 0;
    for (const CAccuracyWorld& rWorld : CAccuracyWorld::GetAll()) {
        const auto Figures =
            CAccuracyFigures::Make(rWorld, rConditions, rArguments.m_nRuns, rArguments.m_Seed, LargestError);
        Difference = std::max(Difference, Figures.m_LargestDifference);
        nMirrored += Figures.Count(Outcome::eMirrored);
        std::printf("| %s | %.1f | %.1f |", rWorld.GetName().c_str(),
                    Percent(Figures.Count(Outcome::eTestRefused), Figures.GetRuns()),
                    Percent(Figures.Count(Outcome::eCapacityWarned) + Figures.Count(Outcome::eStartRefused),
                            Figures.GetRuns()));
        for (const double Probability : {0.5, 0.95}) {
            const double Theory = Figures.m_Theory.GetQuantile(Probability);
            const double Simulated = Figures.m_Residuals.GetQuantile(Probability);
            std::printf(" %.2f | %.2f | %.3f ± %.3f |", 100.0 * Simulated, 100.0 * Theory, Simulated / Theory,
                        Simulated / Theory * Figures.m_Theory.GetRelativeError(Theory) *
                            std::sqrt(static_cast<double>(rWorld.GetPlanes())));
        }
        std::printf(" %.0f | %.2f | %.2f | %.0f |", 100.0 * Figures.m_Residuals.GetWorst(),
                    100.0 * Figures.m_Textbook.GetQuantile(0.5), 100.0 * Figures.m_Textbook.GetQuantile(0.95),
                    100.0 * Figures.m_Textbook.GetWorst());
        if (bOwn) {
            std::printf(" %.2f |", 100.0 * Figures.m_Own.GetQuantile(0.5));
        }
        std::printf("\n");
        std::fflush(stdout);
    }
    std::printf(
        "\nLargest difference of a compensation from the textbook's: %.1e of it. Mirrored positions: "
        "%zu.\n\n",
        Difference, nMirrored);
}

/// False if any differs.
bool PrintFrames(const CArguments& rArguments) {
    std::printf(
        "Pre-balancing and re-balancing over frames, and the mathematics alone with the same noise, "
        "%zu of each\n\n",
        rArguments.m_nFrames);
    std::printf(
        "| kind | runs | same placements | of these refused by both, or given up for noise | largest "
        "difference of averages, counts "
        "| of "
        "residuals, of the first |\n|---|---:|---:|---:|---:|---:|\n");
    bool bSame = true;
    for (const CAccuracyWorld& rWorld : CAccuracyWorld::GetAll()) {
        if (rWorld.m_bRebalance) {
            continue;  // each of the runs has both
        }
        CChance Chance(rArguments.m_Seed);
        std::size_t nSame = 0;
        std::size_t nRefused = 0;
        double Means = 0.0;
        double Residuals = 0.0;
        for (std::size_t i = 0; i < rArguments.m_nFrames; ++i) {
            const CRandomRun Run = CFramesRun::MakeRun(rWorld, rWorld.m_bTwoPlanes && i % 2 == 1, Chance);
            const CFramesRun Frames(Run, BENCH_BIN_DIR "/librtr_trim.so");
            const auto Agreement = CFramesAgreement::Compare(Run, Frames);
            nSame += Agreement.m_bSame ? 1 : 0;
            nRefused += Agreement.m_bRefused ? 1 : 0;
            Means = std::max(Means, Agreement.m_MeanDifference);
            Residuals = std::max(Residuals, Agreement.m_ResidualDifference);
            if (!Agreement.m_bSame) {
                std::fprintf(stderr, "%s, run %zu: %s\n", rWorld.GetName().c_str(), i,
                             Agreement.m_Fault.c_str());
            }
        }
        bSame = bSame && nSame == rArguments.m_nFrames;
        const std::string Name = rWorld.GetName();
        std::printf("| %s | %zu | %zu | %zu | %.1e | %.1e |\n", Name.substr(0, Name.rfind(',')).c_str(),
                    rArguments.m_nFrames, nSame, nRefused, Means, Residuals);
        std::fflush(stdout);
    }
    std::printf("\n");
    return bSame;
}

void PrintKnown(const CArguments& rArguments) {
    std::printf("One plane, weights, pre-balancing, beside figures known before, %zu runs each, %%\n\n",
                rArguments.m_nRuns);
    std::printf(
        "| case | median | theory | known | p95 | theory | known |\n|---|---:|---:|---:|---:|---:|---:|\n");
    const auto Print = [&](const char* pName, const CAccuracyConditions& rConditions, bool bRounded,
                           const char* pMedian, const char* pP95) {
        const auto Figures = CAccuracyFigures::Make({}, rConditions, rArguments.m_nRuns, rArguments.m_Seed);
        const CShareSample& rShares = bRounded ? Figures.m_Residuals : Figures.m_Textbook;
        const auto GetTheory = [&](double Probability) {
            if (bRounded) {
                return Figures.m_Theory.GetQuantile(Probability);
            }
            CResidualPopulation Unrounded = Figures.m_Theory;
            Unrounded.ForgetRounding();
            return Unrounded.GetQuantile(Probability);
        };
        std::printf("| %s | %.2f | %.2f | %s | %.2f | %.2f | %s |\n", pName, 100.0 * rShares.GetQuantile(0.5),
                    100.0 * GetTheory(0.5), pMedian, 100.0 * rShares.GetQuantile(0.95),
                    100.0 * GetTheory(0.95), pP95);
        std::fflush(stdout);
    };
    CAccuracyConditions Noisy;
    Noisy.m_Samples = {40.0, 40.0};
    Noisy.m_Noise.m_Low = Noisy.m_Noise.m_High = 0.005 * std::sqrt(40.0 / 2.0);
    Noisy.m_Effect = {0.5, 0.5};
    Noisy.m_Reading = {3000.0, 6000.0};
    Print("average's noise 0.5 %, effect 0.5, positions not rounded", Noisy, false, "1.21", "2.68");
    Print("the same, positions rounded", Noisy, true, "", "");
    Noisy.m_Capacity.m_Low = 0.2 / 1.95;
    Print("the same, corrections from 0.2 weights on", Noisy, true, "1.43", "3.44");
    for (const auto& [Capacity, pName, pKnown] :
         {std::tuple{0.95, "rounding alone at 95 % of capacity", "0.7"},
          std::tuple{0.2, "rounding alone at 20 % of capacity", "3.4"}}) {
        CAccuracyConditions Quiet;
        Quiet.m_Noise = {0.0, 0.0};
        Quiet.m_Effect = {0.5, 0.5};
        // Not quite one capacity: both positions would be rounded by the same remainders.
        Quiet.m_Capacity = {Capacity - 0.01, Capacity + 0.01};
        Quiet.m_Reading = {20000.0, 20000.0};
        Print(pName, Quiet, true, "", pKnown);
    }
    for (const auto& [Noise, pName, pMedian, pP95] :
         {std::tuple{0.0, "standard step, noise of a reading 0", "0.6", "1.5"},
          std::tuple{0.005, "standard step, 0.5 % of the first", "0.7", "2.0"},
          std::tuple{0.02, "standard step, 2 %", "1.6", "3.2"},
          std::tuple{0.05, "standard step, 5 %", "3.1", "8.4"}}) {
        CAccuracyConditions Standard;
        Standard.m_bStandardStep = true;
        Standard.m_Samples = {40.0, 40.0};
        Standard.m_Noise = {Noise, Noise};
        Print(pName, Standard, true, pMedian, pP95);
    }
    std::printf("\n");
}

void Keep(const CArguments& rArguments, const char* pName, const std::string& rSvg) {
    if (rArguments.m_Plots.empty()) {
        return;
    }
    std::ofstream File(std::filesystem::path(rArguments.m_Plots) / pName);
    if (!(File << rSvg).flush()) {
        throw std::runtime_error(rArguments.m_Plots + "/" + pName + " can't be written");
    }
}

int Run(const CArguments& rArguments) {
    if (!rArguments.m_Plots.empty()) {
        std::filesystem::create_directories(rArguments.m_Plots);
    }
    {
        const CAccuracyInstallation Installation;
        if (rArguments.IsWanted("worlds")) {
            CAccuracyConditions Mild;
            Mild.m_Capacity.m_High = 0.9;
            PrintWorlds("Noise and rounding only, errors of measurement below 10 %, to 90 % of capacity",
                        Mild, rArguments, 0.1, false);
            PrintWorlds("Noise and rounding only, the whole range", {}, rArguments,
                        std::numeric_limits<double>::infinity(), false);
            PrintWorlds("All that may go wrong at once", CAccuracyConditions::MakeFull(), rArguments,
                        std::numeric_limits<double>::infinity(), true);
        }
        if (rArguments.IsWanted("known")) {
            PrintKnown(rArguments);
        }
        if (rArguments.IsWanted("limits")) {
            const std::size_t nSome = std::max<std::size_t>(rArguments.m_nRuns / 5, 1);
            Keep(rArguments, "distribution.svg", AccuracyPlots::DrawDistribution(nSome, rArguments.m_Seed));
            Keep(rArguments, "time.svg", AccuracyPlots::DrawTime(nSome, rArguments.m_Seed));
            Keep(rArguments, "effect.svg", AccuracyPlots::DrawEffects(nSome / 2 + 1, rArguments.m_Seed));
            Keep(rArguments, "condition.svg",
                 AccuracyPlots::DrawConditions(nSome / 2 + 1, rArguments.m_Seed));
        }
    }
    return !rArguments.IsWanted("frames") || PrintFrames(rArguments) ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    CArguments Arguments;
    CLI::App Cli("How accurately the module balances");
    Cli.add_option("--runs", Arguments.m_nRuns, "random runs of each kind")->check(CLI::PositiveNumber);
    Cli.add_option("--frames", Arguments.m_nFrames, "runs of each kind over frames")
        ->check(CLI::PositiveNumber);
    Cli.add_option("--seed", Arguments.m_Seed, "of all chance");
    Cli.add_option("--plots", Arguments.m_Plots, "folder to write the plots to");
    Cli.add_option("tables", Arguments.m_Tables, "worlds, known, limits, frames; all unless given")
        ->check(CLI::IsMember({"worlds", "known", "limits", "frames"}));
    CLI11_PARSE(Cli, argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication App(argc, argv);
    try {
        return Run(Arguments);
    } catch (const std::exception& rError) {
        std::fprintf(stderr, "%s\n", rError.what());
        return 2;
    }
}
