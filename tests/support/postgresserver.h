#pragma once
#include <gtest/gtest.h>
#include <signal.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "platform/rvmdb/directsql.h"
#include "platform/rvmdb/prebaldatabase.h"

/// The server that tools/with_postgresql.sh runs for tests. Whatever is done to it is undone at the end.
class CPostgresServer {
public:
    CPostgresServer() = default;
    ~CPostgresServer() {
        Thaw();
        Start();
    }
    CPostgresServer(const CPostgresServer&) = delete;
    CPostgresServer& operator=(const CPostgresServer&) = delete;

    static std::string GetUrl() { return std::getenv("ROTOR_TRIM_TEST_POSTGRESQL"); }
    /// Where certificates and data lie.
    static std::string GetDirectory() { return std::getenv("ROTOR_TRIM_TEST_POSTGRESQL_DIR"); }
    static int GetPort() {
        const std::string Url = GetUrl();
        const std::size_t Colon = Url.rfind(':');
        return std::stoi(Url.substr(Colon + 1));
    }

    void Stop() {
        std::ofstream(GetDownFile()) << "";
        m_bDown = true;
        const pid_t Postmaster = GetPostmaster();
        // Without waiting for those who are connected.
        ASSERT_EQ(kill(Postmaster, SIGINT), 0);
        ASSERT_TRUE(WaitFor([] { return !std::filesystem::exists(GetPidFile()); }));
    }
    void Start() {
        if (!m_bDown) {
            return;
        }
        std::filesystem::remove(GetDownFile());
        ASSERT_TRUE(WaitFor([] {
            try {
                PreBalDB::CDirectSQL(GetUrl()).Query("SELECT 1");
                return true;
            } catch (const std::runtime_error&) {
                return false;
            }
        }));
        m_bDown = false;
    }
    void Restart() {
        Stop();
        Start();
    }
    /// All its processes stand still.
    void Freeze() {
        m_Frozen = {GetPostmaster()};
        kill(m_Frozen[0], SIGSTOP);
        for (const pid_t Child : GetChildren(m_Frozen[0])) {
            kill(Child, SIGSTOP);
            m_Frozen.push_back(Child);
        }
    }
    void Thaw() {
        for (const pid_t Process : m_Frozen) {
            kill(Process, SIGCONT);
        }
        m_Frozen.clear();
    }

    /// In real time: another program is waited for.
    template <typename Condition>
    static bool WaitFor(Condition IsReached, std::chrono::seconds Limit = std::chrono::seconds(30)) {
        const auto End = std::chrono::steady_clock::now() + Limit;
        while (!IsReached()) {
            if (std::chrono::steady_clock::now() > End) {
                return false;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
        return true;
    }

private:
    static std::string GetDownFile() { return GetDirectory() + "/down"; }
    static std::string GetPidFile() { return GetDirectory() + "/data/postmaster.pid"; }
    static pid_t GetPostmaster() {
        pid_t Postmaster = 0;
        std::ifstream(GetPidFile()) >> Postmaster;
        return Postmaster;
    }
    static std::vector<pid_t> GetChildren(pid_t Parent) {
        const std::string Number = std::to_string(Parent);
        std::ifstream In("/proc/" + Number + "/task/" + Number + "/children");
        std::vector<pid_t> Children;
        for (pid_t Child = 0; In >> Child;) {
            Children.push_back(Child);
        }
        return Children;
    }

    bool m_bDown = false;
    std::vector<pid_t> m_Frozen;
};
