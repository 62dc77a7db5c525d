#pragma once
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <random>

/// Chance that is the same on every machine: standard libraries differ in their distributions.
class CChance {
public:
    explicit CChance(std::uint64_t Seed) : m_Generator(Seed) {}

    std::uint64_t Next() { return m_Generator(); }
    double Between(double Low, double High) {
        return Low + (High - Low) * static_cast<double>(m_Generator() >> 11) * 0x1p-53;
    }
    /// Both ends included.
    int Integer(int Low, int High) { return Low + static_cast<int>(Between(0.0, High - Low + 1.0)); }
    /// Every ratio as likely as every other one.
    double Logarithmic(double Low, double High) { return std::exp(Between(std::log(Low), std::log(High))); }
    bool Coin() { return Integer(0, 1) != 0; }
    bool Happens(double Probability) { return Between(0.0, 1.0) < Probability; }
    /// From 0 to below.
    std::size_t Draw(std::size_t nBelow) { return static_cast<std::size_t>(m_Generator() % nBelow); }
    template <typename List>
    const auto& Pick(const List& rList) {
        return rList[Draw(std::size(rList))];
    }

private:
    std::mt19937_64 m_Generator;
};
