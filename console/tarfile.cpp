#include "console/tarfile.h"

#include <QProcess>

namespace {

namespace fs = std::filesystem;

constexpr int PATIENCE = 60000;  ///< ms

QString ToQt(const fs::path& rPath) {
    return QString::fromStdString(rPath.string());
}

std::string RunTar(const QStringList& rArguments) {
    QProcess Tar;
    Tar.start("tar", rArguments);
    if (!Tar.waitForFinished(PATIENCE) || Tar.exitStatus() != QProcess::NormalExit || Tar.exitCode() != 0) {
        const std::string Said = Tar.readAllStandardError().simplified().toStdString();
        return Said.empty() ? Tar.errorString().toStdString() : Said;
    }
    return {};
}

}  // namespace

std::string TarFile::Pack(const fs::path& rDirectory, const fs::path& rFile) {
    std::error_code Error;
    if (rFile.has_parent_path()) {
        fs::create_directories(rFile.parent_path(), Error);
    }
    const fs::path Unfinished = rFile.string() + ".part";
    std::string Trouble =
        RunTar({"-czf", ToQt(Unfinished), "-C", ToQt(rDirectory.parent_path()), ToQt(rDirectory.filename())});
    if (Trouble.empty()) {
        fs::permissions(Unfinished, fs::perms::owner_read | fs::perms::owner_write, Error);
        fs::rename(Unfinished, rFile, Error);
        Trouble = Error ? rFile.string() + ": " + Error.message() : std::string();
    }
    if (!Trouble.empty()) {
        fs::remove(Unfinished, Error);
    }
    return Trouble;
}

std::string TarFile::Unpack(const fs::path& rFile, const fs::path& rDirectory) {
    return RunTar({"-xzf", ToQt(rFile), "-C", ToQt(rDirectory), "--no-same-owner", "--no-same-permissions"});
}
