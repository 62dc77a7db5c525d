#include "rvlib/settings/path.h"

#include <algorithm>

#include "platform/system/files.h"

namespace {

constexpr char SEPARATOR = '\\';
/// Full access, inherited by what is below, for the system, guests, users and administrators.
constexpr const char* DIRECTORY_ACCESS = "D:(A;OICI;GA;;;SY)(A;OICI;GA;;;BG)(A;OICI;GA;;;BU)(A;OICI;GA;;;BA)";

}  // namespace

CPath::CPath(const std::string& rPath) : m_Text(rPath) {
    std::replace(m_Text.begin(), m_Text.end(), '/', SEPARATOR);
    m_Text.erase(m_Text.find_last_not_of(SEPARATOR) + 1);
}

CPath& CPath::Append(const std::string& rPart) {
    std::string Part = CPath(rPart).m_Text;
    Part.erase(0, Part.find_first_not_of(SEPARATOR));
    if (!Part.empty()) {
        m_Text = m_Text.empty() ? Part : m_Text + SEPARATOR + Part;
    }
    return *this;
}

CPath CPath::GetDirectory() const {
    const std::size_t Separator = m_Text.find_last_of(SEPARATOR);
    return (Separator == std::string::npos) ? CPath() : CPath(m_Text.substr(0, Separator));
}

std::string CPath::GetFileName() const {
    return m_Text.substr(m_Text.find_last_of(SEPARATOR) + 1);
}

CPath CPath::GetFullPath() const {
    return Files::GetFullPath(m_Text);
}

bool CPath::IsDirectory() const {
    return Files::IsDirectory(m_Text);
}

bool CPath::IsFile() const {
    return Files::IsFile(m_Text);
}

bool CPath::CreateDirectories() const {
    if (IsDirectory() || Files::CreateDirectory(m_Text, DIRECTORY_ACCESS)) {
        return true;
    }
    const CPath Parent = GetDirectory();
    if ((Parent == *this) || Parent.IsEmpty()) {
        return false;
    }
    Parent.CreateDirectories();
    return Files::CreateDirectory(m_Text, DIRECTORY_ACCESS);
}
