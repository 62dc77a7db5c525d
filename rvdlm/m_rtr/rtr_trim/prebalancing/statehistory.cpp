#include "rvdlm/m_rtr/rtr_trim/prebalancing/statehistory.h"

#include <utility>

void CStateHistory::Add(CEntry Entry) {
    m_Entries.push_back(std::move(Entry));
    if (m_Entries.size() > CAPACITY) {
        m_Entries.pop_front();
        ++m_nDropped;
    }
}

std::string CStateHistory::ToString() const {
    std::string Text;
    if (m_nDropped != 0) {
        Text += "(" + std::to_string(m_nDropped) + " older transitions dropped)\n";
    }
    for (const CEntry& rEntry : m_Entries) {
        Text += std::to_string(rEntry.m_Time) + " ms  " + rEntry.m_From + " -> " + rEntry.m_To + "  step " +
                std::to_string(rEntry.m_Step) + "/" + std::to_string(rEntry.m_NumberOfSteps) + "  by " +
                rEntry.m_Cause + "\n";
    }
    return Text;
}
