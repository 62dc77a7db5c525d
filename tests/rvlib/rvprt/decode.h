#pragma once
#include <gtest/gtest.h>

#include <string>

#include "tests/support/frames.h"

/// Decodes a message from hexadecimal digits, out of a buffer of exactly their size; rFurther goes to Decode
/// behind the rest. Returns the bytes taken, which must be 0 exactly in a failure.
template <class Message, class... Further>
std::uint32_t Decode(Message& rMessage, const std::string& rHex, const Further&... rFurther) {
    const std::vector<std::uint8_t> Payload = Bytes(rHex);
    std::uint32_t nUsed = 99;
    const int nDecoded =
        rMessage.Decode(Payload.data(), static_cast<std::uint32_t>(Payload.size()), &nUsed, rFurther...);
    EXPECT_EQ(nDecoded != 0, nUsed != 0);
    return nUsed;
}

/// The first nSize bytes of a hexadecimal text.
inline std::string Cut(const std::string& rHex, std::size_t nSize) {
    std::vector<std::uint8_t> Data = Bytes(rHex);
    Data.resize(nSize);
    return Hex(Data);
}
