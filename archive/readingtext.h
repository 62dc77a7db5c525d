#pragma once
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "archive/runrecord.h"

/// Readings as a short text for a store that knows numbers and texts: the differences from one to the next of
/// time, X and Y, each in as few bytes as it needs, and these as base64 (RFC 4648, without padding). A
/// reading takes some four characters.
std::string ReadingsToText(std::span<const CArchivedReading> Readings);
/// Nothing if the text isn't of that form.
std::optional<std::vector<CArchivedReading>> ReadingsFromText(const std::string& rText);

/// Any bytes, in the same alphabet.
std::string BytesToText(std::span<const unsigned char> Bytes);
std::optional<std::vector<unsigned char>> BytesFromText(const std::string& rText);
