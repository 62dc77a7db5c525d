#pragma once
#include <gtest/gtest.h>
#include <unistd.h>

#include <QProcess>
#include <QTemporaryDir>
#include <deque>
#include <functional>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "console/opcsetup.h"
#include "contract/ncitems.h"
#include "platform/system/eventloop.h"
#include "tests/opcua/children.h"
#include "tests/support/testpaths.h"

/// The NC simulator without a part program: a test writes its items by hand and sees what the module writes.
class CNcServer {
public:
    /// For whatever must come at all: starts of programs, connections, answers; on a busy machine they take
    /// many times as long.
    static constexpr std::uint32_t PATIENCE = 240000;

    CNcServer() {
        m_Process.setProcessChannelMode(QProcess::SeparateChannels);
        EndWithUs(m_Process);
    }
    ~CNcServer() { Kill(); }
    CNcServer(const CNcServer&) = delete;
    CNcServer& operator=(const CNcServer&) = delete;

    /// On a free port the first time, on the same one afterwards. With more arguments, if there are any.
    void Start(const QStringList& rMore = {}) {
        m_Values.clear();
        m_Buffer.clear();
        m_Listening = nullptr;
        m_Process.start(
            QString::fromStdString(TestProgram("nc-simulator")),
            QStringList{"--json", "--port", QString::number(m_Port), "--pki", m_Directory.filePath("nc")} +
                rMore);
        const auto IsListening = [this] {
            Read();
            return !m_Listening.is_null();
        };
        ASSERT_TRUE(RunUntil(IsListening, PATIENCE))
            << m_Process.readAllStandardError().toStdString() << m_Process.state() << m_Buffer;
        m_Port = m_Listening.at("port").get<int>();
    }
    /// As a power failure would.
    void Kill() {
        m_Process.kill();
        m_Process.waitForFinished(PATIENCE);
    }
    /// How the module reaches it.
    COpcSetup GetSetup() const {
        COpcSetup Setup;
        Setup.m_Configuration.m_Server = m_Listening.at("url");
        const nlohmann::json& rItems = m_Listening.at("items");
        Setup.m_Configuration.m_LinkItems = {{NcItems::REQUEST, rItems.at("Request")},
                                             {NcItems::NOTIFICATION, rItems.at("Notification")},
                                             {NcItems::WARNING, rItems.at("Warning")},
                                             {NcItems::TEST_WEIGHT, rItems.at("TestWeight")}};
        Setup.m_PkiDirectory = m_Directory.filePath("pki").toStdString();
        Setup.m_GatewayProgram = TestProgram("opc-gateway");
        return Setup;
    }

    std::string GetUrl() const { return m_Listening.at("url"); }
    /// Node id of one of its items.
    std::string GetItem(const char* pItem) const { return m_Listening.at("items").at(pItem); }

    void Send(const nlohmann::json& rOrder) {
        const std::string Line = rOrder.dump() + "\n";
        m_Process.write(Line.data(), static_cast<qint64>(Line.size()));
        m_Process.waitForBytesWritten(PATIENCE);  // a test may go on without the loop
    }
    void Write(const char* pItem, const nlohmann::json& rValue) {
        Send({{"write", {{"item", pItem}, {"value", rValue}}}});
    }
    /// The next value that the module writes into that item and that was not waited for yet, of those that
    /// are accepted; nothing if none comes in time.
    std::optional<nlohmann::json> NextValue(
        const std::string& rItem,
        const std::function<bool(const nlohmann::json&)>& rAccepts = [](const auto&) { return true; }) {
        std::optional<nlohmann::json> Found;
        RunUntil(
            [&] {
                Read();
                std::deque<nlohmann::json>& rValues = m_Values[rItem];
                while (!rValues.empty() && !Found) {
                    if (rAccepts(rValues.front())) {
                        Found = rValues.front();
                    }
                    rValues.pop_front();
                }
                return Found.has_value();
            },
            PATIENCE);
        return Found;
    }
    /// The module's answer to a request; 99 if it doesn't come.
    int Ask(int Request) {
        Write("Request", Request);
        const auto Answer = NextValue("Request");
        return Answer ? Answer->get<int>() : 99;
    }
    /// Whether the module has written that item since it was last waited for.
    bool HasNews(const std::string& rItem) {
        Read();
        return !m_Values[rItem].empty();
    }

    /// Runs the loop until then, and looks every few ms.
    static bool RunUntil(const std::function<bool()>& rDone, std::uint32_t Timeout) {
        constexpr std::uint32_t LOOK_PERIOD = 10;
        const std::uint32_t Id = IFEventLoop::Current().SetTimer(LOOK_PERIOD, [](std::uint32_t) {});
        const bool bDone = IFEventLoop::Current().RunUntil(rDone, Timeout);
        IFEventLoop::Current().KillTimer(Id);
        return bDone;
    }

private:
    void Read() {
        m_Buffer += m_Process.readAllStandardOutput().toStdString();
        for (std::size_t End = m_Buffer.find('\n'); End != std::string::npos; End = m_Buffer.find('\n')) {
            const nlohmann::json Line = nlohmann::json::parse(m_Buffer.substr(0, End));
            m_Buffer.erase(0, End + 1);
            if (Line.contains("listening")) {
                m_Listening = Line["listening"];
            } else if (Line.contains("changed")) {
                m_Values[Line["changed"]["item"]].push_back(Line["changed"]["value"]);
            }
        }
    }

    QTemporaryDir m_Directory;
    QProcess m_Process;
    int m_Port = 0;
    nlohmann::json m_Listening;
    std::string m_Buffer;
    std::map<std::string, std::deque<nlohmann::json>> m_Values;  ///< not waited for yet, by item
};
