#pragma once
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

/// Thrown when an archive is cut short, holds an impossible length, or is used in the wrong direction.
class CArchiveException : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Binary archive over a file: little-endian numbers, no padding, strings with a length prefix. A string's
/// length in bytes stands in one byte for up to 254; else 0xFF and 16 bits for up to 65533; else 0xFF, 0xFFFF
/// and 32 bits; then the characters, without a terminator.
class CArchive {
public:
    enum Mode { eLoad, eStore };

    /// An archive over bytes in memory: reading from Bytes, or writing to what GetBytes returns.
    CArchive(Mode ArchiveMode, std::vector<std::uint8_t> Bytes = {});

    bool IsLoading() const { return m_Mode == eLoad; }
    bool IsStoring() const { return m_Mode == eStore; }

    CArchive& operator<<(std::uint8_t Value);
    CArchive& operator<<(std::int32_t Value);
    CArchive& operator<<(std::uint32_t Value);
    CArchive& operator<<(double Value);
    CArchive& operator<<(const std::string& rValue);

    /// Reading past the end throws CArchiveException; the target is then unchanged.
    CArchive& operator>>(std::uint8_t& rValue);
    CArchive& operator>>(std::int32_t& rValue);
    CArchive& operator>>(std::uint32_t& rValue);
    CArchive& operator>>(double& rValue);
    CArchive& operator>>(std::string& rValue);

    const std::vector<std::uint8_t>& GetBytes() const { return m_Bytes; }
    /// Bytes not yet read.
    std::size_t GetRemaining() const { return m_Bytes.size() - m_Position; }

private:
    template <typename T>
    void Write(T Value);
    template <typename T>
    T Read();
    const std::uint8_t* Take(std::size_t nSize);

    Mode m_Mode;
    std::vector<std::uint8_t> m_Bytes;
    std::size_t m_Position = 0;
};
