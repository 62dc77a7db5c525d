#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace PreBalDB {

/// What a console does while the server of its store is away: it goes on with a copy on its own disk of what
/// it read last, keeps there what it writes, and brings it to the server, in order and each once, when that
/// is back. All this is of the process, whatever number of databases it opens; from any thread.
namespace Offline {

/// Where copy and queue lie; empty: nowhere, and a server that is away is a failure. Counts only for a store
/// on a server. Ends what delivers meanwhile.
void SetFile(const std::string& rFile);
std::string GetFile();
/// Whether there is a file, and the store is on a server.
bool IsUsed();

struct CState {
    bool m_bAway = false;
    std::string m_Why;
    std::size_t m_nConfigurations = 0;  ///< their writes that wait for the server
    std::size_t m_nRuns = 0;            ///< of the archive, that wait for it

    bool IsWaiting() const { return m_nConfigurations != 0 || m_nRuns != 0; }
};
CState GetState();
bool IsAway();

/// Something that people want to know, once.
struct CEvent {
    enum class Kind : std::uint8_t {
        eAway,      ///< m_Text: why
        eBack,      ///< all has been delivered
        eConflict,  ///< others have changed the same meanwhile, and theirs stays
        eRefused    ///< the server will never take it; m_Text: why
    };
    Kind m_Kind = Kind::eAway;
    std::string m_Text;
    std::string m_Configuration;
    std::vector<std::string> m_Conflicts;
    bool m_bCalibrationLost = false;
};
std::vector<CEvent> TakeEvents();

// For the stores.

/// The server doesn't answer. From now on it is asked now and then by a thread of its own.
void SetAway(const std::string& rWhy);
void SetWaitingConfigurations(std::size_t nCount);
void SetWaitingRuns(std::size_t nCount);
void AddEvent(CEvent Event);

}  // namespace Offline
}  // namespace PreBalDB
