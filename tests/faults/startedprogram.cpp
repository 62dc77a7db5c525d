#include "tests/faults/startedprogram.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <stdexcept>

namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::seconds LONGEST{120};

[[noreturn]] void Become(const std::vector<std::string>& rCommand,
                         const std::map<std::string, std::string>& rVariables, int Output) {
    ::dup2(::open("/dev/null", O_RDONLY | O_CLOEXEC), STDIN_FILENO);
    ::dup2(Output, STDOUT_FILENO);
    ::dup2(Output, STDERR_FILENO);
    for (const auto& [rName, rValue] : rVariables) {
        ::setenv(rName.c_str(), rValue.c_str(), 1);
    }
    std::vector<char*> Arguments;
    for (const std::string& rArgument : rCommand) {
        Arguments.push_back(
            const_cast<char*>(rArgument.c_str()));  // the system's own signature: it changes none
    }
    Arguments.push_back(nullptr);
    ::execv(Arguments[0], Arguments.data());
    ::_exit(127);
}

/// What comes out of the pipe until its end or the deadline; whether the end came.
bool ReadUntil(int Pipe, Clock::time_point End, std::string& rOutput) {
    std::array<char, 4096> Block{};
    while (true) {
        const auto Left = std::chrono::ceil<std::chrono::milliseconds>(End - Clock::now());
        pollfd Ready{Pipe, POLLIN, 0};
        if (Left.count() <= 0 || ::poll(&Ready, 1, static_cast<int>(Left.count())) <= 0) {
            return false;
        }
        const ssize_t nRead = ::read(Pipe, Block.data(), Block.size());
        if (nRead <= 0) {
            return true;
        }
        rOutput.append(Block.data(), static_cast<std::size_t>(nRead));
    }
}

}  // namespace

CStartedProgram CStartedProgram::Run(const std::vector<std::string>& rCommand,
                                     const std::map<std::string, std::string>& rVariables,
                                     std::optional<std::chrono::microseconds> Kill) {
    std::array<int, 2> Pipe{};
    if (::pipe2(Pipe.data(), O_CLOEXEC) != 0) {
        throw std::runtime_error("no pipe");
    }
    const Clock::time_point Begin = Clock::now();
    const pid_t Child = ::fork();
    if (Child < 0) {
        throw std::runtime_error("no process");
    }
    if (Child == 0) {
        Become(rCommand, rVariables, Pipe[1]);
    }
    ::close(Pipe[1]);
    CStartedProgram Done;
    const Clock::time_point End =
        Begin + (Kill ? std::chrono::duration_cast<Clock::duration>(*Kill) : Clock::duration(LONGEST));
    if (!ReadUntil(Pipe[0], End, Done.m_Output)) {
        ::kill(Child, SIGKILL);
        ReadUntil(Pipe[0], Clock::now() + LONGEST, Done.m_Output);
    }
    ::close(Pipe[0]);
    int Status = 0;
    ::waitpid(Child, &Status, 0);
    Done.m_Status = WIFEXITED(Status) ? WEXITSTATUS(Status) : -1;
    Done.m_Signal = WIFSIGNALED(Status) ? WTERMSIG(Status) : 0;
    return Done;
}
