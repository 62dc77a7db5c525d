#include "console/pagepicture.h"

#include <filesystem>

#include "console/session.h"
#include "platform/system/eventloop.h"
#include "platform/system/localtime.h"
#include "platform/window/messages.h"

std::string SavePagePicture(CConsoleSession& rSession, const std::string& rDirectory) {
    std::error_code Error;
    std::filesystem::create_directories(rDirectory, Error);
    const std::string Moment = FormatLocalTime(IFEventLoop::Current().WallClock(), "page-%Y%m%d-%H%M%S");
    std::filesystem::path File = std::filesystem::path(rDirectory) / (Moment + ".png");
    for (int nSame = 2; std::filesystem::exists(File, Error); ++nSame) {
        File.replace_filename(Moment + "-" + std::to_string(nSame) + ".png");
    }
    // The page repaints a new warning with the next live value only; the picture is to show it now.
    rSession.GetModule().SendMessage(WM_PAINT);
    return rSession.GetHost().Compose().SavePng(File.string()) ? File.string() : std::string();
}
