#pragma once
#include <cstdint>

namespace Lanner {

/// What a typed block of a set frame must look like: type, length of the whole block, contents.
struct CBlockRule {
    std::uint8_t m_Type;
    std::uint32_t m_Smallest;    ///< bytes
    bool m_bReserved;            ///< the byte behind the length must be 0
    const char* m_pNullPointer;  ///< asserted without data
};

/// The length that the block at pData claims, header included: at least the rule's smallest and at most
/// nSize. 0 after an assertion if there is no such block.
std::uint32_t CheckBlock(const CBlockRule& rRule, const std::uint8_t* pData, std::uint32_t nSize);

/// An address as the assertions of the decoders print it: its low 32 bits.
unsigned ToLogAddress(const std::uint8_t* pData);

}  // namespace Lanner
