#pragma once
#include <filesystem>

#include "platform/system/descriptor.h"

/// A directory for this user only that goes, with all in it, at the end. It is locked as long as it lives,
/// and the lock ends with the process however that ends: so what killed processes have left can be told from
/// what is in use.
class CTemporaryDirectory {
public:
    /// In rParent. Throws std::runtime_error if none can be made there.
    explicit CTemporaryDirectory(const std::filesystem::path& rParent = GetPlace());
    ~CTemporaryDirectory();
    CTemporaryDirectory(const CTemporaryDirectory&) = delete;
    CTemporaryDirectory& operator=(const CTemporaryDirectory&) = delete;

    const std::filesystem::path& GetPath() const { return m_Path; }

    /// The system's place for temporary files: TMPDIR, or /tmp.
    static std::filesystem::path GetPlace();
    /// Removes what processes of this user have left in rParent when they were killed.
    static void RemoveLeftovers(const std::filesystem::path& rParent = GetPlace());

private:
    std::filesystem::path m_Path;
    CDescriptor m_Lock;
};
