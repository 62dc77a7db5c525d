#pragma once
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "archive/archivedrun.h"
#include "archive/runarchive.h"
#include "platform/system/lifetime.h"

/// Writes reports of former runs into the installation, for the page of runs. The archive answers when it
/// can; nothing here waits for it.
class CArchivedReports {
public:
    /// The directory is made when it is needed.
    explicit CArchivedReports(std::string Directory) : m_Directory(std::move(Directory)) {}

    /// As "run-ID.pdf".
    void Write(CRunArchive& rArchive, std::int64_t Id);

    /// What became of it, in the language in use.
    std::function<void(const std::string&)> OnSay;

private:
    void WriteRun(const std::string& rFile, const std::optional<CArchivedRun>& rRun) const;
    void Fail(const std::string& rFile, const std::string& rWhy) const;

    std::string m_Directory;
    CLifetime m_Lifetime;
};
