#include "rvlib/settings/textfile.h"

#include <algorithm>
#include <array>
#include <initializer_list>

#include "platform/system/files.h"

namespace {

constexpr char16_t REPLACEMENT = 0xFFFD;

/// The forms of UTF-8 by their lead byte, longest first.
struct CForm {
    std::uint8_t m_LeadMask;
    std::uint8_t m_Lead;
    std::size_t m_nLength;
    bool m_bDecoded;  ///< the longer ones don't fit 16 bits and are replaced
};
constexpr std::array<CForm, 5> FORMS = {{{0xFE, 0xFC, 6, false},
                                         {0xFC, 0xF8, 5, false},
                                         {0xF8, 0xF0, 4, false},
                                         {0xF0, 0xE0, 3, true},
                                         {0xE0, 0xC0, 2, true}}};

bool IsContinuation(std::uint8_t Byte) {
    return (Byte & 0xC0) == 0x80;
}

/// The form that the input begins with, or null.
const CForm* FindForm(std::span<const std::uint8_t> Bytes) {
    for (const CForm& rForm : FORMS) {
        if ((Bytes[0] & rForm.m_LeadMask) != rForm.m_Lead) {
            continue;
        }
        // Strictly less is deliberate: a sequence whose last byte is the last of the input doesn't count.
        if (rForm.m_nLength >= Bytes.size()) {
            return nullptr;
        }
        for (std::size_t i = 1; i < rForm.m_nLength; ++i) {
            if (!IsContinuation(Bytes[i])) {
                return nullptr;
            }
        }
        return &rForm;
    }
    return nullptr;
}

std::u16string DecodeUtf16(std::span<const std::uint8_t> Bytes, std::size_t nLow) {
    std::u16string Text;
    Text.reserve(Bytes.size() / 2);
    for (std::size_t i = 0; i + 1 < Bytes.size(); i += 2) {
        Text += static_cast<char16_t>(Bytes[i + nLow] | (Bytes[i + 1 - nLow] << 8));
    }
    return Text;
}

void AppendUtf8(std::string& rText, char32_t Character) {
    const auto Append = [&rText](char32_t Byte) { rText += static_cast<char>(Byte); };
    if (Character < 0x80) {
        Append(Character);
        return;
    }
    if (Character < 0x800) {
        Append(0xC0 | (Character >> 6));
    } else {
        if (Character < 0x10000) {
            Append(0xE0 | (Character >> 12));
        } else {
            Append(0xF0 | (Character >> 18));
            Append(0x80 | ((Character >> 12) & 0x3F));
        }
        Append(0x80 | ((Character >> 6) & 0x3F));
    }
    Append(0x80 | (Character & 0x3F));
}

bool IsHighSurrogate(char16_t Unit) {
    return (Unit & 0xFC00) == 0xD800;
}

bool IsLowSurrogate(char16_t Unit) {
    return (Unit & 0xFC00) == 0xDC00;
}

}  // namespace

std::u16string DecodeUtf8(std::span<const std::uint8_t> Bytes) {
    std::u16string Text;
    Text.reserve(Bytes.size());
    while (!Bytes.empty()) {
        const CForm* const pForm = FindForm(Bytes);
        if (pForm == nullptr) {
            Text += static_cast<char16_t>(Bytes[0]);
            Bytes = Bytes.subspan(1);
            continue;
        }
        unsigned Character = Bytes[0] & static_cast<std::uint8_t>(~pForm->m_LeadMask);
        for (std::size_t i = 1; i < pForm->m_nLength; ++i) {
            Character = (Character << 6) | (Bytes[i] & 0x3F);
        }
        Text += pForm->m_bDecoded ? static_cast<char16_t>(Character) : REPLACEMENT;
        Bytes = Bytes.subspan(pForm->m_nLength);
    }
    return Text;
}

std::string ToUtf8(const std::u16string& rText) {
    std::string Text;
    Text.reserve(rText.size());
    for (std::size_t i = 0; i < rText.size(); ++i) {
        const char16_t Unit = rText[i];
        if (IsHighSurrogate(Unit) && (i + 1 < rText.size()) && IsLowSurrogate(rText[i + 1])) {
            ++i;
            AppendUtf8(Text, 0x10000 + ((Unit - 0xD800U) << 10) + (rText[i] - 0xDC00U));
        } else if (IsHighSurrogate(Unit) || IsLowSurrogate(Unit)) {
            AppendUtf8(Text, REPLACEMENT);
        } else {
            AppendUtf8(Text, Unit);
        }
    }
    return Text;
}

TextEncoding DecodeText(std::span<const std::uint8_t> Bytes, std::string& rText) {
    const auto BeginsWith = [Bytes](std::initializer_list<std::uint8_t> Mark) {
        return (Bytes.size() >= Mark.size()) && std::equal(Mark.begin(), Mark.end(), Bytes.begin());
    };
    if (BeginsWith({0xFF, 0xFE})) {
        rText = ToUtf8(DecodeUtf16(Bytes.subspan(2), 0));
        return eUtf16LittleEndian;
    }
    if (BeginsWith({0xFE, 0xFF})) {
        rText = ToUtf8(DecodeUtf16(Bytes.subspan(2), 1));
        return eUtf16BigEndian;
    }
    if (BeginsWith({0xEF, 0xBB, 0xBF})) {
        rText = ToUtf8(DecodeUtf8(Bytes.subspan(3)));
        return eUtf8;
    }
    if ((Bytes.size() < 3) || ((Bytes[0] != 0) && (Bytes[1] != 0))) {
        rText.assign(Bytes.begin(), Bytes.end());
        return eSingleByteText;
    }
    rText = ToUtf8(DecodeUtf16(Bytes, 0));
    return eUtf16LittleEndian;
}

TextEncoding ReadTextFile(const std::string& rPath, std::string& rText) {
    const auto Bytes = Files::ReadAll(rPath);
    return Bytes ? DecodeText(*Bytes, rText) : eNoText;
}
