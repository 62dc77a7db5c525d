#pragma once
#include <complex>
#include <cstdint>
#include <random>

/// Gaussian noise, the same numbers on every machine for a seed: the generator and its seeding are those that
/// the language standard fixes, and the transform (Box and Muller 1958) is done here, since standard
/// libraries differ in theirs.
class CNoise {
public:
    /// Streams of one seed are independent of each other, so that a further sensor leaves the others' noise.
    CNoise(std::uint64_t Seed, std::uint32_t nStream, double Deviation);

    /// The next pair; each part with mean 0 and the standard deviation given, independent of the other.
    std::complex<double> Next();
    /// Another deviation from now on; 0 brings back that of the beginning. The stream goes on.
    void SetDisturbance(double Deviation) { m_Disturbance = Deviation; }

private:
    /// Uniform above 0 and up to 1, in steps of 2^-53.
    double NextUniform();

    std::mt19937_64 m_Generator;
    double m_Deviation;
    double m_Disturbance = 0.0;
};
