#pragma once

/// Told of the target unbalance that the NC sets. On the window thread.
class CPreBalTargetUnbalanceInterface {
public:
    virtual ~CPreBalTargetUnbalanceInterface() = default;
    /// In the units of the readings.
    virtual void OnValueFromNC(double Value) = 0;
    /// The item could not be read.
    virtual void OnValueFromNCTargetUnbalanceFailure() = 0;
};
