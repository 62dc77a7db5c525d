#pragma once
#include <gmock/gmock.h>

#include <cstdint>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "platform/rvcom/bytelink.h"
#include "platform/rvcom/linediscipline.h"
#include "platform/system/virtualeventloop.h"
#include "simulator/simulator.h"

/// A simulator in this process under virtual time, with a bare line at its other end: what comes is noted
/// with the instant of its coming.
class CSimulatorFixture : public testing::Test {
protected:
    using Bytes = std::vector<std::uint8_t>;
    struct CArrival {
        std::uint64_t m_At = 0;
        Bytes m_Frame;
    };

    /// A rotor without noise that reads 288 and -128 counts, and turns counter-clockwise.
    static CRotorFile MakePlainRotor() {
        CRotorFile File;
        File.m_Rotation = CRotorFile::eCounterClockwise;
        File.m_NoiseCounts = 0.0;
        File.m_Influence = {{{128.0, 0.0}}};
        File.m_Planes[0].m_Unbalance = {2.4622144504490259, 23.962488974578186};  // 2.25 and 1
        return File;
    }

    void Start(const CRotorFile& rFile, std::vector<std::uint8_t> Addresses = {}) {
        auto [pSimulatorEnd, pOurEnd] = MakeLinkPair();
        m_pLink = std::move(pOurEnd);
        m_pLink->OnBytes = [this](std::span<const std::uint8_t> Received) { m_Decoder.Put(Received); };
        m_pLink->Open();
        std::string Error;
        m_pSimulator = CSimulator::Create(rFile, std::move(pSimulatorEnd), std::move(Addresses), Error);
        ASSERT_NE(m_pSimulator, nullptr) << Error;
        m_pSimulator->Open();
        m_Loop.RunPosted();
    }
    /// Commands a speed and waits until it is reached and in lock, then forgets what came.
    void RunUp(double Rpm) {
        ASSERT_EQ(Carry({{"speed", Rpm}}), nlohmann::json({{"ok", true}}));
        m_Loop.Advance(20000);
        m_Arrivals.clear();
    }
    nlohmann::json Carry(const nlohmann::json& rRequest) { return m_pSimulator->Carry(rRequest); }
    void Send(const Bytes& rFrame) { m_pLink->Write(LineDiscipline::Encode(rFrame)); }
    /// Sends a request and returns the answers to address 1 that come within 20 ms.
    std::vector<Bytes> Ask(const Bytes& rFrame) {
        m_Arrivals.clear();
        Send(rFrame);
        m_Loop.Advance(20);
        return GetFrames([](const Bytes& rArrived) { return rArrived[2] != 0; });
    }
    template <typename Predicate>
    std::vector<Bytes> GetFrames(Predicate Wanted) const {
        std::vector<Bytes> Frames;
        for (const CArrival& rArrival : m_Arrivals) {
            if (Wanted(rArrival.m_Frame)) {
                Frames.push_back(rArrival.m_Frame);
            }
        }
        return Frames;
    }
    std::vector<Bytes> GetFramesOf(std::uint8_t Command) const {
        return GetFrames([Command](const Bytes& rFrame) { return rFrame[0] == Command; });
    }
    /// Instants at which frames of a command came.
    std::vector<std::uint64_t> GetInstants(std::uint8_t Command) const {
        std::vector<std::uint64_t> Instants;
        for (const CArrival& rArrival : m_Arrivals) {
            if (rArrival.m_Frame[0] == Command) {
                Instants.push_back(rArrival.m_At);
            }
        }
        return Instants;
    }

    CVirtualEventLoop m_Loop;
    std::unique_ptr<IFByteLink> m_pLink;
    std::unique_ptr<CSimulator> m_pSimulator;
    std::vector<CArrival> m_Arrivals;
    LineDiscipline::CDecoder m_Decoder{[this](std::span<const std::uint8_t> Frame) {
        m_Arrivals.push_back({m_Loop.Now(), {Frame.begin(), Frame.end()}});
    }};
};
