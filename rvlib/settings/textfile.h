#pragma once
#include <cstdint>
#include <span>
#include <string>

/// How a text file was written.
enum TextEncoding {
    eNoText = 0,  ///< the file can't be opened or read
    eSingleByteText = 1,
    eUtf16LittleEndian = 2,
    eUtf16BigEndian = 3,
    eUtf8 = 4
};

/// Reads a text file as UTF-8 and tells its encoding. A byte order mark decides; without one, a zero among
/// the first two bytes of at least three means UTF-16, low byte first, and anything else is single-byte text,
/// whose bytes are taken as they are. rText is unchanged if the file can't be read.
TextEncoding ReadTextFile(const std::string& rPath, std::string& rText);

/// The same for the bytes of a file; never eNoText.
TextEncoding DecodeText(std::span<const std::uint8_t> Bytes, std::string& rText);

/// Decodes UTF-8 by the lead byte. Forms of 4, 5 and 6 bytes give U+FFFD; a byte that begins no complete form
/// passes as the character of its value. The last sequence of the input passes byte by byte in this way.
std::u16string DecodeUtf8(std::span<const std::uint8_t> Bytes);

/// UTF-16 as UTF-8; a surrogate without its other half gives U+FFFD.
std::string ToUtf8(const std::u16string& rText);
