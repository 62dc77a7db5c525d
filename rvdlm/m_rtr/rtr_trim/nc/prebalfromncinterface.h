#pragma once
#include <cstdint>

/// Told of the requests of the NC. On the window thread.
class CPreBalFromNCInterface {
public:
    virtual ~CPreBalFromNCInterface() = default;
    virtual void OnValueFromNCChanged(std::int32_t Value) = 0;
};
