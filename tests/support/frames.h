#pragma once
#include <cctype>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

/// Bytes of a frame written as hexadecimal digits: "1C 01 05".
inline std::vector<std::uint8_t> Bytes(const std::string& rHex) {
    std::vector<std::uint8_t> Result;
    std::string Digits;
    for (const char c : rHex) {
        if (std::isxdigit(static_cast<unsigned char>(c)) != 0) {
            Digits += c;
        }
    }
    for (std::size_t i = 0; i + 1 < Digits.size(); i += 2) {
        Result.push_back(static_cast<std::uint8_t>(std::stoi(Digits.substr(i, 2), nullptr, 16)));
    }
    return Result;
}

/// The other way round.
inline std::string Hex(std::span<const std::uint8_t> Frame) {
    constexpr const char* DIGITS = "0123456789ABCDEF";
    std::string Result;
    for (const std::uint8_t Byte : Frame) {
        Result += Result.empty() ? "" : " ";
        Result += DIGITS[Byte >> 4U];
        Result += DIGITS[Byte & 0x0FU];
    }
    return Result;
}

/// Puts a frame given as text into anything that takes received frames. The bytes lie in a buffer of exactly
/// their size, so that the sanitizers see a read beyond.
template <class Taker>
int Put(Taker& rTaker, const std::string& rHex) {
    const std::vector<std::uint8_t> Frame = Bytes(rHex);
    return rTaker.PutReceivedModuleData(Frame.data(), static_cast<std::uint32_t>(Frame.size()));
}
