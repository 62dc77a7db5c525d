#pragma once
#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

/// The way to a database server on this computer, which can be lost: all at once, or just behind a COMMIT
/// that has arrived, so that its sender never learns. What travels must not be encrypted.
class CCuttingProxy {
public:
    explicit CCuttingProxy(int ServerPort) : m_ServerPort(ServerPort) {
        m_Listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_in Address = MakeAddress(0);
        auto* const pAddress = reinterpret_cast<sockaddr*>(&Address);
        socklen_t nSize = sizeof Address;
        bind(m_Listener, pAddress, nSize);
        listen(m_Listener, 16);
        getsockname(m_Listener, pAddress, &nSize);
        m_Port = ntohs(Address.sin_port);
        m_Thread = std::thread([this] { Work(); });
    }
    ~CCuttingProxy() {
        m_bEnd = true;
        m_Thread.join();
        close(m_Listener);
    }
    CCuttingProxy(const CCuttingProxy&) = delete;
    CCuttingProxy& operator=(const CCuttingProxy&) = delete;

    int GetPort() const { return m_Port; }
    /// No way any more, neither for those who are connected.
    void SetDown(bool bDown) { m_bDown = bDown; }
    /// The next COMMIT reaches the server, and its answer goes nowhere. bDown: nor anything after it.
    void CutNextCommit(bool bDown) {
        m_bDownAfterCut = bDown;
        m_bCut = true;
    }
    /// The next COMMIT doesn't even reach the server.
    void CutBeforeNextCommit() { m_bCutBefore = true; }
    bool IsCutDone() const { return !m_bCut && !m_bCutBefore; }

private:
    struct CPair {
        int m_Client = -1;
        int m_Server = -1;
        bool m_bCutAtAnswer = false;
        bool m_bGone = false;
    };

    static sockaddr_in MakeAddress(int Port) {
        sockaddr_in Address{};
        Address.sin_family = AF_INET;
        Address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        Address.sin_port = htons(static_cast<std::uint16_t>(Port));
        return Address;
    }
    void Accept() {
        const int Client = accept4(m_Listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (Client < 0 || m_bDown) {
            close(Client);
            return;
        }
        const int Server = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        const sockaddr_in Address = MakeAddress(m_ServerPort);
        if (connect(Server, reinterpret_cast<const sockaddr*>(&Address), sizeof Address) != 0) {
            close(Client);
            close(Server);
            return;
        }
        m_Pairs.push_back({Client, Server});
    }
    /// Whether the way stays.
    bool Forward(CPair& rPair, bool bFromClient) {
        std::array<char, 65536> Bytes{};
        const ssize_t nRead = read(bFromClient ? rPair.m_Client : rPair.m_Server, Bytes.data(), Bytes.size());
        if (nRead <= 0) {
            return false;
        }
        const std::string_view Text(Bytes.data(), static_cast<std::size_t>(nRead));
        const bool bCommit = bFromClient && Text.find("COMMIT") != std::string_view::npos;
        if (bCommit && m_bCutBefore.exchange(false)) {
            return false;
        }
        if (bCommit && m_bCut) {
            rPair.m_bCutAtAnswer = true;
        }
        if (!bFromClient && rPair.m_bCutAtAnswer) {
            m_bDown = m_bDownAfterCut.load();
            m_bCut = false;
            return false;
        }
        return write(bFromClient ? rPair.m_Server : rPair.m_Client, Bytes.data(),
                     static_cast<std::size_t>(nRead)) == nRead;
    }
    void Work() {
        while (!m_bEnd) {
            std::vector<pollfd> Polls = {{m_Listener, POLLIN, 0}};
            for (const CPair& rPair : m_Pairs) {
                Polls.push_back({rPair.m_Client, POLLIN, 0});
                Polls.push_back({rPair.m_Server, POLLIN, 0});
            }
            const std::size_t nPairs = m_Pairs.size();
            poll(Polls.data(), Polls.size(), 10);
            for (std::size_t i = 0; i < nPairs; ++i) {
                CPair& rPair = m_Pairs[i];
                const bool bClient = Polls[1 + 2 * i].revents != 0;
                const bool bServer = Polls[2 + 2 * i].revents != 0;
                rPair.m_bGone =
                    m_bDown || (bClient && !Forward(rPair, true)) || (bServer && !Forward(rPair, false));
            }
            std::erase_if(m_Pairs, [](const CPair& rPair) {
                if (rPair.m_bGone) {
                    close(rPair.m_Client);
                    close(rPair.m_Server);
                }
                return rPair.m_bGone;
            });
            if (Polls[0].revents != 0) {
                Accept();
            }
        }
        for (const CPair& rPair : m_Pairs) {
            close(rPair.m_Client);
            close(rPair.m_Server);
        }
    }

    int m_ServerPort;
    int m_Listener = -1;
    int m_Port = 0;
    std::atomic<bool> m_bEnd = false;
    std::atomic<bool> m_bDown = false;
    std::atomic<bool> m_bCut = false;
    std::atomic<bool> m_bCutBefore = false;
    std::atomic<bool> m_bDownAfterCut = false;
    std::vector<CPair> m_Pairs;
    std::thread m_Thread;
};
