#pragma once
// What the targets of the mappers share: arbitrary frames, while queries are open and callbacks ask on.
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
#include "rvdlm/m_rtr/rtr_trim/communication/iftocommunication.h"

using Query = int (IFToCommunication::*)();
constexpr std::array<Query, 5> QUERIES{&IFToCommunication::QueryModuleIdentification,
                                       &IFToCommunication::QueryActiveSet,
                                       &IFToCommunication::QueryModuleState, &IFToCommunication::QueryRPMData,
                                       &IFToCommunication::QueryUnbalanceXYValues};

/// Reads everything that it is given, and asks on from within the callbacks. Holds what both families
/// promise; the derived windows add their own's promises.
class CFuzzWindow : public IFFromCommunication {
public:
    void SendRawData(const std::uint8_t* pData, std::uint32_t nSize) override {
        volatile std::uint8_t Sum = 0;
        for (const std::uint8_t Byte : std::span(pData, nSize)) {
            Sum = static_cast<std::uint8_t>(Sum + Byte);
        }
    }
    void OnQueryModuleIdentification(Reason Why, const std::string* pArticle,
                                     const std::uint32_t* pSerial) override {
        Require((pArticle == nullptr) == (pSerial == nullptr));
        Require(Why == Comm::eSuccess || pArticle == nullptr);
        AskOn(1);
    }
    void OnSetRequest(Reason Why, const CSet* pSet) override {
        Require((pSet != nullptr) == HasValues(Why));
        AskOn(2);
    }
    void OnModuleState(Reason Why, const std::uint32_t* pUILocked, const std::uint32_t* pOutOfLockPlane1,
                       const std::uint32_t* pInvalidRPMPlane1, const std::uint32_t* pOutOfLockPlane2,
                       const std::uint32_t* pInvalidRPMPlane2, const std::uint32_t* pWrongState) override {
        for (const std::uint32_t* const pFlag : {pUILocked, pOutOfLockPlane1, pInvalidRPMPlane1,
                                                 pOutOfLockPlane2, pInvalidRPMPlane2, pWrongState}) {
            Require((pFlag != nullptr) == HasValues(Why));
            Require(pFlag == nullptr || *pFlag <= 1);
        }
        AskOn(3);
    }
    void OnRPMData(Reason Why, const std::uint32_t* pPlane, const std::uint32_t* pRPM) override {
        Require(pPlane == nullptr || *pPlane <= 1);
        Require((pRPM != nullptr) == HasValues(Why));
        Require(pRPM == nullptr || (pPlane != nullptr && *pRPM <= 0xFFFF));
        AskOn(4);
    }
    void OnUnbalanceXYValues(Reason Why, const std::uint32_t* pPlane, const std::uint32_t* pX,
                             const std::uint32_t* pY) override {
        Require(pPlane == nullptr || *pPlane <= 1);
        Require((pX != nullptr) == HasValues(Why) && (pX == nullptr) == (pY == nullptr));
        Require(pX == nullptr || (pPlane != nullptr && *pX <= 0xFFFF && *pY <= 0xFFFF));
        AskOn(3);
    }

    IFToCommunication* m_pModule = nullptr;
    bool m_bAskOn = true;

protected:
    static bool HasValues(Reason Why) { return Why == Comm::eSuccess || Why == Comm::eIndication; }

private:
    void AskOn(std::size_t nQuery) {
        if (m_bAskOn) {
            (m_pModule->*QUERIES[nQuery])();
        }
    }
};

/// Plays the input to the module. Whatever came, no machine may be left waiting.
inline void Converse(CVirtualEventLoop& rLoop, CFuzzWindow& rWindow, IFToCommunication& rModule,
                     std::span<const std::uint8_t> Rest) {
    rWindow.m_pModule = &rModule;
    for (const Query pQuery : QUERIES) {
        (rModule.*pQuery)();
    }
    while (!Rest.empty()) {
        const std::size_t nLength = std::min<std::size_t>(Rest[0], Rest.size() - 1);
        const bool bOrder = Rest[0] == 0;
        Rest = Rest.subspan(1);
        if (bOrder) {
            if (!Rest.empty()) {
                const unsigned nOrder = Rest[0] & 7U;
                if (nOrder < QUERIES.size()) {
                    (rModule.*QUERIES[nOrder])();
                }
                rLoop.Advance((Rest[0] >> 3U) * 100U);
                Rest = Rest.subspan(1);
            }
            continue;
        }
        // A buffer of its own, so that a read beyond the frame is found.
        const std::vector<std::uint8_t> Frame(Rest.begin(),
                                              Rest.begin() + static_cast<std::ptrdiff_t>(nLength));
        rModule.PutReceivedModuleData(Frame.data(), static_cast<std::uint32_t>(Frame.size()));
        Rest = Rest.subspan(nLength);
    }

    rWindow.m_bAskOn = false;
    rLoop.Advance(2000);
    for (const Query pQuery : QUERIES) {
        Require((rModule.*pQuery)() != 0);
        rLoop.Advance(2000);
    }
    Require(rLoop.GetTimerCount() == 0);
    TakeShownMessages();
}
