#include "console/logsettings.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <sstream>
#include <utility>

#include "console/log.h"
#include "platform/system/files.h"
#include "rvlib/settings/installation.h"
#include "rvlib/settings/xmlconfig.h"

namespace {

constexpr const char* SECTION = "system_falconet";
constexpr const char* DEFAULT_LEVEL = "information";

struct CLevel {
    const char* m_pName;
    std::uint32_t m_Mask;
};
constexpr std::array LEVELS = {
    CLevel{"error", CLogComponent::ERROR},
    CLevel{"warning", CLogComponent::ERROR | CLogComponent::WARNING},
    CLevel{"information", CLogComponent::ERROR | CLogComponent::WARNING | CLogComponent::INFORMATION},
    CLevel{"debug",
           CLogComponent::ERROR | CLogComponent::WARNING | CLogComponent::INFORMATION | CLogComponent::DEBUG},
};
// The module's library brings topics of its own, long after the command line was read.
constexpr std::array TOPICS = {"PbFlow",         "PbMath",       "PbData", "Envelope", "Protocol",
                               "ProtocolDetail", "ProtocolData", "Timer",  "RefCount"};
constexpr std::array LINE_TOPICS = {"Protocol", "ProtocolDetail", "ProtocolData"};

std::string Join(const std::vector<std::string>& rNames) {
    std::string Text;
    for (const std::string& rName : rNames) {
        Text += (Text.empty() ? "" : ", ") + rName;
    }
    return Text;
}

std::optional<std::filesystem::file_time_type> GetTimeOfDocument() {
    std::error_code Error;
    const auto Written = std::filesystem::last_write_time(Files::ToNative(GetConfigFile().GetText()), Error);
    return Error ? std::nullopt : std::optional(Written);
}

}  // namespace

namespace LogNames {

std::vector<std::string> GetLevels() {
    std::vector<std::string> Names;
    Names.reserve(LEVELS.size());
    for (const CLevel& rLevel : LEVELS) {
        Names.emplace_back(rLevel.m_pName);
    }
    return Names;
}

std::vector<std::string> GetTopics() {
    return {TOPICS.begin(), TOPICS.end()};
}

std::optional<std::uint32_t> FindLevel(const std::string& rName) {
    const auto* const pFound =
        std::ranges::find_if(LEVELS, [&rName](const CLevel& rLevel) { return rName == rLevel.m_pName; });
    return pFound == LEVELS.end() ? std::nullopt : std::optional(pFound->m_Mask);
}

std::vector<std::string> Split(const std::string& rTopics) {
    std::vector<std::string> Names;
    std::istringstream In(rTopics);
    for (std::string Name; std::getline(In, Name, ',');) {
        std::erase_if(Name, [](char Each) { return std::isspace(static_cast<unsigned char>(Each)) != 0; });
        if (!Name.empty()) {
            Names.push_back(Name);
        }
    }
    return Names;
}

}  // namespace LogNames

CLogSettings::CLogSettings(std::string Level, std::vector<std::string> Topics)
    : m_Level(std::move(Level)), m_Topics(std::move(Topics)) {}

void CLogSettings::Read() {
    m_Written = GetTimeOfDocument();
    CRVXMLConfig Config;
    Config.Open();  // what can't be read has no attributes
    std::string Level = m_Level.empty() ? Config.GetText(SECTION, "LogLevel") : m_Level;
    std::vector<std::string> Topics =
        m_Topics.empty() ? LogNames::Split(Config.GetText(SECTION, "LogTopics")) : m_Topics;
    bool bStop = false;
    Config.GetBool(SECTION, "LogStopOnAssert", &bStop);
    CLogComponent::SetStopOnAssert(bStop);

    const bool bKnown = Level.empty() || LogNames::FindLevel(Level).has_value();
    const std::string Wrong = Level;
    if (Level.empty() || !bKnown) {
        Level = DEFAULT_LEVEL;
    }
    m_Chosen.m_Levels = *LogNames::FindLevel(Level);
    m_Chosen.m_Topics = std::move(Topics);
    Apply();
    if (!bKnown) {
        RV_WARNING(Console::g_pLog, "mcon.xdb: LogLevel \"%s\" isn't known; there are %s", Wrong.c_str(),
                   Join(LogNames::GetLevels()).c_str());
    }
    for (const std::string& rTopic : m_Chosen.m_Topics) {
        if (std::ranges::find(TOPICS, rTopic) == TOPICS.end()) {
            RV_WARNING(Console::g_pLog, "mcon.xdb: LogTopics \"%s\" isn't known; there are %s",
                       rTopic.c_str(), Join(LogNames::GetTopics()).c_str());
        }
    }
}

void CLogSettings::Watch() {
    m_Timer.StartPeriodic(PERIOD, [this] {
        if (GetTimeOfDocument() != m_Written) {
            Read();
        }
    });
}

void CLogSettings::TraceLine(bool bTrace) {
    m_bLineTraced = bTrace;
    Apply();
    RV_INFORMATION(Console::g_pLog, "the line's traces are switched %s", bTrace ? "on" : "off");
}

void CLogSettings::Apply() const {
    CLogComponent::CChoice Choice = m_Chosen;
    if (m_bLineTraced) {
        Choice.m_Topics.insert(Choice.m_Topics.end(), LINE_TOPICS.begin(), LINE_TOPICS.end());
    }
    CLogComponent::Choose(std::move(Choice));
}
