#pragma once
#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "archive/isodata.h"
#include "archive/vectorstatistics.h"
#include "contract/measurement.h"
#include "rvlib/math/matrix.h"

/// All that is known of one run, that is one procedure from its start to its end, however it ended: facts, as
/// host and messages told them. What can be computed from them isn't kept here. Planes are those of the
/// machine, from 0; what a run doesn't balance has no value. Times within a run are in ms since it began, by
/// the event loop. Readings are in counts as the modules send them: the mathematics turns the sign of X round
/// for a rotor that turns clockwise.

/// A screw in its hole. Holes count from 1, clockwise as seen from the plane's end, whatever the scale.
struct CFittedScrew {
    std::uint32_t m_Hole = 0;
    double m_Grams = 0.0;

    bool operator==(const CFittedScrew&) const = default;
};

/// What is fitted to a plane: weights, at whole degrees on the plane's scale, or screws.
struct CPlaneFitting {
    std::vector<int> m_Weights;
    std::vector<CFittedScrew> m_Screws;

    bool operator==(const CPlaneFitting&) const = default;
};

struct CArchivedReading {
    std::uint32_t m_Time = 0;
    std::int16_t m_X = 0;
    std::int16_t m_Y = 0;

    bool operator==(const CArchivedReading&) const = default;
};

/// A measurement in one plane.
struct CMeasuredPlane {
    /// As the module has smoothed it and goes on with it.
    CVectorReading m_Smoothed;
    /// The readings that arrived while the average was taken. A clock takes the samples of the average, so
    /// that one of these may have counted twice, or not at all.
    std::vector<CArchivedReading> m_Readings;
    /// Of these readings; they outlast them in an archive that has been thinned out.
    std::size_t m_nReadings = 0;
    CVectorReading m_Mean;
    double m_VarianceX = 0.0;  ///< sample covariance, over n - 1
    double m_VarianceY = 0.0;
    double m_CovarianceXY = 0.0;
    /// What was fitted meanwhile.
    CPlaneFitting m_Fitted;

    bool operator==(const CMeasuredPlane&) const = default;
};

/// A measurement that was accepted.
struct CRunMeasurement {
    Measurement m_Which = Measurement::eNone;
    std::uint64_t m_Time = 0;  ///< when it was accepted
    double m_MeanRpm = 0.0;    ///< of the speeds shown while the average was taken
    double m_MinRpm = 0.0;
    double m_MaxRpm = 0.0;
    std::array<std::optional<CMeasuredPlane>, 2> m_Planes;

    bool operator==(const CRunMeasurement&) const = default;
};

struct CTableScrew {
    std::string m_Name;
    double m_Grams = 0.0;

    bool operator==(const CTableScrew&) const = default;
};

/// How a plane is configured.
struct CPlaneSetup {
    bool m_bScrews = false;  ///< else weights
    bool m_bScaleClockwise = true;
    std::uint32_t m_nHoles = 0;  ///< from here on for screws
    std::uint32_t m_nScrews = 0;
    double m_ReferenceWeight = 0.0;  ///< grams that one unit of compensation stood for when the run began
    std::string m_TableName;
    std::vector<CTableScrew> m_Table;

    bool operator==(const CPlaneSetup&) const = default;
};

/// The configuration as it was when the run began.
struct CRunSetup {
    std::string m_Configuration;  ///< its name
    std::string m_Mode;           ///< "plane1", "plane2", "two-plane"
    bool m_bClockwise = true;     ///< the rotor, as seen from the plane's end; plane 1 of two
    std::uint32_t m_RpmTolerance = 0;
    std::uint32_t m_TargetUnbalance = 0;
    std::uint32_t m_nSamples = 0;  ///< of an average
    std::array<std::optional<CPlaneSetup>, 2> m_Planes;
    /// The influence that a re-balancing begins with; see below.
    math::matrix<double> m_InvA;
    std::vector<math::matrix<double>> m_UA;
    CIsoData m_Iso;
    /// All its properties by their names, as JSON.
    std::string m_Properties;
};

/// What a run has left in the store: the inverse of the influence, 2 by 2 as a complex block, or 4 by 4 for
/// two planes, and the compensation of each balanced plane, 2 by 1, both in the module's own frame.
struct CRunCalibration {
    std::uint32_t m_Rpm = 0;
    math::matrix<double> m_InvA;
    std::vector<math::matrix<double>> m_UA;
    /// Per plane of the machine, with screws: grams that one unit of compensation stands for.
    std::array<double, 2> m_ReferenceWeight{};
};

/// What was to be expected of the final measurement in one plane, before anything was moved.
struct CPlanePrediction {
    CVectorReading m_Reading;
    double m_VarianceX = 0.0;  ///< of the error of the prediction, that of the final measurement included
    double m_VarianceY = 0.0;
    double m_CovarianceXY = 0.0;
    double m_Amplitude = 0.0;
    double m_AtMost95 = 0.0;  ///< that the amplitude exceeds in one of twenty runs only

    bool operator==(const CPlanePrediction&) const = default;
};

struct CRunWarning {
    std::uint64_t m_Time = 0;
    std::uint32_t m_Number = 0;
    std::string m_Text;  ///< as it stood on the page

    bool operator==(const CRunWarning&) const = default;
};

struct CRunRecord {
    enum class Driver : std::uint8_t { ePanel, eNc, eHeadless };
    enum class State : std::uint8_t {
        eRunning,    ///< nothing is known of its end: of a record read from the archive, it was interrupted
        eFinished,   ///< to a verdict on a whole measurement
        eBrokenOff,  ///< by somebody, or because the program was told to end
        eFailed      ///< by the module
    };

    std::int64_t m_Id = 0;                 ///< in the archive; 0: in none
    std::chrono::sys_seconds m_Started{};  ///< the real date, also under virtual time
    std::chrono::sys_seconds m_Ended{};
    std::string m_Version;  ///< of the console
    std::string m_Machine;  ///< key of the machine's database
    std::string m_Rotor;    ///< as somebody called it; may be empty
    Driver m_Driver = Driver::ePanel;
    bool m_bRebalance = false;
    std::string m_Family;  ///< of the modules: "kestrel", "kestrel-pair", "lanner"
    std::vector<std::uint8_t> m_Addresses;
    CRunSetup m_Setup;
    std::vector<CRunMeasurement> m_Measurements;  ///< in their order
    std::array<std::optional<CPlanePrediction>, 2> m_Prediction;
    std::vector<CRunWarning> m_Warnings;
    std::optional<CRunCalibration> m_Calibration;
    State m_State = State::eRunning;
    std::string m_Result = "Inactive";  ///< the last step by its name, over target included
    bool m_bSaved = false;

    /// The latest of that kind, null if there is none.
    const CRunMeasurement* Find(Measurement Which) const;
    /// The grams that one unit of compensation stands for in a plane with screws: those of the test screw,
    /// the last one that was alone in it while a test was measured, or else as the configuration had it.
    double GetReferenceWeight(std::size_t Plane) const;
    /// The smoothed amplitude of the latest measurement of that kind, in counts, of two planes the larger
    /// one; nothing if there is none.
    std::optional<double> GetReading(Measurement Which) const;
    /// The influence of a unit of compensation on the readings, in the module's own frame, 2 by 2 or 4 by 4:
    /// as the run has found it, or else as it began with. Nothing if there is none of the size of its planes.
    std::optional<math::matrix<double>> GetInfluence() const;
};
