// A settings or registry file: any bytes through the reader of sections and values.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "platform/system/inifile.h"
#include "platform/system/text.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    const CIniFile File(std::string(pData, pData + nSize));
    for (const CIniFile::CSection& rSection : File.GetSections()) {
        for (const auto& [rKey, rValue] : rSection.m_Values) {
            // Every value can be asked for, if not always this one: of equal names the first counts.
            if (File.Find(rSection.m_Name, rKey) == nullptr) {
                std::abort();
            }
            Text::ToInt(rValue);
        }
    }
    File.Find("Configuration", "RPM");
    return 0;
}
