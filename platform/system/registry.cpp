#include "platform/system/registry.h"

#include <charconv>
#include <map>
#include <mutex>
#include <string_view>

#include "platform/system/environment.h"
#include "platform/system/files.h"
#include "platform/system/inifile.h"
#include "platform/system/text.h"

namespace Registry {

namespace {

constexpr std::string_view DEFAULT_VALUE = "@";
constexpr std::string_view NUMBER_PREFIX = "dword:";

/// The keys that are open, by handle, with their full names.
class COpenKeys {
public:
    Key Add(std::string FullName) {
        const std::lock_guard Lock(m_Mutex);
        m_Names[++m_Last] = std::move(FullName);
        return m_Last;
    }
    void Remove(Key Handle) {
        const std::lock_guard Lock(m_Mutex);
        m_Names.erase(Handle);
    }
    std::optional<std::string> Find(Key Handle) const {
        const std::lock_guard Lock(m_Mutex);
        const auto Found = m_Names.find(Handle);
        return (Found == m_Names.end()) ? std::nullopt : std::optional(Found->second);
    }

private:
    mutable std::mutex m_Mutex;
    std::map<Key, std::string> m_Names;
    Key m_Last = 0;
};

COpenKeys& OpenKeys() {
    static COpenKeys s_Keys;
    return s_Keys;
}

std::string GetPath() {
    const std::string Path = GetEnvironment("CORVANE_REGISTRY");
    return Path.empty() ? "/etc/corvane/registry.ini" : Path;
}

const char* RootName(Root RootKey) {
    return (RootKey == Root::eClassesRoot) ? "HKEY_CLASSES_ROOT" : "HKEY_LOCAL_MACHINE";
}

/// A key exists if a section has its name, or that of a key below it.
bool HasKey(const CIniFile& rFile, const std::string& rFullName) {
    for (const CIniFile::CSection& rSection : rFile.GetSections()) {
        const std::string_view Name = rSection.m_Name;
        if (Text::EqualNoCase(Name.substr(0, rFullName.size()), rFullName) &&
            ((Name.size() == rFullName.size()) || (Name[rFullName.size()] == '\\'))) {
            return true;
        }
    }
    return false;
}

bool MakeKey(const std::string& rFullName) {
    std::vector<std::uint8_t> Bytes = Files::ReadAll(GetPath()).value_or(std::vector<std::uint8_t>());
    const std::string Section = "[" + rFullName + "]\n";
    if (!Bytes.empty() && (Bytes.back() != '\n')) {
        Bytes.push_back('\n');
    }
    Bytes.insert(Bytes.end(), Section.begin(), Section.end());
    return Files::WriteAll(GetPath(), Bytes);
}

/// A name is written bare or in quotes.
std::optional<std::string> FindValue(Key Handle, const std::string& rName) {
    const auto FullName = OpenKeys().Find(Handle);
    const auto File = FullName ? CIniFile::Read(GetPath()) : std::nullopt;
    if (!File) {
        return std::nullopt;
    }
    const std::string Name = rName.empty() ? std::string(DEFAULT_VALUE) : rName;
    const std::string* pValue = File->Find(*FullName, Name);
    if (pValue == nullptr) {
        pValue = File->Find(*FullName, "\"" + Name + "\"");
    }
    return (pValue == nullptr) ? std::nullopt : std::optional(*pValue);
}

}  // namespace

Key OpenKey(Root RootKey, Key Parent, const std::string& rName, Access Wanted) {
    std::string FullName = RootName(RootKey);
    if (Parent != 0) {
        const auto ParentName = OpenKeys().Find(Parent);
        if (!ParentName) {
            return 0;
        }
        FullName = *ParentName;
    }
    const std::string Name = Text::Trim(rName, "\\");
    // A name with these characters can't be written as a section.
    if (Name.find_first_of("]\r\n") != std::string::npos) {
        return 0;
    }
    if (!Name.empty()) {
        FullName += "\\" + Name;
        const auto File = CIniFile::Read(GetPath());
        if (!(File && HasKey(*File, FullName)) && ((Wanted != Access::eAll) || !MakeKey(FullName))) {
            return 0;
        }
    }
    return OpenKeys().Add(std::move(FullName));
}

void CloseKey(Key Handle) {
    OpenKeys().Remove(Handle);
}

std::optional<std::string> GetText(Key Handle, const std::string& rName) {
    return FindValue(Handle, rName);
}

std::optional<std::uint32_t> GetNumber(Key Handle, const std::string& rName) {
    const auto Value = FindValue(Handle, rName);
    if (!Value) {
        return std::nullopt;
    }
    std::string_view Digits = *Value;
    int Base = 10;
    if (Text::EqualNoCase(Digits.substr(0, NUMBER_PREFIX.size()), NUMBER_PREFIX)) {
        Digits.remove_prefix(NUMBER_PREFIX.size());
        Base = 16;
    }
    std::uint32_t Number = 0;
    const char* const pEnd = Digits.data() + Digits.size();
    const auto [pParsed, Error] = std::from_chars(Digits.data(), pEnd, Number, Base);
    if ((Error != std::errc()) || (pParsed != pEnd)) {
        return std::nullopt;
    }
    return Number;
}

}  // namespace Registry
