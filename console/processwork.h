#pragma once
#include <cstdint>

/// What a process gets done, in processor time. How long it takes by the clock to start or to end depends on
/// the machine and on what else that does; how much of the processor it needs does not.
class CProcessWork {
public:
    /// One that has used less than this between two looks, some seconds apart, waits for something that
    /// doesn't come, ms.
    static constexpr std::uint64_t LEAST = 50;

    /// Whether the process has worked since the last look, or since its start. False once it has ended.
    bool HasWorked(std::int64_t Pid);
    /// Used until the last look, in ms.
    std::uint64_t GetTotal() const { return m_Total; }

private:
    std::uint64_t m_Total = 0;
};
