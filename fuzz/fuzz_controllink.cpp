// The control link of a machine, both its ends. The first byte chooses modules and end; then lines, in
// portions as they come from a line. To a machine: each gets an answer that is {"ok": true, ...} or {"error":
// "..."}, whatever it asks, and a request that is refused changes nothing. To whoever asked a machine: each
// question gets one answer.
#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "fuzz/fuzzing.h"
#include "platform/system/linesplitter.h"
#include "platform/system/virtualeventloop.h"
#include "simulator/jsonfields.h"
#include "simulator/machineclient.h"
#include "simulator/simulator.h"

namespace {

using nlohmann::json;
using Bytes = std::span<const std::uint8_t>;

/// Hands the bytes out in portions that they choose themselves.
void PutInPortions(Bytes All, const std::function<void(Bytes)>& rPut) {
    while (!All.empty()) {
        const std::size_t nPortion = std::min<std::size_t>(1U + All[0] % 64U, All.size());
        rPut(All.first(nPortion));
        All = All.subspan(nPortion);
    }
}

void AskMachine(CVirtualEventLoop& rLoop, CRotorFile::Modules Modules, Bytes All) {
    std::string Error;
    CLinkPair Pair = MakeLinkPair();
    const auto pSimulator =
        CSimulator::Create(CRotorFile::GetBuiltIn(Modules), std::move(Pair.m_pSecond), {}, Error);
    pSimulator->Open();
    const json State = {{"state", json::object()}};
    CLineSplitter Lines(
        [&](const std::string& rLine) {
            json Request;
            try {
                Request = ParseJson(rLine, false);
            } catch (const CJsonError& rError) {
                Require(rError.what()[0] != '\0');
                return;
            }
            const json Before = pSimulator->Carry(State);
            const json Answer = pSimulator->Carry(Request);
            const bool bDone = Answer.value("ok", false);
            Require(bDone != Answer.contains("error"));
            Require(bDone || pSimulator->Carry(State) == Before);
            rLoop.Advance(50);
        },
        [] {});
    PutInPortions(All, [&Lines](Bytes Portion) { Lines.Put(Portion); });
    rLoop.Advance(1000);
}

void AnswerConsole(CVirtualEventLoop& rLoop, Bytes All) {
    constexpr int QUESTIONS = 4;
    CLinkPair Pair = MakeLinkPair();
    IFByteLink& rMachine = *Pair.m_pSecond;
    rMachine.Open();
    int nAnswers = 0;
    {
        CMachineClient Client(std::move(Pair.m_pFirst));
        rLoop.Advance(1);
        for (int i = 0; i < QUESTIONS; ++i) {
            Client.Request({{"speed", i}}, [&nAnswers](const json& rAnswer) {
                Require(rAnswer.is_object());
                ++nAnswers;
            });
        }
        PutInPortions(All, [&rMachine, &rLoop](Bytes Portion) {
            rMachine.Write(Portion);
            rLoop.Advance(1);
        });
        rLoop.Advance(2 * CMachineClient::ANSWER_TIMEOUT_MS);
    }
    Require(nAnswers == QUESTIONS);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    if (nSize == 0) {
        return 0;
    }
    CVirtualEventLoop Loop;
    const Bytes Rest = Bytes(pData, nSize).subspan(1);
    if (pData[0] % 4U == 3) {
        AnswerConsole(Loop, Rest);
    } else {
        AskMachine(Loop, static_cast<CRotorFile::Modules>(pData[0] % 4U), Rest);
    }
    return 0;
}
