#include "platform/rvlog/logcomponent.h"

#include <spdlog/logger.h>
#include <spdlog/sinks/rotating_file_sink.h>
#include <spdlog/sinks/stdout_sinks.h>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstdio>
#include <fstream>
#include <mutex>

#include "platform/system/files.h"
#include "platform/window/messagebox.h"

namespace {

constexpr std::size_t FILE_SIZE = std::size_t{2} * 1024 * 1024;
/// Besides the file being written; five files in all.
constexpr std::size_t OLD_FILES = 4;
constexpr std::size_t INDENT_WIDTH = 2;
constexpr const char* PATTERN = "%Y-%m-%d %H:%M:%S.%e %v";

/// A listener with its own lock, so that once its guard is gone it isn't running in any thread. The lock is
/// recursive: a listener may log, and may drop its own guard.
class CListenerEntry {
public:
    explicit CListenerEntry(CLogComponent::Listener Callback) : m_Callback(std::move(Callback)) {}

    void Call(const CLogRecord& rRecord) {
        const std::lock_guard Lock(m_Mutex);
        if (m_bActive) {
            m_Callback(rRecord);
        }
    }
    void Stop() {
        const std::lock_guard Lock(m_Mutex);
        m_bActive = false;
    }

private:
    std::recursive_mutex m_Mutex;
    CLogComponent::Listener m_Callback;
    bool m_bActive = true;
};

struct CLogState {
    std::mutex m_Mutex;
    std::vector<std::unique_ptr<CLogComponent>> m_Publishers;
    std::vector<std::shared_ptr<CListenerEntry>> m_Listeners;
    std::shared_ptr<spdlog::logger> m_pFile;
    std::shared_ptr<spdlog::logger> m_pConsole;
    std::uint32_t m_ConsoleMask = 0;
    CLogComponent::CChoice m_Choice;
    std::atomic<bool> m_bStopOnAssert = false;
};

/// Made at first use, since publishers register from static initialisers, and never destroyed, since static
/// destructors of any library may still log.
CLogState& GetState() {
    static CLogState* const s_pState = new CLogState;
    return *s_pState;
}

spdlog::level::level_enum ToSpdlogLevel(std::uint32_t Mask) {
    if ((Mask & CLogComponent::ERROR) != 0) {
        return spdlog::level::err;
    }
    if ((Mask & CLogComponent::WARNING) != 0) {
        return spdlog::level::warn;
    }
    if ((Mask & CLogComponent::INFORMATION) != 0) {
        return spdlog::level::info;
    }
    return spdlog::level::debug;
}

std::shared_ptr<spdlog::logger> MakeLogger(const char* pName, spdlog::sink_ptr pSink) {
    auto pLogger = std::make_shared<spdlog::logger>(pName, std::move(pSink));
    pLogger->set_level(spdlog::level::trace);
    pLogger->set_pattern(PATTERN);
    // What has happened must be in the file even if the program ends the hard way right after; traces may
    // wait.
    pLogger->flush_on(spdlog::level::info);
    return pLogger;
}

std::string FormatLine(const CLogRecord& rRecord, std::size_t nIndent) {
    const std::size_t Slash = rRecord.m_File.find_last_of('/');
    std::string Line = rRecord.m_Publisher + " " + rRecord.m_LevelName + " ";
    Line += (Slash == std::string::npos) ? rRecord.m_File : rRecord.m_File.substr(Slash + 1);
    Line += "(" + std::to_string(rRecord.m_Line) + ") " + rRecord.m_Function + ": ";
    Line.append(nIndent * INDENT_WIDTH, ' ');
    if (rRecord.m_bAssertion) {
        Line += "Assertion failed: " + rRecord.m_Expression + ": ";
    }
    Line += rRecord.m_Text;
    if (Line.size() > CLogComponent::LONGEST_LINE) {
        Line.resize(CLogComponent::LONGEST_LINE);
        Line += " ...";
    }
    const auto IsControl = [](char Each) { return (Each >= 0 && Each < ' ') || Each == '\x7f'; };
    std::replace_if(Line.begin(), Line.end(), IsControl, ' ');
    return Line;
}

std::string FormatText(const char* pFormat, std::va_list Arguments) {
    std::va_list Again;
    va_copy(Again, Arguments);
    const int nLength = std::vsnprintf(nullptr, 0, pFormat, Arguments);
    std::string Text;
    if (nLength > 0) {
        Text.resize(static_cast<std::size_t>(nLength));
        std::vsnprintf(Text.data(), Text.size() + 1, pFormat, Again);
    }
    va_end(Again);
    return Text;
}

/// Without a debugger the trap signal would end the program, and an assertion must not change the flow.
bool IsDebuggerAttached() {
    std::ifstream Status("/proc/self/status");
    const std::string Name = "TracerPid:";
    for (std::string Line; std::getline(Status, Line);) {
        if (Line.starts_with(Name)) {
            return Line.find_first_of("123456789", Name.size()) != std::string::npos;
        }
    }
    return false;
}

}  // namespace

CLogComponent::CLogComponent(std::string Name, std::initializer_list<CLogTopic> Topics)
    : m_Name(std::move(Name)), m_Topics(Topics) {}

CLogComponent* CLogComponent::Register(const char* pPublisher, std::initializer_list<CLogTopic> Topics) {
    CLogState& rState = GetState();
    const std::lock_guard Lock(rState.m_Mutex);
    for (const auto& rpPublisher : rState.m_Publishers) {
        if (rpPublisher->m_Name == pPublisher) {
            return rpPublisher.get();
        }
    }
    rState.m_Publishers.emplace_back(new CLogComponent(pPublisher, Topics));
    rState.m_Publishers.back()->Apply(rState.m_Choice);
    return rState.m_Publishers.back().get();
}

CLogComponent* CLogComponent::Find(const std::string& rPublisher) {
    CLogState& rState = GetState();
    const std::lock_guard Lock(rState.m_Mutex);
    for (const auto& rpPublisher : rState.m_Publishers) {
        if (rpPublisher->m_Name == rPublisher) {
            return rpPublisher.get();
        }
    }
    return nullptr;
}

std::vector<CLogComponent*> CLogComponent::GetPublishers() {
    CLogState& rState = GetState();
    const std::lock_guard Lock(rState.m_Mutex);
    std::vector<CLogComponent*> Publishers;
    for (const auto& rpPublisher : rState.m_Publishers) {
        Publishers.push_back(rpPublisher.get());
    }
    return Publishers;
}

void CLogComponent::Apply(const CChoice& rChoice) {
    std::uint32_t Level = rChoice.m_Levels;
    for (const CLogTopic& rTopic : m_Topics) {
        const bool bChosen = std::find(rChoice.m_Topics.begin(), rChoice.m_Topics.end(), rTopic.m_pName) !=
                             rChoice.m_Topics.end();
        Level |= bChosen ? rTopic.m_Mask : 0;
    }
    m_Level = Level;
}

void CLogComponent::Choose(CChoice Choice) {
    CLogState& rState = GetState();
    const std::lock_guard Lock(rState.m_Mutex);
    for (const auto& rpPublisher : rState.m_Publishers) {
        rpPublisher->Apply(Choice);
    }
    rState.m_Choice = std::move(Choice);
}

CLogComponent::CChoice CLogComponent::GetChoice() {
    CLogState& rState = GetState();
    const std::lock_guard Lock(rState.m_Mutex);
    return rState.m_Choice;
}

void CLogComponent::Log(const char* pFile, int Line, const char* pFunction, std::uint32_t Mask,
                        const char* pLevelName, const char* pFormat, ...) {
    if ((GetLevel() & Mask) == 0) {
        return;
    }
    std::va_list Arguments;
    va_start(Arguments, pFormat);
    std::string Text = FormatText(pFormat, Arguments);
    va_end(Arguments);
    Publish({m_Name, pFile, Line, pFunction, Mask, pLevelName, std::move(Text), {}, false});
}

void CLogComponent::LogStartBlock(const char* pFile, int Line, const char* pFunction, std::uint32_t Mask,
                                  const char* pLevelName, const char* pHeading) {
    const bool bVisible = (GetLevel() & Mask) != 0;
    if (bVisible) {
        Publish({m_Name, pFile, Line, pFunction, Mask, pLevelName, pHeading, {}, false});
    }
    const std::lock_guard Lock(GetState().m_Mutex);
    m_Blocks.push_back({Mask, bVisible});
}

void CLogComponent::LogEndBlock(std::uint32_t Mask) {
    const std::lock_guard Lock(GetState().m_Mutex);
    const auto Last = std::find_if(m_Blocks.rbegin(), m_Blocks.rend(),
                                   [Mask](const CBlock& rBlock) { return rBlock.m_Mask == Mask; });
    if (Last != m_Blocks.rend()) {
        m_Blocks.erase(std::prev(Last.base()));
    }
}

void CLogComponent::LogAssert(const char* pFile, int Line, const char* pFunction, const char* pExpression,
                              const char* pText, bool bShow) {
    Publish({m_Name, pFile, Line, pFunction, ERROR, "Error", pText, pExpression, true});
    if (bShow) {
        ShowMessageBox(pText, "Error");
    }
    if (GetState().m_bStopOnAssert && IsDebuggerAttached()) {
        std::raise(SIGTRAP);
    }
}

void CLogComponent::SetStopOnAssert(bool bStop) {
    GetState().m_bStopOnAssert = bStop;
}

std::shared_ptr<void> CLogComponent::AddListener(Listener Callback) {
    auto pEntry = std::make_shared<CListenerEntry>(std::move(Callback));
    CLogState& rState = GetState();
    {
        const std::lock_guard Lock(rState.m_Mutex);
        rState.m_Listeners.push_back(pEntry);
    }
    CListenerEntry* const pRaw = pEntry.get();
    return {pRaw, [pEntry = std::move(pEntry)](void*) {
                {
                    CLogState& rOwner = GetState();
                    const std::lock_guard Lock(rOwner.m_Mutex);
                    std::erase(rOwner.m_Listeners, pEntry);
                }
                pEntry->Stop();
            }};
}

bool CLogComponent::OpenFile(const std::string& rDirectory) {
    CLogState& rState = GetState();
    try {
        auto pSink = std::make_shared<spdlog::sinks::rotating_file_sink_mt>(
            Files::ToNative(rDirectory) + "/rotor_trim.log", FILE_SIZE, OLD_FILES);
        auto pLogger = MakeLogger("file", std::move(pSink));
        const std::lock_guard Lock(rState.m_Mutex);
        rState.m_pFile = std::move(pLogger);
        return true;
    } catch (const spdlog::spdlog_ex&) {
        return false;
    }
}

void CLogComponent::SetConsoleMask(std::uint32_t Mask) {
    CLogState& rState = GetState();
    const std::lock_guard Lock(rState.m_Mutex);
    rState.m_ConsoleMask = Mask;
    if ((Mask != 0) && !rState.m_pConsole) {
        rState.m_pConsole = MakeLogger("console", std::make_shared<spdlog::sinks::stderr_sink_mt>());
    }
}

void CLogComponent::Publish(const CLogRecord& rRecord) {
    CLogState& rState = GetState();
    std::vector<std::shared_ptr<CListenerEntry>> Listeners;
    {
        const std::lock_guard Lock(rState.m_Mutex);
        Listeners = rState.m_Listeners;
        const bool bConsole = (rState.m_ConsoleMask & rRecord.m_Mask) != 0;
        if (bConsole || rState.m_pFile) {
            const auto nIndent = std::count_if(m_Blocks.begin(), m_Blocks.end(),
                                               [](const CBlock& rBlock) { return rBlock.m_bVisible; });
            const std::string Line = FormatLine(rRecord, static_cast<std::size_t>(nIndent));
            if (rState.m_pFile) {
                rState.m_pFile->log(ToSpdlogLevel(rRecord.m_Mask), Line);
            }
            if (bConsole) {
                rState.m_pConsole->log(ToSpdlogLevel(rRecord.m_Mask), Line);
            }
        }
    }
    // Not under the lock of the log: a listener may log itself.
    for (const auto& rpListener : Listeners) {
        rpListener->Call(rRecord);
    }
}
