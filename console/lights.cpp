#include "console/lights.h"

#include <unistd.h>

#include <QString>
#include <QStringList>
#include <filesystem>

#include "console/nctrouble.h"
#include "platform/rvldb/gettext.h"

namespace {

using Level = CLight::Level;

/// Speed that isn't steady for so long, ms, has been changed on purpose.
constexpr std::uint64_t STEADY = 1500;

QString Text(const char* pKey) {
    return QString::fromStdString(GetText(pKey));
}

CLight MakeLight(Level How, const QString& rWord, const QString& rText) {
    return {How, rWord.toStdString(), rText.toStdString()};
}

QString FromUtf8(const std::string& rText) {
    return QString::fromStdString(rText);
}

/// "Kestrel module 5 (software 33, article 486107, serial 14200)".
QString Describe(const Lights::CModuleFacts& rFacts, std::uint8_t Address) {
    QString Name = Text(rFacts.m_bLanner ? "LIGHT_LANNER" : "LIGHT_KESTREL").arg(Address);
    const CLineWatch::CModule* const pModule = rFacts.m_pLine->Find(Address);
    if (pModule != nullptr && pModule->m_Software) {
        Name += " " + Text("LIGHT_PLATE")
                          .arg(*pModule->m_Software)
                          .arg(FromUtf8(pModule->m_Article))
                          .arg(pModule->m_Serial);
    }
    return Name;
}

QString DescribeAll(const Lights::CModuleFacts& rFacts) {
    QStringList Names;
    for (const std::uint8_t Address : rFacts.m_Addresses) {
        Names << Describe(rFacts, Address);
    }
    return Names.join(", ");
}

QString Seconds(std::uint64_t Milliseconds) {
    return QString::number(Milliseconds / 1000);
}

/// While the module isn't found: who has said nothing, or nothing that helps.
CLight GetUnanswered(const Lights::CModuleFacts& rFacts) {
    for (const std::uint8_t Address : rFacts.m_Addresses) {
        const CLineWatch::CModule* const pModule = rFacts.m_pLine->Find(Address);
        if (pModule == nullptr || pModule->IsSilent(rFacts.m_Now)) {
            const std::uint64_t Since = pModule == nullptr ? rFacts.m_AskedSince : pModule->m_LastHeard;
            return MakeLight(
                Level::eTrouble, Text("LIGHT_NO_ANSWER"),
                Text("LIGHT_NO_ANSWER_TEXT").arg(Describe(rFacts, Address), Seconds(rFacts.m_Now - Since)));
        }
    }
    return MakeLight(Level::eWaiting, Text("LIGHT_HEARD"), Text("LIGHT_HEARD_TEXT").arg(DescribeAll(rFacts)));
}

/// Why a module isn't in lock.
const char* FindReason(const CLineWatch::CModule& rModule, std::uint64_t Now) {
    if (rModule.m_bInvalidSpeed) {
        return "LIGHT_WHY_SPEED_SIGNAL";
    }
    if (rModule.m_bSensorFailure) {
        return "LIGHT_WHY_SENSOR";
    }
    if (rModule.m_bTooSlow) {
        return "LIGHT_WHY_SLOW";
    }
    if (rModule.m_bOveramplified) {
        return "LIGHT_WHY_OVERAMPLIFIED";
    }
    return Now - rModule.m_SteadySince < STEADY ? "LIGHT_WHY_UNSTEADY" : "LIGHT_WHY_UNKNOWN";
}

}  // namespace

CLight Lights::GetLink(const CLinkFacts& rFacts) {
    if (rFacts.m_bOpen) {
        return rFacts.m_bSimulated
                   ? MakeLight(Level::eGood, Text("LIGHT_SIMULATED"), Text("LIGHT_SIMULATED_TEXT"))
                   : MakeLight(Level::eGood, Text("LIGHT_OPEN"),
                               Text("LIGHT_OPEN_TEXT").arg(FromUtf8(rFacts.m_Link)));
    }
    const QString Reason = rFacts.m_Reason.empty() ? Text("LIGHT_NO_REASON") : FromUtf8(rFacts.m_Reason);
    return MakeLight(Level::eTrouble, Text("LIGHT_CLOSED"),
                     Text("LIGHT_CLOSED_TEXT").arg(FromUtf8(rFacts.m_Link), Reason));
}

CLight Lights::GetModule(const CModuleFacts& rFacts) {
    if (!rFacts.m_bLinkOpen) {
        return MakeLight(Level::eOff, Text("LIGHT_UNKNOWN"), Text("LIGHT_NO_LINK_TEXT"));
    }
    if (!rFacts.m_bConfigured) {
        return GetUnanswered(rFacts);
    }
    std::uint32_t Speed = 0;
    for (const std::uint8_t Address : rFacts.m_Addresses) {
        const CLineWatch::CModule* const pModule = rFacts.m_pLine->Find(Address);
        if (pModule == nullptr || pModule->IsSilent(rFacts.m_Now)) {
            const std::uint64_t Since = pModule == nullptr ? rFacts.m_AskedSince : pModule->m_LastHeard;
            return MakeLight(
                Level::eTrouble, Text("LIGHT_SILENT"),
                Text("LIGHT_SILENT_TEXT").arg(Describe(rFacts, Address), Seconds(rFacts.m_Now - Since)));
        }
        Speed = pModule->m_SpeedRpm.value_or(Speed);
    }
    if (Speed == 0) {
        return MakeLight(Level::eGood, Text("LIGHT_STANDING"),
                         Text("LIGHT_STANDING_TEXT").arg(DescribeAll(rFacts)));
    }
    for (const std::uint8_t Address : rFacts.m_Addresses) {
        const CLineWatch::CModule& rModule = *rFacts.m_pLine->Find(Address);
        if (rModule.m_bOutOfLock || rModule.m_bInvalidSpeed) {
            return MakeLight(Level::eWaiting, Text("LIGHT_OUT_OF_LOCK"),
                             Text("LIGHT_OUT_OF_LOCK_TEXT")
                                 .arg(Describe(rFacts, Address))
                                 .arg(Speed)
                                 .arg(Text(FindReason(rModule, rFacts.m_Now))));
        }
    }
    return MakeLight(Level::eGood, Text("LIGHT_LOCKED").arg(Speed),
                     Text("LIGHT_LOCKED_TEXT").arg(DescribeAll(rFacts)).arg(Speed));
}

CLight Lights::GetNc(CNcPanel::State State, const std::string& rServer, const std::string& rTrouble) {
    const QString Server = FromUtf8(rServer);
    switch (State) {
        case CNcPanel::State::eConnected:
            return MakeLight(Level::eGood, Text("LIGHT_CONNECTED"), Text("LIGHT_NC_TEXT").arg(Server));
        case CNcPanel::State::eConnecting:
            return MakeLight(Level::eWaiting, Text("LIGHT_CONNECTING"),
                             Text("LIGHT_NC_CONNECTING_TEXT").arg(Server));
        case CNcPanel::State::eLost:
            return MakeLight(
                Level::eTrouble, Text("LIGHT_LOST"),
                (FromUtf8(CNcTrouble::Describe(rTrouble)) + " " + Text("LIGHT_NC_LOST_TEXT").arg(Server))
                    .trimmed());
        case CNcPanel::State::eNone:
            break;
    }
    return MakeLight(Level::eOff, Text("LIGHT_NONE"), Text("LIGHT_NC_NONE_TEXT"));
}

Lights::CDatabaseFacts Lights::LookAtDatabase(const std::string& rConnection) {
    constexpr const char* PREFIX = "sqlite:";
    CDatabaseFacts Facts;
    if (!rConnection.starts_with(PREFIX)) {
        return Facts;
    }
    Facts.m_File = rConnection.substr(std::string(PREFIX).size());
    const std::string Directory = std::filesystem::path(Facts.m_File).parent_path().string();
    const bool bThere = access(Facts.m_File.c_str(), F_OK) == 0;
    Facts.m_bReadable = !bThere || access(Facts.m_File.c_str(), R_OK) == 0;
    // A store writes beside its file, too.
    Facts.m_bWritable =
        (!bThere || access(Facts.m_File.c_str(), W_OK) == 0) && access(Directory.c_str(), W_OK | X_OK) == 0;
    return Facts;
}

CLight Lights::GetDatabase(const CDatabaseFacts& rFacts) {
    const QString Where = rFacts.m_File.empty() ? Text("LIGHT_SERVER") : FromUtf8(rFacts.m_File);
    if (!rFacts.m_bReadable) {
        return MakeLight(Level::eTrouble, Text("LIGHT_UNREADABLE"), Text("LIGHT_UNREADABLE_TEXT").arg(Where));
    }
    if (!rFacts.m_bWritable) {
        return MakeLight(Level::eTrouble, Text("LIGHT_READ_ONLY"), Text("LIGHT_READ_ONLY_TEXT").arg(Where));
    }
    if (rFacts.m_bAway) {
        return MakeLight(Level::eWaiting, Text("LIGHT_AWAY"),
                         Text("LIGHT_AWAY_TEXT")
                             .arg(Where, FromUtf8(rFacts.m_WhyAway), QString::number(rFacts.m_nWaiting)));
    }
    if (!rFacts.m_Trouble.empty()) {
        return MakeLight(Level::eTrouble, Text("LIGHT_TROUBLE"),
                         Text("LIGHT_TROUBLE_TEXT").arg(Where, FromUtf8(rFacts.m_Trouble)));
    }
    return MakeLight(Level::eGood, Text("LIGHT_READY"), Text("LIGHT_READY_TEXT").arg(Where));
}
