#include "platform/system/temporarydirectory.h"

#include <fcntl.h>
#include <stdlib.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <stdexcept>
#include <string>
#include <system_error>

namespace fs = std::filesystem;

namespace {

constexpr std::string_view NAME = "rotor-trim-";
constexpr std::string_view PATTERN = "XXXXXX";

bool IsOurName(const std::string& rName) {
    return rName.starts_with(NAME) && rName.size() == NAME.size() + PATTERN.size() &&
           std::all_of(rName.begin() + static_cast<std::ptrdiff_t>(NAME.size()), rName.end(),
                       [](unsigned char Character) { return std::isalnum(Character) != 0; });
}

CDescriptor OpenDirectory(const fs::path& rPath) {
    return CDescriptor(::open(rPath.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
}

/// Whether the descriptor's directory is the one that stands at the path.
bool StandsAt(const CDescriptor& rDirectory, const fs::path& rPath) {
    struct stat Open {};
    struct stat There {};
    return ::fstat(rDirectory.Get(), &Open) == 0 && ::lstat(rPath.c_str(), &There) == 0 &&
           Open.st_dev == There.st_dev && Open.st_ino == There.st_ino;
}

bool IsOfThisUser(const CDescriptor& rDirectory) {
    struct stat Status {};
    return ::fstat(rDirectory.Get(), &Status) == 0 && Status.st_uid == ::geteuid();
}

}  // namespace

fs::path CTemporaryDirectory::GetPlace() {
    std::error_code Error;
    const fs::path Place = fs::temp_directory_path(Error);
    return Error ? fs::path("/tmp") : Place;
}

CTemporaryDirectory::CTemporaryDirectory(const fs::path& rParent) {
    for (int nTries = 10; nTries > 0; --nTries) {
        std::string Name = (rParent / NAME).string() + std::string(PATTERN);
        if (::mkdtemp(Name.data()) == nullptr) {
            break;
        }
        m_Path = Name;
        m_Lock = OpenDirectory(m_Path);
        // Another process that removes leftovers may have taken it for one before it was locked here: then it
        // is gone by the time the lock is free, and another one is made.
        if (m_Lock.IsOpen()) {
            ::flock(m_Lock.Get(), LOCK_EX);
            if (StandsAt(m_Lock, m_Path)) {
                return;
            }
        }
    }
    throw std::runtime_error("no temporary directory can be made in " + rParent.string() +
                             "; name a directory that can be written in TMPDIR");
}

CTemporaryDirectory::~CTemporaryDirectory() {
    std::error_code Ignored;
    fs::remove_all(m_Path, Ignored);
}

void CTemporaryDirectory::RemoveLeftovers(const fs::path& rParent) {
    std::error_code Error;
    for (fs::directory_iterator Entry(rParent, Error), End; !Error && Entry != End; Entry.increment(Error)) {
        const fs::path& rPath = Entry->path();
        if (!IsOurName(rPath.filename().string())) {
            continue;
        }
        const CDescriptor Directory = OpenDirectory(rPath);
        if (Directory.IsOpen() && IsOfThisUser(Directory) &&
            ::flock(Directory.Get(), LOCK_EX | LOCK_NB) == 0) {
            std::error_code Ignored;
            fs::remove_all(rPath, Ignored);
        }
    }
}
