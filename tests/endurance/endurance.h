#pragma once
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "tests/endurance/footprint.h"
#include "tests/endurance/tally.h"

/// Hours of virtual time in one process: shifts of runs, one after the other, and shifts at the window.
class CEndurance {
public:
    struct CHour {
        CFootprint m_Print;
        std::uint64_t m_nLogged = 0;
        int m_nRuns = 0;
    };

    CEndurance(std::uint64_t Seed, std::string LogDirectory);
    ~CEndurance();
    CEndurance(const CEndurance&) = delete;
    CEndurance& operator=(const CEndurance&) = delete;

    /// One shift of a seed of its own: what a broken promise names.
    void WorkShift(std::uint64_t Seed);
    void WorkHours(double Hours, const std::function<void(const CHour&)>& rOnHour = nullptr);

    const CTally& GetTally() const { return m_Tally; }
    const std::vector<CHour>& GetHours() const { return m_Hours; }

private:
    bool IsAtWindow(std::uint64_t Seed) const { return Seed % 20 == 19; }

    std::uint64_t m_Seed;
    std::string m_LogDirectory;
    CTally m_Tally;
    std::vector<CHour> m_Hours;
    std::shared_ptr<void> m_pListener;
};
