#include "platform/system/linesplitter.h"

#include <utility>

void CLineSplitter::Put(std::span<const std::uint8_t> Bytes) {
    for (std::uint8_t Byte : Bytes) {
        if (Byte == '\n') {
            EndLine();
        } else if (m_Line.size() < MAX_LINE) {
            m_Line.push_back(static_cast<char>(Byte));
        } else {
            m_bOverlong = true;
        }
    }
}

void CLineSplitter::EndLine() {
    // Taken out first: a handler may put further bytes or reset.
    std::string Line = std::exchange(m_Line, {});
    if (std::exchange(m_bOverlong, false)) {
        m_OnOverlong();
        return;
    }
    if (!Line.empty() && Line.back() == '\r') {
        Line.pop_back();
    }
    m_OnLine(Line);
}

void CLineSplitter::Reset() {
    m_Line.clear();
    m_bOverlong = false;
}
