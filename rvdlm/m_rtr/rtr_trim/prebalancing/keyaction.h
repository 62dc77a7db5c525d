#pragma once

/// The key actions: the one vocabulary in which softkeys and NC requests reach a procedure and the methods.
/// CPreBalancing derives from this, so that they also read CPreBalancing::eNext and so on.
class CKeyActions {
public:
    enum KeyAction : int {
        eNext = 0,
        eRebalance = 1,
        eIncrement = 2,
        eDecrement = 3,
        eUp = 4,
        eDown = 5,
        eExtras = 6,
        eIncPosWeight1Down = 7,
        eIncPosWeight1Up = 8,
        eDecPosWeight1Down = 9,
        eDecPosWeight1Up = 10,
        eIncPosWeight2Down = 11,
        eIncPosWeight2Up = 12,
        eDecPosWeight2Down = 13,
        eDecPosWeight2Up = 14,
        eCheckWeightPositions = 15,
        eTogglePlane = 16,
        eNeutralPosition = 17,
        eChangeWeightPositions = 18,
        eNeutralPositionAdjusted = 19,
        ePositionAdoption = 20,
        eWeightSelection = 21,
        eStepSelection = 22,
        eDecPosActiveWeightDown = 23,
        eDecPosActiveWeightUp = 24,
        eIncPosActiveWeightDown = 25,
        eIncPosActiveWeightUp = 26
    };

    /// The enumerator's name; "unknown action", after an assertion, for anything else.
    static const char* KeyActionToString(KeyAction Action);

protected:
    CKeyActions() = default;
    ~CKeyActions() = default;
};
