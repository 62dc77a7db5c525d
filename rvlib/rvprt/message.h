#pragma once
#include <string>

namespace Comm {

/// Base of the decoded messages. They all have Decode(pData, nSize, pUsed), which never reads beyond nSize
/// bytes, returns nonzero on success and stores the bytes taken in pUsed (0 on failure), and Log(), which
/// writes the fields to the topic "ProtocolDetail".
class CMessage {
public:
    const std::string& GetLogID() const { return m_LogID; }

protected:
    /// pLogID: the log id of the state machine that decodes, or null.
    explicit CMessage(const char* pLogID) : m_LogID(pLogID != nullptr ? pLogID : "notSet") {}
    ~CMessage() = default;
    CMessage(const CMessage&) = default;
    CMessage& operator=(const CMessage&) = default;

    std::string m_LogID;
};

}  // namespace Comm
