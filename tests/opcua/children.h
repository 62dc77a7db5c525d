#pragma once
#include <sys/prctl.h>

#include <QProcess>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>

/// Processes that a process has started, and those that these have started in turn. Their numbers are only
/// good until they end.
inline std::set<int> FindChildren(int Pid) {
    std::set<int> Found;
    std::ifstream In("/proc/" + std::to_string(Pid) + "/task/" + std::to_string(Pid) + "/children");
    for (int Child = 0; In >> Child;) {
        Found.insert(Child);
        Found.merge(FindChildren(Child));
    }
    return Found;
}

inline std::string ReadCommandLine(int Pid) {
    std::ifstream In("/proc/" + std::to_string(Pid) + "/cmdline");
    return {std::istreambuf_iterator<char>(In), {}};
}

/// Whether a process is there and has not ended; one that nobody has buried yet has.
inline bool IsAlive(int Pid) {
    std::ifstream In("/proc/" + std::to_string(Pid) + "/stat");
    const std::string Stat{std::istreambuf_iterator<char>(In), {}};
    const std::size_t Name = Stat.rfind(')');
    return Name != std::string::npos && Stat.at(Name + 2) != 'Z';
}

/// A process that a test starts ends with the test's own, even if that crashes. To be called before it
/// starts.
inline void EndWithUs(QProcess& rProcess) {
    rProcess.setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGKILL); });
}
