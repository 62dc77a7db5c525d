#include "platform/system/archive.h"

#include <bit>
#include <limits>

static_assert(sizeof(double) == 8 && std::numeric_limits<double>::is_iec559);

namespace {

// The prefixes of a string's length that say that a longer length follows.
constexpr std::uint8_t LONG_LENGTH = 0xFF;
constexpr std::uint16_t VERY_LONG_LENGTH = 0xFFFF;
constexpr std::size_t MAX_SHORT = 254;
constexpr std::size_t MAX_LONG = 65533;

}  // namespace

CArchive::CArchive(Mode ArchiveMode, std::vector<std::uint8_t> Bytes)
    : m_Mode(ArchiveMode), m_Bytes(std::move(Bytes)) {}

template <typename T>
void CArchive::Write(T Value) {
    if (m_Mode != eStore) {
        throw CArchiveException("the archive is open for reading");
    }
    for (std::size_t nByte = 0; nByte < sizeof(T); ++nByte) {
        m_Bytes.push_back(static_cast<std::uint8_t>(Value >> (8 * nByte)));
    }
}

template <typename T>
T CArchive::Read() {
    const std::uint8_t* const pBytes = Take(sizeof(T));
    std::uint64_t Value = 0;
    for (std::size_t nByte = 0; nByte < sizeof(T); ++nByte) {
        Value |= static_cast<std::uint64_t>(pBytes[nByte]) << (8 * nByte);
    }
    return static_cast<T>(Value);
}

const std::uint8_t* CArchive::Take(std::size_t nSize) {
    if (m_Mode != eLoad) {
        throw CArchiveException("the archive is open for writing");
    }
    if (nSize > GetRemaining()) {
        throw CArchiveException("the archive ends too early");
    }
    const std::uint8_t* const pBytes = m_Bytes.data() + m_Position;
    m_Position += nSize;
    return pBytes;
}

CArchive& CArchive::operator<<(std::uint8_t Value) {
    Write(Value);
    return *this;
}

CArchive& CArchive::operator<<(std::int32_t Value) {
    Write(static_cast<std::uint32_t>(Value));
    return *this;
}

CArchive& CArchive::operator<<(std::uint32_t Value) {
    Write(Value);
    return *this;
}

CArchive& CArchive::operator<<(double Value) {
    Write(std::bit_cast<std::uint64_t>(Value));
    return *this;
}

CArchive& CArchive::operator<<(const std::string& rValue) {
    const std::size_t nLength = rValue.size();
    if (nLength > std::numeric_limits<std::uint32_t>::max()) {
        throw CArchiveException("a text is too long for an archive");
    }
    if (nLength <= MAX_SHORT) {
        Write(static_cast<std::uint8_t>(nLength));
    } else {
        Write(LONG_LENGTH);
        if (nLength <= MAX_LONG) {
            Write(static_cast<std::uint16_t>(nLength));
        } else {
            Write(VERY_LONG_LENGTH);
            Write(static_cast<std::uint32_t>(nLength));
        }
    }
    m_Bytes.insert(m_Bytes.end(), rValue.begin(), rValue.end());
    return *this;
}

CArchive& CArchive::operator>>(std::uint8_t& rValue) {
    rValue = Read<std::uint8_t>();
    return *this;
}

CArchive& CArchive::operator>>(std::int32_t& rValue) {
    rValue = static_cast<std::int32_t>(Read<std::uint32_t>());
    return *this;
}

CArchive& CArchive::operator>>(std::uint32_t& rValue) {
    rValue = Read<std::uint32_t>();
    return *this;
}

CArchive& CArchive::operator>>(double& rValue) {
    rValue = std::bit_cast<double>(Read<std::uint64_t>());
    return *this;
}

CArchive& CArchive::operator>>(std::string& rValue) {
    std::size_t nLength = Read<std::uint8_t>();
    if (nLength == LONG_LENGTH) {
        nLength = Read<std::uint16_t>();
        if (nLength == VERY_LONG_LENGTH) {
            nLength = Read<std::uint32_t>();
        } else if (nLength > MAX_LONG) {
            throw CArchiveException("a text in the archive has an impossible length");
        }
    }
    // Checked before anything is allocated: a damaged length must not cost memory.
    const std::uint8_t* const pBytes = Take(nLength);
    rValue.assign(pBytes, pBytes + nLength);
    return *this;
}
