#include "platform/rvmdb/names.h"

#include <algorithm>
#include <array>
#include <cctype>

#include "platform/rvmdb/directsql.h"
#include "platform/system/text.h"

namespace PreBalDB {

namespace {

bool IsBefore(const std::string& rLeft, const std::string& rRight) {
    const bool bLeftDefault = rLeft == DEFAULT_CONFIGURATION;
    const bool bRightDefault = rRight == DEFAULT_CONFIGURATION;
    if (bLeftDefault || bRightDefault) {
        return bLeftDefault && !bRightDefault;
    }
    const auto Fold = [](char Letter) { return std::tolower(static_cast<unsigned char>(Letter)); };
    const auto IsLetterBefore = [&Fold](char Left, char Right) { return Fold(Left) < Fold(Right); };
    if (std::lexicographical_compare(rLeft.begin(), rLeft.end(), rRight.begin(), rRight.end(),
                                     IsLetterBefore)) {
        return true;
    }
    if (std::lexicographical_compare(rRight.begin(), rRight.end(), rLeft.begin(), rLeft.end(),
                                     IsLetterBefore)) {
        return false;
    }
    return rLeft < rRight;
}

/// How UTF-8 writes a character.
struct CForm {
    unsigned char m_LeadMask;  ///< the bits of the first byte that tell the form
    unsigned char m_Lead;
    std::size_t m_nBytes;
    char32_t m_First;  ///< smaller ones have a shorter form
};
constexpr std::array FORMS = {CForm{0x80, 0x00, 1, 0}, CForm{0xE0, 0xC0, 2, 0x80},
                              CForm{0xF0, 0xE0, 3, 0x800}, CForm{0xF8, 0xF0, 4, 0x10000}};

const CForm* FindForm(unsigned char Lead) {
    const auto Found = std::ranges::find_if(
        FORMS, [Lead](const CForm& rForm) { return (Lead & rForm.m_LeadMask) == rForm.m_Lead; });
    return Found == FORMS.end() ? nullptr : &*Found;
}

}  // namespace

void SortNames(std::vector<std::string>& rNames) {
    std::sort(rNames.begin(), rNames.end(), IsBefore);
}

bool IsUtf8(std::string_view Text) {
    while (!Text.empty()) {
        const auto Lead = static_cast<unsigned char>(Text.front());
        const CForm* const pForm = FindForm(Lead);
        if (pForm == nullptr || Text.size() < pForm->m_nBytes) {
            return false;
        }
        char32_t Character = Lead & static_cast<unsigned char>(~pForm->m_LeadMask);
        for (std::size_t i = 1; i < pForm->m_nBytes; ++i) {
            const auto Byte = static_cast<unsigned char>(Text[i]);
            if ((Byte & 0xC0U) != 0x80U) {
                return false;
            }
            Character = (Character << 6U) | (Byte & 0x3FU);
        }
        const bool bSurrogate = Character >= 0xD800 && Character <= 0xDFFF;
        if (Character < pForm->m_First || Character > 0x10FFFF || bSurrogate) {
            return false;
        }
        Text.remove_prefix(pForm->m_nBytes);
    }
    return true;
}

void CheckNewName(const std::string& rName, const std::string& rWhat) {
    if (Text::Trim(rName).empty()) {
        throw CSqlError(rWhat + " needs a name", StoreFailure::eNoName);
    }
    if (!IsUtf8(rName) || rName.find('\0') != std::string::npos) {
        throw CSqlError("the name of " + rWhat + " is no UTF-8", StoreFailure::eNameNotText);
    }
    const auto nCharacters = std::ranges::count_if(
        rName, [](char Byte) { return (static_cast<unsigned char>(Byte) & 0xC0U) != 0x80U; });
    if (nCharacters > LONGEST_NAME) {
        throw CSqlError("the name of " + rWhat + " has " + std::to_string(nCharacters) +
                            " characters, more than " + std::to_string(LONGEST_NAME),
                        StoreFailure::eNameTooLong);
    }
}

}  // namespace PreBalDB
