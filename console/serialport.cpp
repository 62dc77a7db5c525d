#include "console/serialport.h"

#include <fcntl.h>
#include <grp.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>

#include "platform/system/descriptor.h"

namespace {

namespace fs = std::filesystem;
using Trouble = CLinkFacts::Trouble;

constexpr std::size_t LONGEST_ID = 9;  // digits of a process id

bool IsNumber(const std::string& rText) {
    return !rText.empty() &&
           std::ranges::all_of(rText, [](unsigned char Digit) { return std::isdigit(Digit); });
}

std::string NameProcess(const std::string& rId) {
    std::string Name;
    std::getline(std::ifstream("/proc/" + rId + "/comm"), Name);
    return (Name.empty() ? "" : Name + " ") + "(process " + rId + ")";
}

/// Programs that share serial ports by an old custom leave their process id in a file named by the device, in
/// the first of some directories that they can write.
std::string FindLockHolder(const std::string& rPath) {
    constexpr std::array DIRECTORIES = {
        "/var/lock",        "/run/lock",       "/var/lock/lockdev", "/etc/locks",
        "/var/spool/locks", "/var/spool/uucp", "/var/tmp",          "/tmp"};
    constexpr std::string_view DEVICES = "/dev/";
    std::error_code Error;
    for (std::string Name : {rPath, fs::canonical(rPath, Error).string()}) {
        Name = Name.starts_with(DEVICES) ? Name.substr(DEVICES.size()) : Name;
        std::ranges::replace(Name, '/', '_');
        for (const char* const pDirectory : DIRECTORIES) {
            std::string Id;
            std::ifstream(fs::path(pDirectory) / ("LCK.." + Name)) >> Id;
            const bool bAlive =
                IsNumber(Id) && (::kill(std::stoi(Id.substr(0, LONGEST_ID)), 0) == 0 || errno == EPERM);
            if (bAlive && Id != std::to_string(::getpid())) {
                return NameProcess(Id);
            }
        }
    }
    return {};
}

std::string GetGroupName(gid_t Group) {
    const ::group* const pGroup = ::getgrgid(Group);
    return pGroup != nullptr ? pGroup->gr_name : std::to_string(Group);
}

bool HasOpen(const fs::path& rProcess, const fs::path& rDevice) {
    std::error_code Error;
    for (fs::directory_iterator Entry(rProcess / "fd", Error); !Error && Entry != fs::directory_iterator();
         Entry.increment(Error)) {
        std::error_code Unreadable;
        if (fs::read_symlink(Entry->path(), Unreadable) == rDevice && !Unreadable) {
            return true;
        }
    }
    return false;
}

}  // namespace

std::string FindHolder(const std::string& rPath) {
    std::error_code Error;
    const fs::path Device = fs::canonical(rPath, Error);
    if (Error) {
        return {};
    }
    if (std::string Holder = FindLockHolder(rPath); !Holder.empty()) {
        return Holder;
    }
    for (fs::directory_iterator Entry("/proc", Error); !Error && Entry != fs::directory_iterator();
         Entry.increment(Error)) {
        const std::string Id = Entry->path().filename().string();
        if (IsNumber(Id) && Id != std::to_string(::getpid()) && HasOpen(Entry->path(), Device)) {
            return NameProcess(Id);
        }
    }
    return {};
}

void LookAtSerialPort(const std::string& rPath, CLinkFacts& rFacts) {
    const auto Say = [&rFacts](Trouble What, int Error) {
        rFacts.m_Trouble = What;
        rFacts.m_TroubleText = Error != 0 ? std::generic_category().message(Error) : "";
    };
    struct stat Status {};
    if (::stat(rPath.c_str(), &Status) != 0) {
        return Say(errno == EACCES ? Trouble::eNoRight : Trouble::eMissing, errno);
    }
    if (!S_ISCHR(Status.st_mode)) {
        return Say(Trouble::eNoPort, ENOTTY);
    }
    rFacts.m_Group = GetGroupName(Status.st_gid);
    // Without waiting for a carrier, and without becoming this process's terminal.
    const CDescriptor Port(::open(rPath.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
    if (!Port.IsOpen()) {
        const int Error = errno;
        switch (Error) {
            case EACCES:
            case EPERM:
                return Say(Trouble::eNoRight, Error);
            case EBUSY:
                rFacts.m_Holder = FindHolder(rPath);
                return Say(Trouble::eInUse, Error);
            case ENXIO:
            case ENODEV:
                return Say(Trouble::eMissing, Error);
            default:
                return Say(Trouble::eOther, Error);
        }
    }
    termios Mode{};
    if (::tcgetattr(Port.Get(), &Mode) != 0) {
        return Say(Trouble::eNoPort, errno);
    }
    rFacts.m_Holder = FindLockHolder(rPath);
    if (!rFacts.m_Holder.empty()) {
        Say(Trouble::eInUse, EBUSY);
    }
}
