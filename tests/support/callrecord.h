#pragma once
#include <functional>
#include <string>
#include <vector>

#include "rvlib/rvprt/reason.h"
#include "tests/support/frames.h"

/// What comes out of a conversation with modules: frames sent, and each callback as one line of text, "null"
/// for a null pointer.
class CCallRecord {
public:
    std::vector<std::string> m_Sent;
    std::vector<std::string> m_Calls;
    std::function<void()> m_OnCall;  ///< called after each callback was noted

protected:
    void NoteSent(const std::uint8_t* pData, std::uint32_t nSize) { m_Sent.push_back(Hex({pData, nSize})); }
    void Note(const std::string& rWhat, Reason Why, const std::string& rData) {
        m_Calls.push_back(rWhat + " " + Comm::ReasonToString(Why) + " " + rData);
        if (m_OnCall) {
            m_OnCall();
        }
    }
    static std::string Text(const std::uint32_t* pValue) {
        return pValue != nullptr ? " " + std::to_string(*pValue) : " null";
    }
};
