#include "platform/help/unpacking.h"

#include <chm_lib.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <string.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>

#include "platform/system/descriptor.h"

namespace Unpacking {

namespace {

// --- in the process that unpacks: nothing of this program's own is used there

bool WriteBytes(int Handle, const void* pBytes, std::size_t nBytes) {
    const auto* pNext = static_cast<const char*>(pBytes);
    while (nBytes > 0) {
        const ssize_t nWritten = ::write(Handle, pNext, nBytes);
        if (nWritten < 0 && errno == EINTR) {
            continue;
        }
        if (nWritten <= 0) {
            return false;
        }
        pNext += nWritten;
        nBytes -= static_cast<std::size_t>(nWritten);
    }
    return true;
}

int SendObject(chmFile* pFile, chmUnitInfo* pUnit, void* pContext) {
    // Its own entries begin otherwise, "#SYSTEM", "$FIftiMain".
    const std::size_t nName = strnlen(pUnit->path, CHM_MAX_PATHLEN);
    const bool bOfTheHelp = nName > 1 && pUnit->path[0] == '/' && pUnit->path[1] != '#' &&
                            pUnit->path[1] != '$' && pUnit->path[nName - 1] != '/';
    if (!bOfTheHelp) {
        return CHM_ENUMERATOR_CONTINUE;
    }
    if (pUnit->length > MAX_OBJECT) {
        return CHM_ENUMERATOR_FAILURE;
    }
    std::vector<unsigned char> Contents(static_cast<std::size_t>(pUnit->length));
    if (!Contents.empty() &&
        chm_retrieve_object(pFile, pUnit, Contents.data(), 0, static_cast<LONGINT64>(Contents.size())) !=
            static_cast<LONGINT64>(Contents.size())) {
        return CHM_ENUMERATOR_FAILURE;
    }
    const CHeader Header{static_cast<std::uint32_t>(nName), static_cast<std::uint32_t>(Contents.size())};
    const int Pipe = *static_cast<const int*>(pContext);
    return WriteBytes(Pipe, &Header, sizeof(Header)) && WriteBytes(Pipe, pUnit->path, nName) &&
                   WriteBytes(Pipe, Contents.data(), Contents.size())
               ? CHM_ENUMERATOR_CONTINUE
               : CHM_ENUMERATOR_FAILURE;
}

[[noreturn]] void Unpack(const char* pFile, int Pipe, unsigned nSeconds) {
    // Whatever a damaged file leads to ends here, without a word and without a dump.
    for (const int Signal : {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT, SIGTERM, SIGINT, SIGHUP, SIGPIPE}) {
        ::signal(Signal, SIG_DFL);
    }
    const rlimit NoDump{0, 0};
    ::setrlimit(RLIMIT_CORE, &NoDump);
    const rlimit Seconds{nSeconds, nSeconds};
    ::setrlimit(RLIMIT_CPU, &Seconds);  // should the other one be gone
    if (const int Nothing = ::open("/dev/null", O_WRONLY | O_CLOEXEC); Nothing >= 0) {
        ::dup2(Nothing, STDERR_FILENO);
        ::dup2(Nothing, STDOUT_FILENO);
    }
    bool bDone = false;
    if (chmFile* const pHelp = chm_open(pFile)) {
        bDone = chm_enumerate(pHelp, CHM_ENUMERATE_NORMAL | CHM_ENUMERATE_FILES, SendObject, &Pipe) != 0 &&
                WriteBytes(Pipe, &END, sizeof(END));
    }
    ::_exit(bDone ? 0 : 1);
}

// --- in the program

/// Reads until the other end is closed. False at the deadline, and when it is too much.
bool ReceiveAll(int Pipe, int Limit, std::vector<char>& rSent) {
    using Clock = std::chrono::steady_clock;
    const Clock::time_point Deadline = Clock::now() + std::chrono::milliseconds(Limit);
    std::array<char, 65536> Block;
    while (true) {
        const auto Left = std::chrono::duration_cast<std::chrono::milliseconds>(Deadline - Clock::now());
        pollfd Poll{Pipe, POLLIN, 0};
        const int nReady = Left.count() <= 0 ? 0 : ::poll(&Poll, 1, static_cast<int>(Left.count()));
        if (nReady < 0 && errno == EINTR) {
            continue;
        }
        if (nReady <= 0) {
            return false;
        }
        const ssize_t nRead = ::read(Pipe, Block.data(), Block.size());
        if (nRead == 0) {
            return true;
        }
        if (nRead > 0) {
            rSent.insert(rSent.end(), Block.begin(), Block.begin() + nRead);
            if (rSent.size() > MAX_TOTAL) {
                return false;
            }
        } else if (errno != EINTR) {
            return false;
        }
    }
}

}  // namespace

std::optional<std::vector<char>> Run(const std::string& rFile, int Limit) {
    std::array<int, 2> Pipe{};
    if (::pipe2(Pipe.data(), O_CLOEXEC) != 0) {
        return std::nullopt;
    }
    CDescriptor In(Pipe[0]);
    CDescriptor Out(Pipe[1]);
    const unsigned nSeconds = static_cast<unsigned>(Limit) / 1000 + 1;
    const pid_t Process = ::fork();
    if (Process < 0) {
        return std::nullopt;
    }
    if (Process == 0) {
        Unpack(rFile.c_str(), Out.Get(), nSeconds);
    }
    Out.Close();
    std::vector<char> Sent;
    const bool bReceived = ReceiveAll(In.Get(), Limit, Sent);
    if (!bReceived) {
        ::kill(Process, SIGKILL);
    }
    int Status = 0;
    while (::waitpid(Process, &Status, 0) < 0 && errno == EINTR) {
    }
    const bool bDone = WIFEXITED(Status) && WEXITSTATUS(Status) == 0;
    return bReceived && bDone ? std::optional(std::move(Sent)) : std::nullopt;
}

}  // namespace Unpacking
