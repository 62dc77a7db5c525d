#pragma once
// What the targets of the single decoders share.
#include <cstdint>
#include <span>
#include <vector>

#include "fuzz/fuzzing.h"

/// Decodes and logs a message. The data lies in a buffer of its own, so that a read beyond it is found.
/// rFurther goes to Decode behind the rest.
template <class Message, class... Further>
void DecodeMessage(std::span<const std::uint8_t> Input, const Further&... rFurther) {
    const std::vector<std::uint8_t> Data(Input.begin(), Input.end());
    Message Decoded("fuzz");
    std::uint32_t nUsed = 0;
    const auto nSize = static_cast<std::uint32_t>(Data.size());
    const int nDecoded = Decoded.Decode(Data.data(), nSize, &nUsed, rFurther...);
    Require(nUsed <= nSize && (nDecoded != 0) == (nUsed != 0));
    Decoded.Log();
}
