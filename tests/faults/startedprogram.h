#pragma once
#include <chrono>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

/// A program that is run to its end, however that comes.
struct CStartedProgram {
    int m_Status = -1;     ///< of its exit; -1 if it was killed
    int m_Signal = 0;      ///< that has killed it
    std::string m_Output;  ///< what it said, errors included

    /// Runs it with these variables besides this process's own. Kill: after that time, if it still runs.
    /// It has to end within two minutes, or it is killed, too.
    static CStartedProgram Run(const std::vector<std::string>& rCommand,
                               const std::map<std::string, std::string>& rVariables,
                               std::optional<std::chrono::microseconds> Kill = std::nullopt);
};
