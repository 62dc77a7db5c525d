#pragma once
#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "contract/measurement.h"

/// Where a running procedure stands, for the host: its report, its progress line, a reader for people who
/// can't see the page. Filled by the module's window on message WM_RV_QUERYPROGRESS with a pointer to this in
/// lParam; the message answers 1 when a procedure runs, else 0 with the record unchanged.
struct CPreBalProgress {
    std::string m_State;  ///< name of the sequence's state, as in the log
    std::uint32_t m_Step = 0;
    std::uint32_t m_NumberOfSteps = 0;
    std::uint32_t m_InstructionMode = 0;
    std::string m_Instruction;  ///< the text on the page
    std::uint32_t m_WarningMode = 0;
    std::string m_Warning;  ///< the text on the page, empty without a warning
    std::int32_t m_Menu = -1;
    std::uint32_t m_CurrentRPM = 0;  ///< as the page shows it
    std::uint32_t m_CalibratedRPM = 0;
    std::uint32_t m_TargetUnbalance = 0;
    /// The smoothed reading per plane, in counts and degrees (0 up to but excluding 360).
    struct CReading {
        bool m_bShown = false;  ///< this plane is part of the procedure
        /// The whole average was taken in lock and at speed, and still is: it is a measurement.
        bool m_bComplete = false;
        double m_Amplitude = 0.0;
        double m_AngleDeg = 0.0;
    };
    std::array<CReading, 2> m_Readings;
    /// How far the measurement under way has come. Nothing of it means anything without one.
    struct CMeasuring {
        Measurement m_Which = Measurement::eNone;
        std::uint32_t m_TargetRPM = 0;  ///< centre of the speed window
        std::uint32_t m_RPMTolerance = 0;
        bool m_bAtSpeed = false;
        bool m_bLocked = false;
        /// Speed and lock have held long enough: samples are taken.
        bool m_bSampling = false;
        /// Samples in a row that were taken in lock and at speed, in the plane that has fewer, and how many
        /// make an average; one comes every m_SamplePeriod ms.
        std::uint32_t m_nAveraged = 0;
        std::uint32_t m_nNeeded = 0;
        std::uint32_t m_SamplePeriod = 0;
    };
    CMeasuring m_Measuring;
    /// A screw that the procedure shows.
    struct CShownScrew {
        std::uint32_t m_Hole = 0;  ///< from 1, clockwise as seen from the plane's end, whatever the scale
        double m_Grams = 0.0;      ///< exact; a notification has hundredths
    };
    /// The screws on show per plane, none that isn't placed; no list for a plane that has no screws as its
    /// means.
    std::array<std::optional<std::vector<CShownScrew>>, 2> m_Screws;
};
