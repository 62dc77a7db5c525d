#pragma once
#include <cstdint>

/// Steps and actions of a procedure, as numbers that NC and host receive. Never renumber.
class CPreBalCodes {
public:
    enum Step : std::int32_t {
        eInactive = 0,
        eParameter = 1,
        eParameterWithReBal = 2,
        eSetup = 3,
        eReBalActive = 4,
        eFailure = 5,
        eSetupAborted = 6,  ///< defined for the NC; nothing sends it
        eSetupSuccess = 7,
        eRebalSuccess = 8,
        eSetupOverTarget = 9,
        eRebalOverTarget = 10
    };
    enum Action : std::int32_t {
        eNone = 0,
        eSetSpindleSpeed = 1,
        eSpindleStart = 2,
        eSpindleStop = 3,
        eSetWeights = 4,
        eMeasure = 5,
        eMeasurementValuesOK = 6
    };
};
