#include "platform/system/files.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "platform/system/descriptor.h"

namespace Files {

namespace {

constexpr std::size_t MAX_PATH = 260;
/// New files and directories belong to the owner and the group, as all users of the machine share them.
constexpr mode_t DIRECTORY_MODE = 0770;
constexpr mode_t FILE_MODE = 0660;

std::string ToModuleForm(std::string Path) {
    std::replace(Path.begin(), Path.end(), '/', '\\');
    return Path;
}

bool WriteBytes(int Handle, const std::vector<std::uint8_t>& rBytes) {
    std::size_t nDone = 0;
    while (nDone < rBytes.size()) {
        const ssize_t nWritten = ::write(Handle, rBytes.data() + nDone, rBytes.size() - nDone);
        if (nWritten < 0) {
            if (errno == EINTR) {
                continue;
            }
            return false;
        }
        nDone += static_cast<std::size_t>(nWritten);
    }
    return true;
}

/// The file itself if the path is a link to it, so that replacing the contents leaves the link.
std::string ResolveLink(const std::string& rPath) {
    std::error_code Error;
    const std::filesystem::path Target = std::filesystem::canonical(rPath, Error);
    return Error ? rPath : Target.string();
}

/// Nobody is to write it: then not even a user whom the system would let.
bool IsWriteProtected(const std::string& rPath, const struct stat& rStatus) {
    return (rStatus.st_mode & 0222) == 0 || ::access(rPath.c_str(), W_OK) != 0;
}

/// Between a file's name and six characters more in the name of its successor.
constexpr const char* TEMPORARY = ".writing-";

/// A successor for a file, beside it. Its writer holds it locked, so that one without a lock is known to be
/// left over from a writer that was killed.
int OpenTemporary(const std::string& rPath, std::string& rTemporary) {
    while (true) {
        rTemporary = rPath + TEMPORARY + "XXXXXX";
        const int Handle = ::mkostemp(rTemporary.data(), O_CLOEXEC);
        struct stat Status;
        if (Handle < 0 || ::flock(Handle, LOCK_EX | LOCK_NB) != 0 || ::fstat(Handle, &Status) != 0 ||
            Status.st_nlink != 0) {
            return Handle;
        }
        ::close(Handle);  // taken for a leftover before it was locked
    }
}

void RemoveLeftovers(const std::filesystem::path& rPath) {
    const std::string Beginning = rPath.filename().string() + TEMPORARY;
    const std::filesystem::path Parent = rPath.has_parent_path() ? rPath.parent_path() : ".";
    std::error_code Error;
    std::vector<std::filesystem::path> Leftovers;
    for (std::filesystem::directory_iterator Entry(Parent, Error), End; !Error && Entry != End;
         Entry.increment(Error)) {
        if (Entry->path().filename().string().starts_with(Beginning)) {
            Leftovers.push_back(Entry->path());
        }
    }
    for (const std::filesystem::path& rLeftover : Leftovers) {
        const CDescriptor File(::open(rLeftover.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW));
        if (File.IsOpen() && ::flock(File.Get(), LOCK_EX | LOCK_NB) == 0) {
            ::unlink(rLeftover.c_str());
        }
    }
}

}  // namespace

std::string ToNative(const std::string& rPath) {
    std::string Path = rPath;
    std::replace(Path.begin(), Path.end(), '\\', '/');
    return Path;
}

std::string GetFullPath(const std::string& rPath) {
    if (rPath.empty()) {
        return {};
    }
    std::error_code Error;
    const std::filesystem::path Full = std::filesystem::absolute(ToNative(rPath), Error);
    const std::string Path = Full.lexically_normal().string();
    return (Error || (Path.size() > MAX_PATH)) ? std::string() : ToModuleForm(Path);
}

bool IsDirectory(const std::string& rPath) {
    struct stat Status;
    return (::stat(ToNative(rPath).c_str(), &Status) == 0) && S_ISDIR(Status.st_mode);
}

bool IsFile(const std::string& rPath) {
    // Pipes and sockets count as devices.
    struct stat Status;
    return (::stat(ToNative(rPath).c_str(), &Status) == 0) && S_ISREG(Status.st_mode);
}

bool CreateDirectory(const std::string& rPath, const char* pAccess) {
    const std::string Path = ToNative(rPath);
    if (pAccess == nullptr) {
        return ::mkdir(Path.c_str(), 0777) == 0;
    }
    // The mode is set again, since the process's mask would take the group's right to write.
    return (::mkdir(Path.c_str(), DIRECTORY_MODE) == 0) && (::chmod(Path.c_str(), DIRECTORY_MODE) == 0);
}

std::optional<std::vector<std::uint8_t>> ReadAll(const std::string& rPath) {
    // Not blocking: opening a pipe would wait for its other end.
    const CDescriptor File(::open(ToNative(rPath).c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat Status;
    if (!File.IsOpen() || (::fstat(File.Get(), &Status) != 0) || !S_ISREG(Status.st_mode)) {
        return std::nullopt;
    }
    std::vector<std::uint8_t> Bytes;
    Bytes.reserve(static_cast<std::size_t>(Status.st_size));
    std::array<std::uint8_t, 4096> Block;
    while (true) {
        const ssize_t nRead = ::read(File.Get(), Block.data(), Block.size());
        if (nRead == 0) {
            return Bytes;
        }
        if (nRead > 0) {
            Bytes.insert(Bytes.end(), Block.begin(), Block.begin() + nRead);
        } else if (errno != EINTR) {
            return std::nullopt;
        }
    }
}

bool WriteAll(const std::string& rPath, const std::vector<std::uint8_t>& rBytes) {
    const std::string Path = ResolveLink(ToNative(rPath));
    struct stat Status;
    const bool bExists = ::stat(Path.c_str(), &Status) == 0;
    if (bExists && (!S_ISREG(Status.st_mode) || IsWriteProtected(Path, Status))) {
        return false;
    }
    RemoveLeftovers(Path);
    if (bExists && ReadAll(rPath) == rBytes) {
        return true;
    }
    // Written beside the old file, forced to the disk, then put in its place in one step: whenever the power
    // fails, either the old contents or the new ones are there.
    std::string Temporary;
    CDescriptor File(OpenTemporary(Path, Temporary));
    if (!File.IsOpen()) {
        return false;
    }
    const bool bWritten = WriteBytes(File.Get(), rBytes) &&
                          (::fchmod(File.Get(), bExists ? (Status.st_mode & 07777) : FILE_MODE) == 0) &&
                          (::fsync(File.Get()) == 0);
    if (!File.Close() || !bWritten || (std::rename(Temporary.c_str(), Path.c_str()) != 0)) {
        ::unlink(Temporary.c_str());
        return false;
    }
    const std::string Parent = std::filesystem::path(Path).parent_path().string();
    const CDescriptor Directory(
        ::open(Parent.empty() ? "." : Parent.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (Directory.IsOpen()) {
        ::fsync(Directory.Get());
    }
    return true;
}

std::string GetProgramDirectory() {
    std::error_code Error;
    const std::filesystem::path Program = std::filesystem::read_symlink("/proc/self/exe", Error);
    return ToModuleForm(Program.parent_path().string());
}

std::string GetBesideProgram(const std::string& rName) {
    return ToNative(GetProgramDirectory()) + "/" + rName;
}

}  // namespace Files
