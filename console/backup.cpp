#include "console/backup.h"

#include <fcntl.h>
#include <stdio.h>

#include <QCryptographicHash>
#include <QFile>
#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <fstream>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <system_error>

#include "console/installation.h"
#include "console/tarfile.h"
#include "platform/rvldb/gettext.h"
#include "platform/rvmdb/directsql.h"
#include "platform/rvmdb/prebaldatabase.h"
#include "platform/rvmdb/schema.h"
#include "platform/rvmdb/storetexts.h"
#include "platform/system/eventloop.h"
#include "platform/system/localtime.h"
#include "platform/system/temporarydirectory.h"
#include "platform/system/version.h"

namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using PreBalDB::StoreTexts::Fill;

constexpr const char* FORMAT = "rotor-trim backup";
constexpr int FORMAT_VERSION = 1;
constexpr const char* MANIFEST = "contents.json";
constexpr const char* STORE = "cnf/prebal.db";
constexpr const char* NC = "cnf/opc.json";
/// All that is kept, as it lies below the root. Certificates, codes and private keys aren't among it.
constexpr std::array KEPT = {
    STORE, "cnf/vorwuchttemp.txt", "cnf/mcon.xdb", "cnf/speedctrl.ini", "cnf/panel.ini", "cnf/training.json",
    NC};
/// Fields of the NC's configuration that let somebody in.
constexpr std::array SECRETS = {"password", "user_key"};
constexpr const char* SQLITE = "sqlite:";

[[noreturn]] void Fail(const char* pKey, const std::vector<std::string>& rTexts = {}) {
    throw std::runtime_error(Fill(pKey, rTexts));
}

std::string GetSum(const fs::path& rFile) {
    QFile File(QString::fromStdString(rFile.string()));
    QCryptographicHash Hash(QCryptographicHash::Sha256);
    if (!File.open(QIODevice::ReadOnly) || !Hash.addData(&File)) {
        Fail("BACKUP_UNREADABLE", {rFile.string()});
    }
    return Hash.result().toHex().toStdString();
}

json ReadJson(const fs::path& rFile) {
    std::ifstream In(rFile);
    return json::parse(In, nullptr, false);
}

void WriteJson(const fs::path& rFile, const json& rValue) {
    std::ofstream Out(rFile);
    Out << rValue.dump(2, ' ', false, json::error_handler_t::replace) << "\n";
    if (!Out.flush()) {
        Fail("BACKUP_UNWRITABLE", {rFile.string()});
    }
}

/// What is committed, whatever a console is writing just now, or was writing when it was killed.
void CopyStore(const fs::path& rFrom, const fs::path& rTo) {
    PreBalDB::CDirectSQL Store(SQLITE + rFrom.string());
    Store.Execute("VACUUM INTO ?", {rTo.string()});
}

void CopyWithoutSecrets(const fs::path& rFrom, const fs::path& rTo) {
    json Configuration = ReadJson(rFrom);
    if (!Configuration.is_object()) {
        return;  // nobody can use it
    }
    for (const char* const pSecret : SECRETS) {
        Configuration.erase(pSecret);
    }
    WriteJson(rTo, Configuration);
}

/// The secrets that are here already, for the same server.
void TakeOverSecrets(const fs::path& rFrom, const fs::path& rTo) {
    const json Here = ReadJson(rFrom);
    json Restored = ReadJson(rTo);
    if (!Here.is_object() || !Restored.is_object() ||
        Here.value("server", json()) != Restored.value("server", json()) ||
        Here.value("user", json()) != Restored.value("user", json())) {
        return;
    }
    for (const char* const pSecret : SECRETS) {
        if (Here.contains(pSecret)) {
            Restored[pSecret] = Here[pSecret];
        }
    }
    WriteJson(rTo, Restored);
}

void CheckStore(const fs::path& rStore) {
    PreBalDB::CDirectSQL Store(SQLITE + rStore.string());
    PreBalDB::Schema::Prepare(Store);
}

/// Two names for each other's contents, at one moment.
void Exchange(const fs::path& rOne, const fs::path& rOther) {
    if (::renameat2(AT_FDCWD, rOne.c_str(), AT_FDCWD, rOther.c_str(), RENAME_EXCHANGE) != 0) {
        throw std::system_error(errno, std::generic_category(), rOne.string());
    }
}

/// Settings and all else, but for what is restored and the files beside the store.
void CopyTheRest(const fs::path& rFrom, const fs::path& rTo) {
    fs::create_directories(rTo);
    for (const fs::directory_entry& rEntry : fs::directory_iterator(rFrom)) {
        const std::string Name = rEntry.path().filename().string();
        const bool bKept = std::ranges::any_of(
            KEPT, [&Name](const char* pEach) { return fs::path(pEach).filename() == Name; });
        if (bKept || Name.starts_with(fs::path(STORE).filename().string())) {
            continue;
        }
        if (Name == fs::path(CInstallationLock::FILE_NAME)) {
            fs::create_hard_link(rEntry.path(), rTo / Name);  // the lock that is held on it goes along
        } else {
            fs::copy(rEntry.path(), rTo / Name, fs::copy_options::recursive);
        }
    }
}

}  // namespace

fs::path CBackup::GetStore() const {
    if (!m_Connection.starts_with(SQLITE)) {
        Fail("BACKUP_STORE_ON_SERVER");
    }
    return m_Connection.substr(std::string(SQLITE).size());
}

void CBackup::Write(const fs::path& rFile) const {
    const fs::path Store = GetStore();
    if (!fs::is_regular_file(Store)) {
        Fail("BACKUP_NO_STORE", {Store.string()});
    }
    const CTemporaryDirectory Directory;
    const fs::path Contents = Directory.GetPath() / "backup";
    fs::create_directories(Contents / "cnf");
    json Files = json::object();
    for (const char* const pName : KEPT) {
        const fs::path From = pName == STORE ? Store : m_Root / pName;
        if (!fs::is_regular_file(From)) {
            continue;
        }
        if (pName == STORE) {
            CopyStore(From, Contents / pName);
        } else if (pName == NC) {
            CopyWithoutSecrets(From, Contents / pName);
        } else {
            fs::copy_file(From, Contents / pName);
        }
        if (fs::exists(Contents / pName)) {
            Files[pName] = GetSum(Contents / pName);
        }
    }
    const auto Now = IFEventLoop::Current().WallClock();
    WriteJson(Contents / MANIFEST, {{"format", FORMAT},
                                    {"version", FORMAT_VERSION},
                                    {"program", GetProjectVersion()},
                                    {"made", FormatLocalTime(Now, "%Y-%m-%d %H:%M:%S")},
                                    {"files", Files}});
    // Looked at before it takes the name, so that a good backup of that name stays if this one is none.
    const fs::path Tried = Directory.GetPath() / "backup.tar.gz";
    if (const std::string Trouble = TarFile::Pack(Contents, Tried); !Trouble.empty()) {
        Fail("BACKUP_NOT_WRITTEN", {rFile.string(), Trouble});
    }
    const fs::path Again = Directory.GetPath() / "again";
    fs::create_directory(Again);
    Unpack(Tried, Again);
    if (const std::string Trouble = TarFile::Pack(Contents, rFile); !Trouble.empty()) {
        Fail("BACKUP_NOT_WRITTEN", {rFile.string(), Trouble});
    }
    const fs::path Written = Directory.GetPath() / "written";
    fs::create_directory(Written);
    Unpack(rFile, Written);
}

CBackup::CContents CBackup::Unpack(const fs::path& rFile, const fs::path& rDirectory) {
    if (!fs::is_regular_file(rFile)) {
        Fail("BACKUP_NOT_THERE", {rFile.string()});
    }
    if (const std::string Trouble = TarFile::Unpack(rFile, rDirectory); !Trouble.empty()) {
        Fail("BACKUP_NONE", {rFile.string(), Trouble});
    }
    CContents Contents;
    Contents.m_Directory = rDirectory / "backup";
    const json Manifest = ReadJson(Contents.m_Directory / MANIFEST);
    if (!Manifest.is_object() || Manifest.value("format", "") != FORMAT || !Manifest.contains("files") ||
        !Manifest["files"].is_object() || !Manifest["files"].contains(STORE)) {
        Fail("BACKUP_NONE", {rFile.string(), MANIFEST});
    }
    if (Manifest.value("version", 0) != FORMAT_VERSION) {
        Fail("BACKUP_NEWER", {rFile.string(), Manifest.value("program", "?")});
    }
    for (const auto& [rName, rSum] : Manifest["files"].items()) {
        const fs::path File = Contents.m_Directory / rName;
        const bool bKnown = std::ranges::find(KEPT, rName) != KEPT.end();
        if (!bKnown || !fs::is_regular_file(fs::symlink_status(File)) || rSum != GetSum(File)) {
            Fail("BACKUP_DAMAGED", {rFile.string(), rName});
        }
    }
    Contents.m_Made = Manifest.value("made", "?");
    Contents.m_Version = Manifest.value("program", "?");
    CheckStore(Contents.m_Directory / STORE);
    return Contents;
}

fs::path CBackup::Restore(const CContents& rContents) const {
    const fs::path Present = m_Root / "cnf";
    if (GetStore() != m_Root / STORE) {
        Fail("BACKUP_STORE_ELSEWHERE", {GetStore().string()});
    }
    const fs::path Next = m_Root / "cnf.restored";
    fs::remove_all(Next);  // of one that was killed
    CopyTheRest(Present, Next);
    for (const char* const pName : KEPT) {
        if (fs::exists(rContents.m_Directory / pName)) {
            fs::copy_file(rContents.m_Directory / pName, Next / fs::path(pName).filename());
        }
    }
    if (fs::exists(m_Root / NC)) {
        TakeOverSecrets(m_Root / NC, Next / fs::path(NC).filename());
    }
    fs::path Kept = m_Root / FormatLocalTime(IFEventLoop::Current().WallClock(), "cnf.before-%Y%m%d-%H%M%S");
    if (fs::exists(Kept)) {
        Fail("BACKUP_UNWRITABLE", {Kept.string()});
    }
    fs::rename(Next, Kept);
    Exchange(Present, Kept);  // whoever is killed before this has changed nothing, and behind it all
    return Kept;
}
