#include "rvlib/rvprt/moduleidentification.h"

#include <array>
#include <cstdio>

#include "rvlib/rvprt/littleendian.h"
#include "rvlib/rvprt/logblock.h"

namespace Comm {

int CModuleIdentification::Decode(const std::uint8_t* pData, std::uint32_t nSize, std::uint32_t* pUsed) {
    *pUsed = 0;
    if (pData == nullptr || nSize < SIZE || pData[0] != SUB_CODE) {
        return 0;
    }
    const std::uint8_t* pBody = pData + 1;
    m_ModuleTyp = pBody[0];
    m_YearOfProduction = pBody[1];
    m_CalendarWeekOfProduction = pBody[2];
    m_SoftwareVersion = pBody[3];
    m_TNumber = pBody[4];
    std::array<char, 7> Article{};
    std::snprintf(Article.data(), Article.size(), "%02X%02X%02X", unsigned{pBody[5]}, unsigned{pBody[6]},
                  unsigned{pBody[7]});
    m_ArticleNumber = Article.data();
    m_SerialNumber = ReadU32(pBody + 8);
    m_WorkingHours = ReadU32(pBody + 12);
    *pUsed = SIZE;
    return 1;
}

void CModuleIdentification::Log() const {
    const Protocols::CLogBlock Block(m_pClassName);
    RV_PROTOCOL_DETAIL("ModuleTyp= %d", m_ModuleTyp);
    RV_PROTOCOL_DETAIL("YearOfProduction = %d", m_YearOfProduction);
    RV_PROTOCOL_DETAIL("CalendarWeekOfProduction = %d", m_CalendarWeekOfProduction);
    RV_PROTOCOL_DETAIL("SoftwareVersion = %d", m_SoftwareVersion);
    RV_PROTOCOL_DETAIL("TNumber = %d", m_TNumber);
    RV_PROTOCOL_DETAIL("ArticleNumber = %s", m_ArticleNumber.c_str());
    RV_PROTOCOL_DETAIL("SerialNumber = %d", static_cast<int>(m_SerialNumber));
    RV_PROTOCOL_DETAIL("WorkingHours = %d", static_cast<int>(m_WorkingHours));
}

}  // namespace Comm
