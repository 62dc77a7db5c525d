#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "archive/runrecord.h"

/// What is made of a run's record for people to act by, beside what the module says. What isn't known is no
/// value. Formulas, sources and thresholds stand in docs/method.md. All texts are in the language in use.
struct CRunAdvice {
    /// How far the test run stands out from the noise; of two legs the weaker one.
    struct CQuality {
        enum class TestRun : std::uint8_t {
            eGood,
            eWeak,
            eNone  ///< no effect that can be told from noise
        };
        TestRun m_TestRun = TestRun::eNone;
        double m_Change = 0.0;          ///< length of the change, counts
        double m_Uncertainty = 0.0;     ///< of that length, for 95 %
        double m_RelativeChange = 0.0;  ///< of the first reading, 1 for as much as it
        double m_StandardErrors = 0.0;
        std::string m_Text;  ///< a sentence for people
        /// Of two planes: condition number of the influence with columns of length one, 1 is best.
        std::optional<double> m_Condition;
        enum class Light : std::uint8_t { eGreen, eYellow, eRed };
        Light m_ConditionLight = Light::eGreen;
        std::string m_ConditionText;
    };
    /// What is to be expected of the final measurement; planes of the machine.
    struct CPrediction {
        std::array<std::optional<CPlanePrediction>, 2> m_Planes;
        std::string m_Text;  ///< "Expected: 1.4 µm/s, at most 2.9"
    };
    /// What a final reading says of the run.
    struct CExplanation {
        bool m_bInside = true;  ///< of the region that a right run stays in
        /// By its name in files, as "weight_not_moved"; those that can't be told apart separated by '|';
        /// empty: none is named.
        std::string m_Mistake;
        std::string m_Text;  ///< a sentence for people
    };
    /// How the influence of a run agrees with that of earlier ones of the same configuration.
    struct CInfluence {
        std::size_t m_nRuns = 0;            ///< earlier ones
        bool m_bDiffers = false;            ///< from their 99 % region
        math::matrix<double> m_InvA;        ///< mean of the earlier ones, in the form of a calibration
        double m_RelativeScatter = 0.0;     ///< of one influence about their mean
        double m_RelativeDifference = 0.0;  ///< of this run's from the mean
        std::string m_Text;
    };

    std::optional<CQuality> m_Quality;
    std::optional<CPrediction> m_Prediction;
    std::optional<CExplanation> m_Explanation;
    std::optional<CInfluence> m_Influence;
    /// What helps when the module has refused a test run although it changed the reading; else empty.
    std::string m_Refusal;
    /// The test that is to be made next, by earlier runs or by what is known of the rotor; else empty.
    std::string m_Suggestion;
};
