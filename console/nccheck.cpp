#include "console/nccheck.h"

#include <QProcess>
#include <sstream>

#include "console/ncfacts.h"
#include "platform/rvopc/opclines.h"

using nlohmann::json;

namespace {

/// The gateway gives up after 60 s by itself; a busy machine may load it for long.
constexpr int LIMIT = 180000;

/// Lists of facts; the others are told once.
bool IsMany(const std::string& rName) {
    return rName == "node" || rName == "granted";
}

json Gather(const std::string& rLines) {
    json Told = {{"node", json::array()}, {"granted", json::array()}};
    std::istringstream Stream(rLines);
    for (std::string Text; std::getline(Stream, Text);) {
        const json Line = json::parse(Text, nullptr, false);
        if (!Line.is_object()) {
            continue;
        }
        for (const auto& [rName, rContent] : Line.items()) {
            if (IsMany(rName)) {
                Told[rName].push_back(rContent);
            } else {
                Told[rName] = rContent;
            }
        }
    }
    return Told;
}

/// What the gateway tells of the server. A problem if it can't be asked.
json AskGateway(const std::string& rProgram, const CNcFacts& rFacts, CCheckReport& rReport) {
    // By standard input: arguments can be seen by others, and there is a password in it.
    const json Order = {{"check",
                         {{"connect", json::parse(OpcLines::MakeConnect(rFacts.m_Configuration,
                                                                        rFacts.m_PkiDirectory))["connect"]},
                          {"nodes", ListNcNodes(rFacts.m_Configuration)}}}};
    QProcess Gateway;
    Gateway.start(QString::fromStdString(rProgram), {"--check"});
    Gateway.write(QByteArray::fromStdString(Order.dump() + "\n"));
    Gateway.closeWriteChannel();
    const bool bEnded = Gateway.waitForFinished(LIMIT);
    json Told = Gather(Gateway.readAllStandardOutput().toStdString());
    if (!bEnded || !Told.contains("done")) {
        const QByteArray Words = Gateway.readAllStandardError().trimmed();
        rReport.AddProblem(
            "nc-no-gateway",
            {rProgram, (Words.isEmpty() ? Gateway.errorString().toUtf8() : Words).toStdString()});
        Gateway.kill();
        Gateway.waitForFinished();
    }
    return Told;
}

}  // namespace

CCheckReport CheckNc(const std::filesystem::path& rConfigDirectory, const std::string& rGatewayProgram) {
    const std::string File = (rConfigDirectory / "opc.json").string();
    std::string Error;
    const std::optional<COpcConfiguration> Configuration = COpcSetup::Read(File, Error);
    CCheckReport Report("nc", Configuration ? Configuration->m_Server : File);
    if (!Error.empty()) {
        Report.AddProblem("nc-file-wrong", {Error});
        return Report;
    }
    if (!Configuration) {
        Report.AddProblem("nc-file-missing", {File});
        return Report;
    }
    CNcFacts Facts{*Configuration, (rConfigDirectory / "opcua").string(), {}};
    Report.AddOk("nc-file", {File, std::to_string(Configuration->m_LinkItems.size())});
    Facts.m_Told = AskGateway(rGatewayProgram, Facts, Report);
    Report.GetFacts() = Facts.m_Told;
    AnalyseNc(Facts, Report);
    return Report;
}
