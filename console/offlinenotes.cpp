#include "console/offlinenotes.h"

#include <filesystem>
#include <stdexcept>

#include "archive/isostore.h"
#include "archive/runschema.h"
#include "console/log.h"
#include "console/options.h"
#include "platform/rvldb/gettext.h"
#include "platform/rvlog/log.h"
#include "platform/rvmdb/configurationfields.h"
#include "platform/rvmdb/directsql.h"
#include "platform/rvmdb/offline.h"
#include "platform/rvmdb/postgresurl.h"
#include "platform/rvmdb/prebaldatabase.h"
#include "platform/rvmdb/storetexts.h"

namespace OfflineNotes {

namespace {

using PreBalDB::Offline::CEvent;
using PreBalDB::StoreTexts::Fill;

/// In the directory of the installation's own store.
constexpr const char* FILE_NAME = "offline.db";

std::string Describe(const CEvent& rEvent) {
    switch (rEvent.m_Kind) {
        case CEvent::Kind::eAway:
            return Fill("DATABASE_AWAY", {rEvent.m_Text});
        case CEvent::Kind::eBack:
            return GetText("DATABASE_BACK");
        case CEvent::Kind::eRefused:
            return Fill("DATABASE_DELIVERY_REFUSED", {rEvent.m_Configuration, rEvent.m_Text});
        case CEvent::Kind::eConflict:
            break;
    }
    if (rEvent.m_bCalibrationLost) {
        return Fill("DATABASE_CALIBRATION_STAYS", {rEvent.m_Configuration});
    }
    std::vector<std::string> Labels;
    for (const std::string& rField : rEvent.m_Conflicts) {
        Labels.push_back(PreBalDB::ConfigurationFields::GetLabel(rField));
    }
    return Fill("DATABASE_OTHERS_STAY", {rEvent.m_Configuration, PreBalDB::StoreTexts::Join(Labels)});
}

}  // namespace

void Prepare(const COptions& rOptions, const std::string& rDirectory) {
    PreBalDB::Offline::SetFile("");
    // What ends with the run is no place to keep anything.
    const bool bStays = !rOptions.m_bHeadless || !rOptions.m_ConfigDirectory.empty();
    if (!bStays || rOptions.m_bDemo || rOptions.IsLesson() ||
        !PreBalDB::CPostgresUrl::IsOne(PreBalDB::GetDatabaseConnection())) {
        return;
    }
    const std::string File = (std::filesystem::path(rDirectory) / FILE_NAME).string();
    try {
        PreBalDB::CDirectSQL Local("sqlite:" + File);
        RunSchema::Prepare(Local);
        const CIsoStore Iso(Local);
        PreBalDB::Offline::SetFile(File);
    } catch (const std::runtime_error& rError) {
        RV_ERROR(Console::g_pLog, "nothing can be kept here while the server is away: %s", rError.what());
    }
}

std::vector<std::string> Take() {
    std::vector<std::string> Sentences;
    for (const CEvent& rEvent : PreBalDB::Offline::TakeEvents()) {
        Sentences.push_back(Describe(rEvent));
    }
    return Sentences;
}

bool IsAllDelivered() {
    const PreBalDB::Offline::CState State = PreBalDB::Offline::GetState();
    return !State.m_bAway && !State.IsWaiting();
}

}  // namespace OfflineNotes
