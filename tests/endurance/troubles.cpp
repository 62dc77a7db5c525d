#include "tests/endurance/troubles.h"

#include <array>
#include <chrono>
#include <latch>
#include <limits>

#include "platform/rvopc/inprocessopcserver.h"
#include "platform/system/eventloop.h"
#include "tests/endurance/nchand.h"

using nlohmann::json;

namespace {

struct CKindOfTrouble {
    const char* m_pName;
    bool m_bMayEndRun;
};
constexpr std::array<CKindOfTrouble, CTroubles::eNumberOfKinds> KINDS = {{
    {"frames lost", false},
    {"frames doubled", false},
    {"frames late", false},
    {"frames cut", false},
    {"frames corrupt", false},
    {"line dead for seconds", false},
    {"line dead for good", true},
    {"line closed for seconds", false},
    {"lock lost", false},
    {"answers late", false},
    {"module changes its set", true},
    {"saves fail", true},
    {"store locked", true},
    {"store slow", false},
    {"another console writes", false},
    {"NC lost", true},
    {"NC writes nonsense", false},
    {"page shown and hidden", false},
}};

constexpr const char* FRAME_KINDS[] = {"drop", "double", "delay_ms", "cut", "corrupt"};
constexpr std::uint32_t LATE = 600;
/// Within this time a run of one plane is over.
constexpr std::uint32_t WITHIN = 30000;

void Fault(CSimulator& rSimulator, const json& rFault) {
    rSimulator.Carry({{"fault", rFault}});
}

}  // namespace

const char* CTroubles::GetName(Kind What) {
    return KINDS.at(What).m_pName;
}

bool CTroubles::MayEndRun(Kind What) {
    return KINDS.at(What).m_bMayEndRun;
}

CTroubles::CTroubles(CConsoleSession& rSession, std::string Connection, CChance& rChance)
    : m_rSession(rSession), m_Connection(std::move(Connection)), m_rChance(rChance) {}

CTroubles::~CTroubles() {
    End();
}

void CTroubles::Later(std::uint32_t Milliseconds, std::function<void()> What) {
    m_Timers.insert(
        IFEventLoop::Current().SetTimer(Milliseconds + 1, [this, What = std::move(What)](std::uint32_t Id) {
            IFEventLoop::Current().KillTimer(Id);
            m_Timers.erase(Id);
            What();
        }));
}

void CTroubles::Happen(Kind What, const std::string& rHow) {
    m_Happened.insert(What);
    m_History += "  " + std::to_string(IFEventLoop::Current().Now() - m_Begin) + " ms: " + GetName(What) +
                 " " + rHow + "\n";
}

std::string CTroubles::StrikeFrames(CSimulator& rSimulator, Kind What, CChance& rChance) {
    json Rule = {{"kind", FRAME_KINDS[What]}, {"next", 1 + rChance.Draw(6)}};
    if (What == eFramesLate) {
        Rule["value"] = LATE;
    }
    constexpr std::array FRAMES = {"answers", "indications", "requests"};
    if (rChance.Happens(0.6)) {
        Rule["only"] = rChance.Pick(FRAMES);
    }
    Fault(rSimulator, Rule);
    return Rule.dump();
}

CTroubles::Kind CTroubles::StrikeLine(CSimulator& rSimulator, CChance& rChance, std::string& rHow) {
    constexpr std::array SPELLS = {std::pair{eSilence, "silence_ms"}, std::pair{eLineCut, "cut_ms"},
                                   std::pair{eUnlock, "unlock_ms"}};
    if (rChance.Happens(0.6)) {
        const auto What = static_cast<Kind>(rChance.Draw(eFramesCorrupt + 1));
        rHow = StrikeFrames(rSimulator, What, rChance);
        return What;
    }
    const auto& [What, pKind] = rChance.Pick(SPELLS);
    const std::size_t Time = 500 + rChance.Draw(8000);
    rHow = std::to_string(Time) + " ms";
    Fault(rSimulator, {{"kind", pKind}, {"value", Time}});
    return What;
}

void CTroubles::DrawFrames() {
    for (std::size_t nLeft = m_rChance.Draw(4); nLeft > 0; --nLeft) {
        const auto What = static_cast<Kind>(m_rChance.Draw(eFramesCorrupt + 1));
        Later(static_cast<std::uint32_t>(m_rChance.Draw(WITHIN)),
              [this, What] { Happen(What, StrikeFrames(GetSimulator(), What, m_rChance)); });
    }
}

void CTroubles::DrawLine() {
    const auto When = static_cast<std::uint32_t>(m_rChance.Draw(WITHIN));
    const auto Time = static_cast<std::uint32_t>(500 + m_rChance.Draw(8000));
    const auto Spell = [this](Kind What, const char* pKind, std::uint32_t Value) {
        Fault(GetSimulator(), {{"kind", pKind}, {"value", Value}});
        Happen(What, std::to_string(Value) + " ms");
    };
    switch (m_rChance.Draw(24)) {
        case 0:
        case 1:
        case 2:
            return Later(When, [Spell, Time] { Spell(eSilence, "silence_ms", Time); });
        case 3:
            return Later(When, [Spell] { Spell(eDeadLine, "silence_ms", 3600000); });
        case 4:
        case 5:
            return Later(When, [Spell, Time] { Spell(eLineCut, "cut_ms", Time); });
        case 6:
        case 7:
            return Later(When, [Spell, Time] { Spell(eUnlock, "unlock_ms", Time); });
        case 8:
        case 9:
            return Later(When, [this, Time] {
                const json Delay = {{"value", Time % 1500}, {"overtaken", true}};
                GetSimulator().Carry({{"answer_delay", Delay}});
                Happen(eLateAnswers, std::to_string(Time % 1500) + " ms");
            });
        case 10:
            return Later(When, [this] {
                GetSimulator().Carry({{"set", {{"number", 2}}}});
                Happen(eOtherSet, "");
            });
        case 11:
        case 12:
        case 13:
            return Later(When, [this] {
                for (const bool bShown : {true, false}) {
                    Later(bShown ? 0 : 900, [this, bShown] { m_rSession.GetHost().ShowWindow(bShown); });
                }
                Happen(eShownAndHidden, "");
            });
        default:
            return;
    }
}

void CTroubles::LockStore(std::uint32_t RealMilliseconds) {
    auto pStarted = std::make_shared<std::latch>(1);
    m_SlowHolder = std::thread([Connection = m_Connection, RealMilliseconds, pStarted] {
        {
            PreBalDB::CDirectSQL Other(Connection);
            const PreBalDB::CTransaction Holder(Other, PreBalDB::CTransaction::eWriting);
            pStarted->count_down();
            std::this_thread::sleep_for(std::chrono::milliseconds(RealMilliseconds));
        }
    });
    pStarted->wait();
}

void CTroubles::DrawStore() {
    // Most of a store's troubles are those of its saves, at the end of a run.
    const auto When = static_cast<std::uint32_t>(m_rChance.Draw(WITHIN));
    switch (m_rChance.Draw(80)) {
        case 0:
        case 1:
        case 2:
        case 3:
        case 4:
            return Later(When, [this] {
                m_pOther = std::make_unique<PreBalDB::CDirectSQL>(m_Connection);
                m_pOther->Execute(
                    "CREATE TRIGGER sabotage BEFORE UPDATE ON configuration BEGIN SELECT RAISE(ABORT, 'disk "
                    "trouble'); END");
                m_bSabotaged = true;
                Happen(eSaveFails, "");
            });
        case 5:
            return Later(When, [this] {
                m_pOther = std::make_unique<PreBalDB::CDirectSQL>(m_Connection);
                m_pHolder =
                    std::make_unique<PreBalDB::CTransaction>(*m_pOther, PreBalDB::CTransaction::eWriting);
                Happen(eStoreLocked, "");
            });
        case 6:
        case 7:
        case 8:
        case 9:
            return Later(When, [this] {
                constexpr std::uint32_t SOON = 100;
                LockStore(SOON);
                Happen(eStoreSlow, std::to_string(SOON) + " ms of real time");
            });
        case 10:
        case 11:
        case 12:
        case 13:
        case 14:
        case 15:
            return Later(When, [this] {
                PreBalDB::CDirectSQL(m_Connection)
                    .Execute("UPDATE configuration SET target_unbalance = ?, revision = revision + 1",
                             {static_cast<std::int64_t>(4 + m_rChance.Draw(5))});
                Happen(eOtherWriter, "");
                OnStoreChanged();
            });
        default:
            return;
    }
}

void CTroubles::LoseNc(bool bLost) {
    m_bNcLost = bLost;
    for (const char* const pItem : {CNcHand::REQUEST, "notification", "warning"}) {
        CNcHand::GetServer().SetFailing(pItem, bLost);
    }
}

void CTroubles::WriteNonsense() {
    const std::array Values = {
        COpcValue(std::string("please go on")),
        COpcValue(2.5),
        COpcValue(std::int32_t{77}),
        COpcValue(std::numeric_limits<std::int32_t>::min()),
        COpcValue(std::vector<std::int32_t>(10000, 3)),
        COpcValue(std::string(100000, 'x')),
        COpcValue(std::int32_t{1}),  // another run, in the middle of one
    };
    const std::size_t nValue = m_rChance.Draw(Values.size());
    CNcHand::GetServer().Write(CNcHand::REQUEST, Values[nValue]);
    Happen(eNcNonsense, "value " + std::to_string(nValue));
}

void CTroubles::DrawNc() {
    const auto When = static_cast<std::uint32_t>(m_rChance.Draw(WITHIN));
    switch (m_rChance.Draw(4)) {
        case 0: {
            const auto Time = static_cast<std::uint32_t>(200 + m_rChance.Draw(10000));
            Later(When, [this, Time] {
                LoseNc(true);
                Happen(eNcLost, std::to_string(Time) + " ms");
                Later(Time, [this] { LoseNc(false); });
            });
            return;
        }
        case 1:
            return Later(When, [this] { WriteNonsense(); });
        default:
            return;
    }
}

void CTroubles::Begin(bool bNc) {
    m_Happened.clear();
    m_History.clear();
    m_Begin = IFEventLoop::Current().Now();
    DrawFrames();
    DrawLine();
    DrawStore();
    if (bNc) {
        DrawNc();
    }
}

void CTroubles::End() {
    for (const std::uint32_t Id : m_Timers) {
        IFEventLoop::Current().KillTimer(Id);
    }
    m_Timers.clear();
    for (const char* const pKind : FRAME_KINDS) {
        json Rule = {{"kind", pKind}, {"next", 0}};
        if (pKind == FRAME_KINDS[eFramesLate]) {
            Rule["value"] = 0;
        }
        Fault(GetSimulator(), Rule);
    }
    Fault(GetSimulator(), {{"kind", "silence_ms"}, {"value", 0}});
    if (m_Happened.contains(eLineCut)) {
        Fault(GetSimulator(), {{"kind", "cut_ms"}, {"value", 0}});
    }
    if (m_Happened.contains(eLateAnswers)) {
        GetSimulator().Carry({{"answer_delay", {{"value", 0}, {"overtaken", false}}}});
    }
    if (m_bNcLost) {
        LoseNc(false);
    }
    m_pHolder.reset();
    if (std::exchange(m_bSabotaged, false)) {
        m_pOther->Execute("DROP TRIGGER sabotage");
    }
    m_pOther.reset();
    if (m_SlowHolder.joinable()) {
        m_SlowHolder.join();
    }
}
