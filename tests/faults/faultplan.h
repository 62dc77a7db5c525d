#pragma once
#include <fcntl.h>
#include <limits.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "tests/faults/diskplan.h"

/// What becomes of a call.
enum class Fault : std::uint8_t { eNone, eHalf, eFull, eError };

/// What the environment asks for; read once, before the program's own code.
class CFaultPlan {
public:
    CFaultPlan() {
        const char* const pFolder = std::getenv(DiskPlan::FOLDER);
        const char* const pKind = std::getenv(DiskPlan::KIND);
        if (pFolder == nullptr || pKind == nullptr) {
            return;
        }
        m_nFolder = std::strlen(pFolder);
        if (m_nFolder == 0 || m_nFolder >= sizeof m_Folder) {
            return;
        }
        std::memcpy(m_Folder, pFolder, m_nFolder + 1);
        std::snprintf(m_Kind, sizeof m_Kind, "%s", pKind);
        m_At = ReadNumber(DiskPlan::AT, 0);
        m_nFaults = ReadNumber(DiskPlan::FAULTS, ULONG_MAX);
        m_Port = static_cast<unsigned short>(ReadNumber(DiskPlan::PORT, 0));
        m_Victim = static_cast<pid_t>(ReadNumber(DiskPlan::VICTIM, 0));
        if (const char* const pTrace = std::getenv(DiskPlan::TRACE)) {
            m_Trace = static_cast<int>(
                ::syscall(SYS_openat, AT_FDCWD, pTrace, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600));
        }
        m_bInUse = true;
    }

    bool IsInUse() const { return m_bInUse; }
    bool IsUnderFolder(const char* pPath) const {
        return std::strncmp(pPath, m_Folder, m_nFolder) == 0 && pPath[m_nFolder] == '/';
    }
    unsigned short GetPort() const { return m_Port; }

    /// A call has come. Ends the program if it is to; else what becomes of the call.
    Fault Meet(const char* pCall, const char* pPath, bool bTakesRoom) {
        const unsigned long Number = ++m_nCalls;
        const bool bStruck = m_At != 0 && Number >= m_At && Number - m_At < m_nFaults;
        const bool bFull = Is(DiskPlan::FULL);
        const bool bActs = bStruck && !(bFull && !bTakesRoom);
        Note(Number, pCall, pPath, bActs);
        if (!bActs) {
            return Fault::eNone;
        }
        if (Is(DiskPlan::KILL)) {
            Die();
        }
        if (Is(DiskPlan::SERVER)) {
            if (Number == m_At) {
                ::kill(m_Victim, SIGQUIT);
            }
            return Fault::eNone;
        }
        if (Is(DiskPlan::TORN) || Is(DiskPlan::SHORT)) {
            return Fault::eHalf;
        }
        return bFull ? Fault::eFull : Is(DiskPlan::ERROR) ? Fault::eError : Fault::eNone;
    }
    /// After half of a write: the whole program ends, or only this write was short.
    void EndTorn() const {
        if (Is(DiskPlan::TORN)) {
            Die();
        }
    }
    /// A call that has no half: a torn one ends before it.
    void EndTornBefore(Fault What) const {
        if (What == Fault::eHalf) {
            EndTorn();
        }
    }

private:
    static unsigned long ReadNumber(const char* pName, unsigned long Otherwise) {
        const char* const pText = std::getenv(pName);
        return pText == nullptr ? Otherwise : std::strtoul(pText, nullptr, 10);
    }
    bool Is(const char* pKind) const { return std::strcmp(m_Kind, pKind) == 0; }
    static void Die() {
        ::kill(::getpid(), SIGKILL);
        while (true) {
            ::pause();
        }
    }
    void Note(unsigned long Number, const char* pCall, const char* pPath, bool bActs) const {
        if (m_Trace < 0) {
            return;
        }
        char Line[PATH_MAX + 64];
        const int nLength =
            std::snprintf(Line, sizeof Line, "%lu %s %s%s\n", Number, pCall, pPath, bActs ? " !" : "");
        ::syscall(SYS_write, m_Trace, Line, static_cast<std::size_t>(nLength));
    }

    bool m_bInUse = false;
    char m_Folder[PATH_MAX] = {};
    std::size_t m_nFolder = 0;
    char m_Kind[16] = {};
    unsigned long m_At = 0;
    unsigned long m_nFaults = 0;
    unsigned short m_Port = 0;
    pid_t m_Victim = 0;
    int m_Trace = -1;
    std::atomic<unsigned long> m_nCalls = 0;
};
