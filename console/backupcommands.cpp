#include "console/backupcommands.h"

#include <cstdio>

#include "console/backup.h"
#include "console/command.h"
#include "console/lights.h"
#include "console/servicebundle.h"
#include "platform/rvldb/gettext.h"
#include "platform/rvmdb/prebaldatabase.h"
#include "platform/rvmdb/storetexts.h"
#include "platform/system/temporarydirectory.h"

using PreBalDB::StoreTexts::Fill;

namespace {

void PrintLine(const std::string& rText) {
    std::printf("%s\n", rText.c_str());
}

void AddFile(CCommandFrame& rFrame, std::string& rFile, const char* pHelp) {
    rFrame.GetApp().add_option("FILE", rFile, pHelp)->required();
}

}  // namespace

int RunBackup(int argc, const char* const* argv) {
    CCommandFrame Frame("backup");
    std::string File;
    AddFile(Frame, File, "To write; one of that name is replaced");
    return Frame.Run(argc, argv, [&](const CConsoleInstallation& rInstallation) {
        CBackup(rInstallation.GetRoot(), rInstallation.GetDatabaseConnection()).Write(File);
        PrintLine(Fill("BACKUP_WRITTEN", {File}));
        return 0;
    });
}

int RunRestore(int argc, const char* const* argv) {
    CCommandFrame Frame("restore");
    Frame.OfferYes();
    std::string File;
    AddFile(Frame, File, "That the command backup has written");
    return Frame.Run(argc, argv, [&](const CConsoleInstallation& rInstallation) {
        const CInstallationLock Lock(rInstallation);
        const CTemporaryDirectory Directory;
        const CBackup::CContents Contents = CBackup::Unpack(File, Directory.GetPath());
        if (!Frame.IsSure(Fill("BACKUP_RESTORE_ASKS", {rInstallation.GetRoot().string(), Contents.m_Made}))) {
            PrintLine(GetText("COMMAND_NOTHING_DONE"));
            return 1;
        }
        const CBackup Backup(rInstallation.GetRoot(), rInstallation.GetDatabaseConnection());
        PrintLine(Fill("BACKUP_RESTORED", {File, Backup.Restore(Contents).string()}));
        return 0;
    });
}

int RunServiceBundle(int argc, const char* const* argv) {
    CCommandFrame Frame("service-bundle");
    std::string File;
    AddFile(Frame, File, "To write, a compressed tar; one of that name is replaced");
    return Frame.Run(argc, argv, [&](const CConsoleInstallation& rInstallation) {
        const std::string Trouble = MakeServiceBundle(
            {rInstallation.GetRoot(), Lights::LookAtDatabase(PreBalDB::GetDatabaseConnection()).m_File, {}},
            File);
        if (!Trouble.empty()) {
            throw CCommandError(Fill("COMMAND_FILE_NOT_WRITTEN", {File, Trouble}), 1);
        }
        PrintLine(Fill("SERVICE_BUNDLE_WRITTEN", {File}));
        return 0;
    });
}
