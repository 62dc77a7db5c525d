#include "console/helpfiles.h"

#include <system_error>

#include "platform/system/files.h"

namespace fs = std::filesystem;

void ProvideHelp(const CConsoleInstallation& rInstallation, const fs::path& rFrom) {
    std::error_code Error;
    for (fs::directory_iterator Entry(rFrom, Error), End; !Error && Entry != End; Entry.increment(Error)) {
        if (Entry->path().extension() != ".chm") {
            continue;
        }
        const std::string Target = (rInstallation.GetHelpDirectory() / Entry->path().filename()).string();
        const auto Contents = Files::ReadAll(Entry->path().string());
        if (Contents && Files::ReadAll(Target) != Contents) {
            Files::WriteAll(Target, *Contents);
        }
    }
}

fs::path GetHelpOfProgram() {
    return Files::GetBesideProgram("help");
}
