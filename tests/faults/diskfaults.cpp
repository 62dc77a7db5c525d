// A disk and a clock that fail, for a program that is started with this library before its own (LD_PRELOAD):
// the calls that change what is under a folder are counted, and at one of them the program is killed or the
// disk fails. What is asked for stands in the environment, see diskplan.h. Calls go to the kernel past the C
// library, so that nothing here depends on which other libraries stand in between.
#include <dlfcn.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "tests/faults/faultplan.h"

namespace {

CFaultPlan& GetPlan() {
    static CFaultPlan s_Plan;
    return s_Plan;
}

/// The path of an open file; false if it isn't one under the folder.
bool FindPath(int File, char (&rPath)[PATH_MAX]) {
    if (!GetPlan().IsInUse() || File < 0) {
        return false;
    }
    char Link[64];
    std::snprintf(Link, sizeof Link, "/proc/self/fd/%d", File);
    const auto nLength = ::syscall(SYS_readlinkat, AT_FDCWD, Link, rPath, sizeof rPath - 1);
    if (nLength <= 0) {
        return false;
    }
    rPath[nLength] = '\0';
    return GetPlan().IsUnderFolder(rPath);
}

/// Of a name relative to a directory.
bool FindPath(int Directory, const char* pName, char (&rPath)[PATH_MAX]) {
    if (!GetPlan().IsInUse() || pName == nullptr) {
        return false;
    }
    if (pName[0] == '/') {
        std::snprintf(rPath, sizeof rPath, "%s", pName);
    } else {
        char Link[64];
        std::snprintf(Link, sizeof Link, Directory == AT_FDCWD ? "/proc/self/cwd" : "/proc/self/fd/%d",
                      Directory);
        const auto nLength = ::syscall(SYS_readlinkat, AT_FDCWD, Link, rPath, sizeof rPath - 1);
        if (nLength <= 0) {
            return false;
        }
        std::snprintf(rPath + nLength, sizeof rPath - static_cast<std::size_t>(nLength), "/%s", pName);
    }
    return GetPlan().IsUnderFolder(rPath);
}

/// -1 with the error of the fault; 0 if there is none.
int Fail(Fault What) {
    GetPlan().EndTornBefore(What);
    if (What != Fault::eFull && What != Fault::eError) {
        return 0;
    }
    errno = What == Fault::eFull ? ENOSPC : EIO;
    return -1;
}

int MeetFile(const char* pCall, int File, bool bTakesRoom = false) {
    char Path[PATH_MAX];
    return FindPath(File, Path) ? Fail(GetPlan().Meet(pCall, Path, bTakesRoom)) : 0;
}

int MeetName(const char* pCall, int Directory, const char* pName, bool bTakesRoom = false) {
    char Path[PATH_MAX];
    return FindPath(Directory, pName, Path) ? Fail(GetPlan().Meet(pCall, Path, bTakesRoom)) : 0;
}

/// How much of a write of so many bytes is to be done; nothing if it fails.
bool MeetWrite(const char* pCall, const char* pPath, std::size_t& rSize) {
    const Fault What = GetPlan().Meet(pCall, pPath, true);
    if (What == Fault::eHalf) {
        rSize = rSize > 1 ? rSize / 2 : rSize;
        return true;
    }
    return Fail(What) == 0;
}

ssize_t Written(ssize_t nDone, bool bHalf) {
    if (bHalf) {
        GetPlan().EndTorn();
    }
    return nDone;
}

/// An opening that changes something: makes a file, which takes room, or empties one. 0 if it can be, else
/// -1.
int MeetOpening(int Directory, const char* pName, int Flags) {
    struct stat Status;
    if (!GetPlan().IsInUse() || (Flags & (O_CREAT | O_TRUNC)) == 0) {
        return 0;
    }
    const bool bNew = ::fstatat(Directory, pName, &Status, AT_SYMLINK_NOFOLLOW) != 0;
    return bNew || (Flags & O_TRUNC) != 0 ? MeetName("open", Directory, pName, bNew) : 0;
}

int Open(int Directory, const char* pName, int Flags, mode_t Mode) {
    return MeetOpening(Directory, pName, Flags) != 0
               ? -1
               : static_cast<int>(::syscall(SYS_openat, Directory, pName, Flags, Mode));
}

mode_t GetMode(int Flags, std::va_list Arguments) {
    return (Flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(Arguments, mode_t) : 0;
}

template <typename Function>
Function Find(const char* pName) {
    void* const pFound = ::dlsym(RTLD_NEXT, pName);
    Function Found = nullptr;
    std::memcpy(&Found, &pFound, sizeof Found);
    return Found;
}

/// Whether a socket is connected to the server that is watched.
bool IsServer(int Socket) {
    if (!GetPlan().IsInUse() || GetPlan().GetPort() == 0) {
        return false;
    }
    sockaddr_in Address{};
    socklen_t nSize = sizeof Address;
    sockaddr Any{};
    if (::getpeername(Socket, &Any, &nSize) != 0 || Any.sa_family != AF_INET) {
        return false;
    }
    std::memcpy(&Address, &Any, sizeof Address);
    return ntohs(Address.sin_port) == GetPlan().GetPort();
}

}  // namespace

extern "C" {

ssize_t write(int File, const void* pData, std::size_t nSize) {
    char Path[PATH_MAX];
    const std::size_t nWhole = nSize;
    const bool bServer = IsServer(File);
    if ((bServer || FindPath(File, Path)) &&
        !MeetWrite(bServer ? "send" : "write", bServer ? "server" : Path, nSize)) {
        return -1;
    }
    return Written(::syscall(SYS_write, File, pData, nSize), nSize != nWhole);
}

ssize_t writev(int File, const iovec* pParts, int nParts) {
    // As one write each: a short one ends it, as it may.
    ssize_t nAll = 0;
    char Path[PATH_MAX];
    if (!FindPath(File, Path)) {
        return ::syscall(SYS_writev, File, pParts, nParts);
    }
    for (int i = 0; i < nParts; ++i) {
        const ssize_t nDone = write(File, pParts[i].iov_base, pParts[i].iov_len);
        if (nDone < 0) {
            return nAll > 0 ? nAll : nDone;
        }
        nAll += nDone;
        if (static_cast<std::size_t>(nDone) < pParts[i].iov_len) {
            break;
        }
    }
    return nAll;
}

ssize_t pwrite64(int File, const void* pData, std::size_t nSize, off64_t Offset) {
    char Path[PATH_MAX];
    const std::size_t nWhole = nSize;
    if (FindPath(File, Path) && !MeetWrite("pwrite", Path, nSize)) {
        return -1;
    }
    return Written(::syscall(SYS_pwrite64, File, pData, nSize, Offset), nSize != nWhole);
}
ssize_t pwrite(int File, const void* pData, std::size_t nSize, off_t Offset) {
    return pwrite64(File, pData, nSize, Offset);
}

ssize_t send(int Socket, const void* pData, std::size_t nSize, int Flags) {
    const std::size_t nWhole = nSize;
    if (IsServer(Socket) && !MeetWrite("send", "server", nSize)) {
        return -1;
    }
    return Written(::syscall(SYS_sendto, Socket, pData, nSize, Flags, nullptr, 0), nSize != nWhole);
}

int fsync(int File) {
    return MeetFile("fsync", File) != 0 ? -1 : static_cast<int>(::syscall(SYS_fsync, File));
}
int fdatasync(int File) {
    return MeetFile("fdatasync", File) != 0 ? -1 : static_cast<int>(::syscall(SYS_fdatasync, File));
}
int ftruncate64(int File, off64_t nSize) {
    return MeetFile("ftruncate", File) != 0 ? -1 : static_cast<int>(::syscall(SYS_ftruncate, File, nSize));
}
int ftruncate(int File, off_t nSize) {
    return ftruncate64(File, nSize);
}
int fchmod(int File, mode_t Mode) {
    return MeetFile("fchmod", File) != 0 ? -1 : static_cast<int>(::syscall(SYS_fchmod, File, Mode));
}

int renameat2(int FromDirectory, const char* pFrom, int ToDirectory, const char* pTo, unsigned Flags) {
    return MeetName("rename", ToDirectory, pTo) != 0
               ? -1
               : static_cast<int>(::syscall(SYS_renameat2, FromDirectory, pFrom, ToDirectory, pTo, Flags));
}
int renameat(int FromDirectory, const char* pFrom, int ToDirectory, const char* pTo) {
    return renameat2(FromDirectory, pFrom, ToDirectory, pTo, 0);
}
int rename(const char* pFrom, const char* pTo) {
    return renameat2(AT_FDCWD, pFrom, AT_FDCWD, pTo, 0);
}

int unlinkat(int Directory, const char* pName, int Flags) {
    return MeetName("unlink", Directory, pName) != 0
               ? -1
               : static_cast<int>(::syscall(SYS_unlinkat, Directory, pName, Flags));
}
int unlink(const char* pName) {
    return unlinkat(AT_FDCWD, pName, 0);
}
int rmdir(const char* pName) {
    return unlinkat(AT_FDCWD, pName, AT_REMOVEDIR);
}
int remove(const char* pName) {
    const int nResult = unlinkat(AT_FDCWD, pName, 0);
    return nResult != 0 && errno == EISDIR ? rmdir(pName) : nResult;
}

int mkdirat(int Directory, const char* pName, mode_t Mode) {
    return MeetName("mkdir", Directory, pName, true) != 0
               ? -1
               : static_cast<int>(::syscall(SYS_mkdirat, Directory, pName, Mode));
}
int mkdir(const char* pName, mode_t Mode) {
    return mkdirat(AT_FDCWD, pName, Mode);
}

int open64(const char* pName, int Flags, ...) {
    std::va_list Arguments;
    va_start(Arguments, Flags);
    const mode_t Mode = GetMode(Flags, Arguments);
    va_end(Arguments);
    return Open(AT_FDCWD, pName, Flags, Mode);
}
int open(const char* pName, int Flags, ...) {
    std::va_list Arguments;
    va_start(Arguments, Flags);
    const mode_t Mode = GetMode(Flags, Arguments);
    va_end(Arguments);
    return Open(AT_FDCWD, pName, Flags, Mode);
}
int openat64(int Directory, const char* pName, int Flags, ...) {
    std::va_list Arguments;
    va_start(Arguments, Flags);
    const mode_t Mode = GetMode(Flags, Arguments);
    va_end(Arguments);
    return Open(Directory, pName, Flags, Mode);
}
int openat(int Directory, const char* pName, int Flags, ...) {
    std::va_list Arguments;
    va_start(Arguments, Flags);
    const mode_t Mode = GetMode(Flags, Arguments);
    va_end(Arguments);
    return Open(Directory, pName, Flags, Mode);
}
int mkostemp64(char* pTemplate, int Flags) {
    static const auto s_Real = Find<int (*)(char*, int)>("mkostemp64");
    return MeetName("open", AT_FDCWD, pTemplate, true) != 0 ? -1 : s_Real(pTemplate, Flags);
}
int mkostemp(char* pTemplate, int Flags) {
    return mkostemp64(pTemplate, Flags);
}

// Streams of the C library write past what stands above: the log.
std::FILE* fopen64(const char* pName, const char* pMode) {
    static const auto s_Real = Find<std::FILE* (*)(const char*, const char*)>("fopen64");
    const int Flags = pMode[0] == 'w' ? O_CREAT | O_TRUNC : pMode[0] == 'a' ? O_CREAT : 0;
    if (MeetOpening(AT_FDCWD, pName, Flags) != 0) {
        return nullptr;
    }
    return s_Real(pName, pMode);
}
std::FILE* fopen(const char* pName, const char* pMode) {
    return fopen64(pName, pMode);
}
std::size_t fwrite(const void* pData, std::size_t nSize, std::size_t nItems, std::FILE* pFile) {
    static const auto s_Real =
        Find<std::size_t (*)(const void*, std::size_t, std::size_t, std::FILE*)>("fwrite");
    return MeetFile("fwrite", ::fileno(pFile), true) != 0 ? 0 : s_Real(pData, nSize, nItems, pFile);
}
int fflush(std::FILE* pFile) {
    static const auto s_Real = Find<int (*)(std::FILE*)>("fflush");
    if (pFile != nullptr && MeetFile("fflush", ::fileno(pFile), true) != 0) {
        return EOF;
    }
    return s_Real(pFile);
}

}  // extern "C"
