#pragma once
#include <cstddef>
#include <filesystem>

/// What a process holds.
struct CFootprint {
    /// After everything that can be given back was given back.
    static CFootprint Measure(const std::filesystem::path& rLogDirectory);

    std::size_t m_Heap = 0;      ///< in use, bytes
    std::size_t m_Resident = 0;  ///< bytes
    std::size_t m_nHandles = 0;
    std::size_t m_nThreads = 0;
    std::size_t m_LogFiles = 0;  ///< bytes on the disk
};
