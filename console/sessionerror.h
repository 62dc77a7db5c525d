#pragma once
#include <stdexcept>
#include <string>

/// The console can't begin: bad arguments, or a link that can't be opened. The text is one line for a person.
class CSessionError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Somebody wants the program to end before a run has begun. The text is one line for a person.
class CBrokenOff : public std::runtime_error {
public:
    explicit CBrokenOff(const std::string& rRequest)
        : std::runtime_error("Broken off by " + rRequest + " before the run began.") {}
};
