#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tests/archive/simulatedrun.h"
#include "tests/support/chance.h"

/// One of the eight kinds of runs.
struct CAccuracyWorld {
    bool m_bTwoPlanes = false;
    bool m_bScrews = false;
    bool m_bRebalance = false;

    std::size_t GetPlanes() const { return m_bTwoPlanes ? 2 : 1; }
    /// "one plane, weights, pre-balancing"
    std::string GetName() const;
    static std::vector<CAccuracyWorld> GetAll();
};

/// Between which bounds chance chooses.
struct CAccuracyRange {
    double m_Low = 0.0;
    double m_High = 0.0;
};

/// What a population of runs is like.
struct CAccuracyConditions {
    /// Deviation of one reading, of each of X and Y, relative to the first reading.
    CAccuracyRange m_Noise{0.0, 0.05};
    /// Change by the test run relative to the first reading; every ratio is as likely.
    CAccuracyRange m_Effect{0.05, 2.0};
    /// Share of the capacity that the correction takes.
    CAccuracyRange m_Capacity{0.2, 1.0};
    /// First reading in counts; every ratio is as likely.
    CAccuracyRange m_Reading{300.0, 6000.0};
    CAccuracyRange m_Samples{20.0, 100.0};
    /// Of two planes: what a sensor reads of the other plane's unbalance relative to its own sensor.
    CAccuracyRange m_Coupling{0.0, 0.6};
    /// In place of the coupling: so badly the sensors tell the planes apart, by the condition number of the
    /// influence with its columns scaled to one length; 1: they don't feel each other at all.
    std::optional<double> m_Condition;
    /// Deviation of a measurement, of each of X and Y, relative to its reading.
    CAccuracyRange m_Drift{0.0, 0.0};
    /// Window of the speed relative to it; each measurement has a speed of its own within it.
    CAccuracyRange m_SpeedTolerance{0.0, 0.0};
    /// Of a single plane: what its sensor reads of another one, relative.
    CAccuracyRange m_CrossTalk{0.0, 0.0};
    /// Deviation, of each of real and imaginary part, by which the influence has changed, relative, when it
    /// is used again.
    CAccuracyRange m_InfluenceDrift{0.0, 0.0};
    /// Test run with the standard step of 30 degrees.
    bool m_bStandardStep = false;

    /// Noise, counts and positions only.
    static CAccuracyConditions MakePlain() { return {}; }
    /// All that may go wrong on a machine at once.
    static CAccuracyConditions MakeFull();
};

/// A run by chance, with all that theory has to know of it.
struct CRandomRun {
    CAccuracyWorld m_World;
    CSimulatedRun::CSetup m_Setup;
    /// What the rotor has become when it is balanced again.
    CRotorFile m_Later = CRotorFile::GetBuiltIn();
    std::array<double, 2> m_ReadingDeviation{};  ///< by sensor, counts
    double m_GainVariance = 0.0;
    double m_InfluenceDrift = 0.0;

    static CRandomRun Make(const CAccuracyWorld& rWorld, const CAccuracyConditions& rConditions,
                           CChance& rChance);
    /// Grams, or weights, that a plane's means reach by the module's own bound.
    static double GetCapacity(const CSimulatedRun::CSetup& rSetup, std::size_t Plane);
};
