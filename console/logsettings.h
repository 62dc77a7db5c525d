#pragma once
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "platform/rvlog/logcomponent.h"
#include "platform/system/timer.h"

/// Names of the log's levels and topics, as commands and settings have them.
namespace LogNames {

/// From "error" to "debug": each with all before it.
std::vector<std::string> GetLevels();
/// Of all publishers, also of libraries that aren't loaded yet.
std::vector<std::string> GetTopics();
/// The mask of a level; nothing for another name.
std::optional<std::uint32_t> FindLevel(const std::string& rName);
/// "PbFlow, PbMath" as its names; blanks don't count.
std::vector<std::string> Split(const std::string& rTopics);

}  // namespace LogNames

/// What the log of this installation holds: by the settings document's attributes LogLevel, LogTopics and
/// LogStopOnAssert of the element system_falconet, unless the command line says otherwise, and the traces of
/// the line as long as somebody has switched them on. A change of the document takes effect while the program
/// runs. Needs a current event loop.
class CLogSettings {
public:
    /// Empty: as the settings document says, else "information" and no topic.
    CLogSettings(std::string Level, std::vector<std::string> Topics);

    /// Reads the document, and says in the log what in it can't be.
    void Read();
    /// Looks every 2 s whether the document has changed, as long as this lives.
    void Watch();
    /// The traces of the modules' protocol.
    void TraceLine(bool bTrace);
    bool IsLineTraced() const { return m_bLineTraced; }

private:
    static constexpr std::uint32_t PERIOD = 2000;  ///< ms

    void Apply() const;

    std::string m_Level;
    std::vector<std::string> m_Topics;
    CLogComponent::CChoice m_Chosen;
    std::optional<std::filesystem::file_time_type> m_Written;
    bool m_bLineTraced = false;
    CTimer m_Timer;
};
