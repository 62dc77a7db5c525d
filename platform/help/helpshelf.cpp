#include "platform/help/helpshelf.h"

#include <sys/stat.h>

#include <algorithm>
#include <deque>

namespace HelpShelf {

namespace {

/// As many as there are languages on show at one time.
constexpr std::size_t MOST = 2;

struct CVolume {
    std::string m_File;
    /// What tells that a file is another one than before.
    dev_t m_Device = 0;
    ino_t m_Node = 0;
    off_t m_nSize = -1;
    timespec m_Written{};
    std::shared_ptr<const CCompiledHelp> m_pHelp;

    bool IsSame(const CVolume& rOther) const {
        return m_File == rOther.m_File && m_Device == rOther.m_Device && m_Node == rOther.m_Node &&
               m_nSize == rOther.m_nSize && m_Written.tv_sec == rOther.m_Written.tv_sec &&
               m_Written.tv_nsec == rOther.m_Written.tv_nsec;
    }
};

}  // namespace

std::shared_ptr<const CCompiledHelp> Take(const std::string& rFile) {
    static std::deque<CVolume> s_Volumes;
    CVolume Now;
    Now.m_File = rFile;
    struct stat Status {};
    if (::stat(rFile.c_str(), &Status) != 0) {
        return std::make_shared<const CCompiledHelp>();
    }
    Now.m_Device = Status.st_dev;
    Now.m_Node = Status.st_ino;
    Now.m_nSize = Status.st_size;
    Now.m_Written = Status.st_mtim;
    const auto Found =
        std::ranges::find_if(s_Volumes, [&](const CVolume& rVolume) { return rVolume.IsSame(Now); });
    if (Found != s_Volumes.end()) {
        return Found->m_pHelp;
    }
    Now.m_pHelp = std::make_shared<const CCompiledHelp>(rFile);
    std::erase_if(s_Volumes, [&](const CVolume& rVolume) { return rVolume.m_File == rFile; });
    s_Volumes.push_back(Now);
    if (s_Volumes.size() > MOST) {
        s_Volumes.pop_front();
    }
    return Now.m_pHelp;
}

}  // namespace HelpShelf
