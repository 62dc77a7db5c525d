#pragma once
#include <cstdint>
#include <memory>

/// Moving average over the last samples of an unbalance vector, X and Y apart, so that a phase near 0 degrees
/// needs no wrapping. The window counts as complete with the sample after the one that fills it: its length
/// plus one samples are needed, and the first complete average lacks the very first sample. That is meant so:
/// the time waited for follows from it.
class CXYMovingAverage {
public:
    /// nLength samples; 0 isn't guarded against.
    explicit CXYMovingAverage(std::uint32_t nLength);
    ~CXYMovingAverage();
    CXYMovingAverage(const CXYMovingAverage&) = delete;
    CXYMovingAverage& operator=(const CXYMovingAverage&) = delete;

    /// Takes a sample in counts; returns whether the window is complete.
    int AddValue(std::int16_t x, std::int16_t y);
    void Reset();
    int GetValuesComplete() const { return m_Complete; }
    /// Length and angle (degrees, 0 up to but excluding 360) of the averaged vector, length of the newest
    /// sample, and the averages themselves; a null pointer leaves an output out. All 0 without a sample.
    void GetValues(double* pMagnitude, double* pAngle, double* pLastMagnitude, double* pX, double* pY) const;

private:
    static constexpr std::uint32_t NO_SAMPLE = 0xFFFFFFFF;

    std::uint32_t m_Length;
    std::unique_ptr<std::int16_t[]> m_pXValues;
    std::unique_ptr<std::int16_t[]> m_pYValues;
    std::uint32_t m_Index = NO_SAMPLE;  ///< of the newest sample
    int m_Complete = 0;
};
