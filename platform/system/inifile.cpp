#include "platform/system/inifile.h"

#include "platform/system/files.h"
#include "platform/system/text.h"

namespace {

constexpr std::string_view UTF8_MARK = "\xEF\xBB\xBF";

std::string Unquote(std::string Value) {
    if ((Value.size() >= 2) && (Value.front() == Value.back()) &&
        ((Value.front() == '"') || (Value.front() == '\''))) {
        return Value.substr(1, Value.size() - 2);
    }
    return Value;
}

}  // namespace

CIniFile::CIniFile(std::string_view Text) {
    if (Text.starts_with(UTF8_MARK)) {
        Text.remove_prefix(UTF8_MARK.size());
    }
    while (!Text.empty()) {
        const std::size_t End = Text.find('\n');
        const std::string Line = Text::Trim(Text.substr(0, End));
        Text.remove_prefix((End == std::string_view::npos) ? Text.size() : End + 1);
        if (Line.starts_with('[')) {
            m_Sections.push_back({Text::Trim(Line.substr(1, Line.find(']') - 1)), {}});
            continue;
        }
        const std::size_t Equals = Line.find('=');
        // Keys before the first section belong to none and can't be asked for.
        if (!Line.starts_with(';') && (Equals != std::string::npos) && !m_Sections.empty()) {
            m_Sections.back().m_Values.emplace_back(Text::Trim(Line.substr(0, Equals)),
                                                    Unquote(Text::Trim(Line.substr(Equals + 1))));
        }
    }
}

std::optional<CIniFile> CIniFile::Read(const std::string& rPath) {
    const auto Bytes = Files::ReadAll(rPath);
    if (!Bytes) {
        return std::nullopt;
    }
    return CIniFile(std::string(Bytes->begin(), Bytes->end()));
}

const std::string* CIniFile::Find(std::string_view Section, std::string_view Key) const {
    for (const CSection& rSection : m_Sections) {
        if (!Text::EqualNoCase(rSection.m_Name, Section)) {
            continue;
        }
        for (const auto& [rKey, rValue] : rSection.m_Values) {
            if (Text::EqualNoCase(rKey, Key)) {
                return &rValue;
            }
        }
    }
    return nullptr;
}
