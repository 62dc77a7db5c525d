#pragma once
#include <gtest/gtest.h>

#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "console/checklink.h"
#include "console/linkcheck.h"
#include "platform/rvldb/gettext.h"
#include "platform/system/virtualeventloop.h"
#include "simulator/simulator.h"
#include "tests/support/checkproblems.h"

/// A line with simulated modules, and what a check says of it.
class CLinkCheckTestBase : public testing::Test {
protected:
    CLinkCheckTestBase() { SetLanguage("en"); }
    ~CLinkCheckTestBase() override { SetLanguage("en"); }

    void Connect(CRotorFile::Modules Family = CRotorFile::eKestrel, std::vector<std::uint8_t> Addresses = {},
                 std::optional<CRotorFile> Rotor = std::nullopt) {
        CLinkPair Pair = MakeLinkPair();
        m_pLink = std::move(Pair.m_pFirst);
        std::string Error;
        m_pSimulator = CSimulator::Create(Rotor.value_or(CRotorFile::GetBuiltIn(Family)),
                                          std::move(Pair.m_pSecond), std::move(Addresses), Error);
        ASSERT_NE(m_pSimulator, nullptr) << Error;
        m_pSimulator->Open();
        m_Loop.RunPosted();
    }
    void Carry(const nlohmann::json& rRequest) {
        EXPECT_EQ(m_pSimulator->Carry(rRequest), nlohmann::json({{"ok", true}}));
    }
    void Turn() {
        Carry({{"speed", 3000}});
        m_Loop.Advance(10000);
    }
    /// Carries a request out when the check has gone on for so long.
    void CarryAfter(std::uint32_t Milliseconds, const nlohmann::json& rRequest) {
        m_Loop.SetTimer(Milliseconds, [this, rRequest](std::uint32_t Id) {
            m_Loop.KillTimer(Id);
            Carry(rRequest);
        });
    }
    /// Bytes from the modules' end that no module sends.
    void SendEvery(std::uint32_t Milliseconds, const std::vector<std::uint8_t>& rFrame) {
        m_Loop.SetTimer(Milliseconds, [this, Bytes = LineDiscipline::Encode(rFrame)](std::uint32_t) {
            m_pSimulator->GetLink().Write(Bytes);
        });
    }
    CCheckReport Check(std::vector<std::uint8_t> Addresses = {}) {
        CLinkFacts Facts;
        Facts.m_Link = "sim";
        CLinkCheck({.m_Addresses = std::move(Addresses)}, [this](std::uint32_t) {
            return std::move(m_pLink);
        }).Run(Facts);
        return MakeLinkReport(Facts);
    }

    CVirtualEventLoop m_Loop;
    std::unique_ptr<IFByteLink> m_pLink;
    std::unique_ptr<CSimulator> m_pSimulator;
};

inline std::vector<std::string> GetNotes(const CCheckReport& rReport) {
    return GetNames(rReport, CFinding::Severity::eNote);
}

inline std::vector<std::string> GetGood(const CCheckReport& rReport) {
    return GetNames(rReport, CFinding::Severity::eOk);
}

inline std::string GetText(const CCheckReport& rReport, const std::string& rName) {
    const CFinding* const pFinding = rReport.Find(rName);
    return pFinding == nullptr ? "" : pFinding->m_Text;
}

inline std::string GetAdvice(const CCheckReport& rReport, const std::string& rName) {
    const CFinding* const pFinding = rReport.Find(rName);
    return pFinding == nullptr ? "" : pFinding->m_Advice;
}
