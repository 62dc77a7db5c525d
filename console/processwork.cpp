#include "console/processwork.h"

#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <utility>

namespace {

/// Of the process and of those of its children that it has waited for, in ms; 0 if there is none.
std::uint64_t ReadProcessorTime(std::int64_t Pid) {
    std::ifstream In("/proc/" + std::to_string(Pid) + "/stat");
    const std::string Stat{std::istreambuf_iterator<char>(In), {}};
    // The second field is a name in parentheses, which may hold anything; the times are fields 14 to 17.
    std::istringstream Fields(Stat.substr(std::min(Stat.size(), Stat.rfind(')') + 1)));
    constexpr int FIRST_FIELD = 3;
    constexpr int FIRST_TIME = 14;
    constexpr int LAST_TIME = 17;
    std::string Skipped;
    for (int i = FIRST_FIELD; i < FIRST_TIME; ++i) {
        Fields >> Skipped;
    }
    std::uint64_t nTicks = 0;
    for (int i = FIRST_TIME; i <= LAST_TIME; ++i) {
        std::uint64_t nPart = 0;
        Fields >> nPart;
        nTicks += nPart;
    }
    return nTicks * 1000 / static_cast<std::uint64_t>(sysconf(_SC_CLK_TCK));
}

}  // namespace

bool CProcessWork::HasWorked(std::int64_t Pid) {
    const std::uint64_t Before = std::exchange(m_Total, ReadProcessorTime(Pid));
    return m_Total >= Before + LEAST;
}
