#pragma once
#include <cstddef>
#include <cstdint>
#include <random>
#include <span>

/// What a sequence of events does next: drawn from a seed, or searched for by a fuzzer.
class IFChoices {
public:
    virtual ~IFChoices() = default;
    /// One of nCount, from 0; nCount is 1 to 65536.
    virtual std::size_t Pick(std::size_t nCount) = 0;
    /// There is nothing left to choose by.
    virtual bool AreUsedUp() const = 0;
};

/// The same for a seed, so that a failure repeats; without an end.
class CRandomChoices : public IFChoices {
public:
    explicit CRandomChoices(unsigned Seed) : m_Random(Seed) {}
    std::size_t Pick(std::size_t nCount) override { return m_Random() % nCount; }
    bool AreUsedUp() const override { return false; }

private:
    std::mt19937 m_Random;
};

/// One byte a choice, two where there are more than 256 ways; always the first way behind the end.
class CByteChoices : public IFChoices {
public:
    explicit CByteChoices(std::span<const std::uint8_t> Bytes) : m_Rest(Bytes) {}
    std::size_t Pick(std::size_t nCount) override {
        constexpr std::size_t WAYS_OF_A_BYTE = 256;
        std::size_t Value = Take();
        if (nCount > WAYS_OF_A_BYTE) {
            Value = Value * WAYS_OF_A_BYTE + Take();
        }
        return Value % nCount;
    }
    bool AreUsedUp() const override { return m_Rest.empty(); }

private:
    std::size_t Take() {
        if (m_Rest.empty()) {
            return 0;
        }
        const std::size_t Value = m_Rest.front();
        m_Rest = m_Rest.subspan(1);
        return Value;
    }

    std::span<const std::uint8_t> m_Rest;
};
