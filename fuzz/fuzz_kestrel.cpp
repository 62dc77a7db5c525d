// Arbitrary frames into the plane handler with two Kestrel modules, while queries are open and callbacks ask
// on.
//
// Input: records of a length byte and as many bytes of a frame. Length 0 is followed by an order byte
// instead: its low three bits choose a query, the others let time pass in steps of 100 ms.
#include <algorithm>
#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "fuzz/fuzzing.h"
#include "platform/system/virtualeventloop.h"
#include "platform/window/messagebox.h"
#include "rvdlm/m_rtr/rtr_trim/communication/iffromcommunication.h"
#include "rvdlm/m_rtr/rtr_trim/communication/planehandler.h"

namespace {

using Query = int (IFToCommunication::*)();
constexpr std::array<Query, 5> Queries{&IFToCommunication::QueryModuleIdentification,
                                       &IFToCommunication::QueryActiveSet,
                                       &IFToCommunication::QueryModuleState, &IFToCommunication::QueryRPMData,
                                       &IFToCommunication::QueryUnbalanceXYValues};

/// Reads everything that it is given, and asks on from within the callbacks.
class CWindow : public IFFromCommunication {
public:
    void SendRawData(const std::uint8_t* pData, std::uint32_t nSize) override { Read(pData, nSize); }
    void OnQueryModuleIdentification(Reason Why, const std::string* pArticle,
                                     const std::uint32_t* pSerial) override {
        Require((pArticle == nullptr) == (pSerial == nullptr));
        Require(Why == Comm::eSuccess || pArticle == nullptr);
        AskOn(1);
    }
    void OnSetRequest(Reason /*Why*/, const CSet* pSet) override {
        Require(pSet != nullptr);  // failures take another road
        AskOn(2);
    }
    void OnModuleState(Reason Why, const std::uint32_t* pUILocked, const std::uint32_t*, const std::uint32_t*,
                       const std::uint32_t*, const std::uint32_t*,
                       const std::uint32_t* pWrongState) override {
        Require(Why == Comm::eSuccess || Why == Comm::eIndication);
        Require(*pUILocked <= 1 && *pWrongState <= 1);
        AskOn(3);
    }
    void OnRPMData(Reason Why, const std::uint32_t* pPlane, const std::uint32_t* pRPM) override {
        Require(*pPlane <= 1);
        Require((pRPM != nullptr) == (Why == Comm::eSuccess || Why == Comm::eIndication));
        Require(pRPM == nullptr || *pRPM <= 0xFFFF);
        AskOn(4);
    }
    void OnUnbalanceXYValues(Reason, const std::uint32_t* pPlane, const std::uint32_t* pX,
                             const std::uint32_t* pY) override {
        Require(*pPlane <= 1);
        Require((pX == nullptr) == (pY == nullptr));
        Require(pX == nullptr || (*pX <= 0xFFFF && *pY <= 0xFFFF));
        AskOn(3);
    }

    IFToCommunication* m_pModule = nullptr;
    bool m_bAskOn = true;

private:
    void AskOn(std::size_t nQuery) {
        if (m_bAskOn) {
            (m_pModule->*Queries[nQuery])();
        }
    }
    static void Read(const std::uint8_t* pData, std::uint32_t nSize) {
        volatile std::uint8_t Sum = 0;
        for (const std::uint8_t Byte : std::span(pData, nSize)) {
            Sum = static_cast<std::uint8_t>(Sum + Byte);
        }
    }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    OpenAllTopics();
    CVirtualEventLoop Loop;
    CWindow Window;
    CPlaneHandler Handler(&Window, 5, 6);
    Window.m_pModule = &Handler;
    for (const Query pQuery : Queries) {
        (Handler.*pQuery)();
    }

    std::span Rest(pData, nSize);
    while (!Rest.empty()) {
        const std::size_t nLength = std::min<std::size_t>(Rest[0], Rest.size() - 1);
        const bool bOrder = Rest[0] == 0;
        Rest = Rest.subspan(1);
        if (bOrder) {
            if (!Rest.empty()) {
                const unsigned nOrder = Rest[0] & 7U;
                if (nOrder < Queries.size()) {
                    (Handler.*Queries[nOrder])();
                }
                Loop.Advance((Rest[0] >> 3U) * 100U);
                Rest = Rest.subspan(1);
            }
            continue;
        }
        // A buffer of its own, so that a read beyond the frame is found.
        const std::vector<std::uint8_t> Frame(Rest.begin(),
                                              Rest.begin() + static_cast<std::ptrdiff_t>(nLength));
        Handler.PutReceivedModuleData(Frame.data(), static_cast<std::uint32_t>(Frame.size()));
        Rest = Rest.subspan(nLength);
    }

    // Whatever came, no machine may be left waiting.
    Window.m_bAskOn = false;
    Loop.Advance(2000);
    for (const Query pQuery : Queries) {
        Require((Handler.*pQuery)() != 0);
        Loop.Advance(2000);
    }
    Require(Loop.GetTimerCount() == 0);
    TakeShownMessages();
    return 0;
}
