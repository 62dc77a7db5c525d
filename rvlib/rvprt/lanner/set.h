#pragma once
#include <array>
#include <cstdint>
#include <optional>

#include "rvlib/rvprt/lanner/plane.h"
#include "rvlib/rvprt/lanner/setparams.h"
#include "rvlib/rvprt/message.h"

namespace Lanner {

/// A set of the module: the one in force, or limits or defaults. Any of its parts may be missing.
class CSet : public Comm::CMessage {
public:
    explicit CSet(const char* pLogID) : CMessage(pLogID) {}

    /// pData begins behind the frame's sub-code: the set's number, then typed blocks to the end. A part that
    /// comes twice counts as it came last. A block that can't be used fails the whole set.
    int Decode(const std::uint8_t* pData, std::uint32_t nSize, std::uint32_t* pUsed);
    void Log() const;

    /// Null until its block was decoded; likewise below.
    const CSetParams* GetSetParams() const { return m_SetParams ? &*m_SetParams : nullptr; }
    /// The planes as the rest of the system counts them, after the set's own swap. Without set params they
    /// are taken as not swapped, after an assertion that the operator sees.
    const CPlane* GetPlane1() const { return GetPlane(0); }
    const CPlane* GetPlane2() const { return GetPlane(1); }

    std::uint8_t m_Set = 255;

private:
    const CPlane* GetPlane(std::size_t nPlane) const;
    const CPlane* FindPlane(std::size_t nPlane) const;
    /// Decodes the block at pData into its part; the bytes taken, 0 in a failure.
    std::uint32_t DecodeBlock(const std::uint8_t* pData, std::uint32_t nSize);

    std::optional<CSetParams> m_SetParams;
    std::array<std::optional<CPlane>, 2> m_Planes;  ///< by ID
};

}  // namespace Lanner
