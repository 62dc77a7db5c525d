#pragma once
#include <string>
#include <utility>

#include "platform/rvmdb/screw.h"
#include "rvlib/rvbas/array.h"

namespace PreBalDB {

/// A named table of screws.
class CScrewTableEntry {
public:
    /// Under which it is written next.
    void SetName(std::string Name) { m_Name = std::move(Name); }
    const Base::CWDArray<CScrew>& GetScrewArray() const { return m_Screws; }
    void SetScrewArray(const Base::CWDArray<CScrew>& rScrews) { m_Screws = rScrews; }

private:
    friend class CPreBalDatabase;
    std::string m_Name;
    Base::CWDArray<CScrew> m_Screws;
};

}  // namespace PreBalDB
