#include "archive/readingtext.h"

#include <array>
#include <cstdint>
#include <limits>
#include <string_view>

namespace {

using Bytes = std::vector<unsigned char>;

constexpr std::string_view ALPHABET = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr unsigned BITS = 6;  ///< of a character
constexpr unsigned PART = 7;  ///< bits of a number in a byte; the eighth says that more follow
constexpr unsigned char MORE = 0x80;

/// Small differences of either sign become small numbers.
std::uint64_t Fold(std::int64_t Value) {
    return (static_cast<std::uint64_t>(Value) << 1U) ^ static_cast<std::uint64_t>(Value >> 63U);
}

std::int64_t Unfold(std::uint64_t Value) {
    return static_cast<std::int64_t>(Value >> 1U) ^ -static_cast<std::int64_t>(Value & 1U);
}

void Put(Bytes& rBytes, std::int64_t Value) {
    std::uint64_t Rest = Fold(Value);
    while (Rest >= MORE) {
        rBytes.push_back(static_cast<unsigned char>(Rest | MORE));
        Rest >>= PART;
    }
    rBytes.push_back(static_cast<unsigned char>(Rest));
}

/// Takes a number from the place on; false if there is none.
bool Take(const Bytes& rBytes, std::size_t& rPlace, std::int64_t& rValue) {
    constexpr unsigned LONGEST = 35;
    std::uint64_t Value = 0;
    for (unsigned Shift = 0; rPlace < rBytes.size() && Shift <= LONGEST; Shift += PART) {
        const unsigned char Byte = rBytes[rPlace++];
        Value |= static_cast<std::uint64_t>(Byte & (MORE - 1U)) << Shift;
        if ((Byte & MORE) == 0) {
            rValue = Unfold(Value);
            return true;
        }
    }
    return false;
}

template <typename T>
bool Add(T& rValue, std::int64_t Difference) {
    const std::int64_t Sum = static_cast<std::int64_t>(rValue) + Difference;
    if (Sum < std::int64_t{std::numeric_limits<T>::min()} ||
        Sum > std::int64_t{std::numeric_limits<T>::max()}) {
        return false;
    }
    rValue = static_cast<T>(Sum);
    return true;
}

}  // namespace

std::string BytesToText(std::span<const unsigned char> Bytes) {
    std::string Text;
    Text.reserve(Bytes.size() * 4 / 3 + 2);
    std::uint32_t Held = 0;
    unsigned nHeld = 0;
    for (const unsigned char Byte : Bytes) {
        Held = Held << 8U | Byte;
        nHeld += 8;
        while (nHeld >= BITS) {
            nHeld -= BITS;
            Text += ALPHABET[(Held >> nHeld) & (ALPHABET.size() - 1)];
        }
    }
    if (nHeld != 0) {
        Text += ALPHABET[(Held << (BITS - nHeld)) & (ALPHABET.size() - 1)];
    }
    return Text;
}

std::optional<std::vector<unsigned char>> BytesFromText(const std::string& rText) {
    Bytes Result;
    std::uint32_t Held = 0;
    unsigned nHeld = 0;
    for (const char Character : rText) {
        const std::size_t Value = ALPHABET.find(Character);
        if (Value == std::string_view::npos) {
            return std::nullopt;
        }
        Held = Held << BITS | static_cast<std::uint32_t>(Value);
        nHeld += BITS;
        if (nHeld >= 8) {
            nHeld -= 8;
            Result.push_back(static_cast<unsigned char>(Held >> nHeld));
        }
    }
    return nHeld < BITS ? std::optional(Result) : std::nullopt;
}

std::string ReadingsToText(std::span<const CArchivedReading> Readings) {
    Bytes Packed;
    CArchivedReading Last;
    for (const CArchivedReading& rReading : Readings) {
        Put(Packed, std::int64_t{rReading.m_Time} - Last.m_Time);
        Put(Packed, rReading.m_X - Last.m_X);
        Put(Packed, rReading.m_Y - Last.m_Y);
        Last = rReading;
    }
    return BytesToText(Packed);
}

std::optional<std::vector<CArchivedReading>> ReadingsFromText(const std::string& rText) {
    const std::optional<Bytes> Packed = BytesFromText(rText);
    if (!Packed) {
        return std::nullopt;
    }
    std::vector<CArchivedReading> Readings;
    CArchivedReading Last;
    for (std::size_t Place = 0; Place < Packed->size();) {
        std::array<std::int64_t, 3> Differences{};
        for (std::int64_t& rDifference : Differences) {
            if (!Take(*Packed, Place, rDifference)) {
                return std::nullopt;
            }
        }
        if (!Add(Last.m_Time, Differences[0]) || !Add(Last.m_X, Differences[1]) ||
            !Add(Last.m_Y, Differences[2])) {
            return std::nullopt;
        }
        Readings.push_back(Last);
    }
    return Readings;
}
