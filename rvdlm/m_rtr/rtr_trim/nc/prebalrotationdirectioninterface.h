#pragma once

/// Told of the rotation direction that the NC sets. On the window thread.
class CPreBalRotationDirectionInterface {
public:
    virtual ~CPreBalRotationDirectionInterface() = default;
    /// 0 clockwise, 1 counter-clockwise.
    virtual void OnValueFromNC(double Value) = 0;
    /// The item could not be read.
    virtual void OnValueFromNCRotationDirectionFailure() = 0;
};
