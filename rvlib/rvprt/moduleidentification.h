#pragma once
#include <cstdint>
#include <string>

#include "rvlib/rvprt/message.h"

namespace Comm {

/// Who a module is. Laid out alike in both families.
class CModuleIdentification : public CMessage {
public:
    /// Sub-code of the frame.
    static constexpr std::uint8_t SUB_CODE = 8;
    /// Bytes needed from the sub-code on.
    static constexpr std::uint32_t SIZE = 46;

    /// pData begins with the sub-code.
    int Decode(const std::uint8_t* pData, std::uint32_t nSize, std::uint32_t* pUsed);
    void Log() const;

    std::uint8_t m_ModuleTyp = 0;
    std::uint8_t m_YearOfProduction = 0;
    std::uint8_t m_CalendarWeekOfProduction = 0;
    std::uint8_t m_SoftwareVersion = 0;
    std::uint8_t m_TNumber = 0;
    std::string m_ArticleNumber;  ///< six hexadecimal digits
    std::uint32_t m_SerialNumber = 0;
    std::uint32_t m_WorkingHours = 0;

protected:
    /// pClassName heads the block in the log.
    CModuleIdentification(const char* pClassName, const char* pLogID)
        : CMessage(pLogID), m_pClassName(pClassName) {}
    ~CModuleIdentification() = default;
    CModuleIdentification(const CModuleIdentification&) = default;
    CModuleIdentification& operator=(const CModuleIdentification&) = default;

private:
    const char* m_pClassName;
};

}  // namespace Comm
