#pragma once
#include <cstddef>
#include <filesystem>
#include <set>
#include <string>

/// Which situations somebody has mastered, in a small file of the configuration directory: {"mastered":
/// ["heavy"]}. A file that can't be read counts as none, and is kept beside the new one.
class CTrainingTicks {
public:
    explicit CTrainingTicks(std::filesystem::path File);

    bool Has(const std::string& rId) const { return m_Mastered.contains(rId); }
    /// False if it can't be written; it counts until the program ends all the same.
    bool Add(const std::string& rId);
    /// The first situation that isn't mastered yet; the first one if all are.
    std::size_t FindFirstOpen() const;

private:
    std::filesystem::path m_File;
    std::set<std::string> m_Mastered;
};
