#pragma once
#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "platform/rvmdb/prebaldatabase.h"
#include "tests/rvdlm/m_rtr/rtr_trim/fakesequence.h"
#include "tests/support/fakemainwnd.h"

/// A procedure that only remembers, without the module's window: for those who get one from elsewhere.
class CLoneSequence {
public:
    void Begin() { m_pSequence = std::make_unique<CFakeSequence>(m_Record, &m_Wnd, m_Entry, ""); }
    void End() { m_pSequence.reset(); }
    /// Null while none runs.
    CPreBalancing* Get() const { return m_pSequence.get(); }
    /// What it was told since the last call.
    std::vector<std::string> TakeCalls() { return std::exchange(m_Record.m_Calls, {}); }

    CFakeSequenceRecord m_Record;

private:
    CFakeMainWnd m_Wnd;
    PreBalDB::CPreBalBaseTableEntry m_Entry{"0-0#1#255-4711-33-7", "Default"};
    std::unique_ptr<CFakeSequence> m_pSequence;
};
