#pragma once
#include <cstdint>
#include <span>
#include <vector>

#include "simulator/faults.h"
#include "simulator/timer.h"

class CRotor;
class CSpindle;
class CTransmitter;

/// What all balancing modules have in common, whatever their frames look like: an address on the line, an
/// active set, a state, and the times at which they report by themselves. A family derives and supplies the
/// frames.
///
/// While the spindle turns a module reports X/Y at 20 Hz and the speed at 10 Hz. When it comes to rest it
/// reports the speed at once, and then every second, so that a lost report of 0 rpm doesn't leave the
/// receiver believing that the spindle still turns. State and set are reported whenever they change.
class CBalancingModule {
public:
    static constexpr std::uint32_t eXYPeriodMs = 50;
    static constexpr std::uint32_t eRpmEveryNthXY = 2;
    static constexpr std::uint32_t eStandingPeriodMs = 1000;

    /// What a module is wired to. All must outlive it.
    struct CWiring {
        const CRotor& m_rRotor;
        const CSpindle& m_rSpindle;
        CTransmitter& m_rTransmitter;
    };
    struct CSet {
        std::uint8_t m_Number = 1;
        std::uint8_t m_RPMFactor = 1;
        std::uint8_t m_SensorAdaption = 1;
        bool operator==(const CSet&) const = default;
    };
    struct CState {
        std::uint8_t m_State = 0;
        std::uint8_t m_Parameter = 0;
        bool m_bUILocked = false;
        bool operator==(const CState&) const = default;
    };

    CBalancingModule(const CWiring& rWiring, std::uint8_t Address, const CState& rState);
    virtual ~CBalancingModule() = default;
    CBalancingModule(const CBalancingModule&) = delete;
    CBalancingModule& operator=(const CBalancingModule&) = delete;

    /// Takes every frame on the line. Frames for other addresses and unknown requests are passed over in
    /// silence.
    void PutFrame(std::span<const std::uint8_t> Frame);
    /// The spindle was commanded, has reached its speed, or is in lock again.
    void SpindleChanged();

    void ChangeSet(const CSet& rSet);
    const CSet& GetSet() const { return m_Set; }
    void ChangeState(const CState& rState);
    const CState& GetState() const { return m_State; }
    std::uint8_t GetAddress() const { return m_Address; }

protected:
    using Bytes = std::vector<std::uint8_t>;

    /// A frame for this module; at least its header is there.
    virtual void AnswerRequest(std::span<const std::uint8_t> Request) = 0;
    virtual Bytes MakeState(std::uint8_t Destination) const = 0;
    virtual Bytes MakeSet(std::uint8_t Destination) const = 0;
    virtual void IndicateRpm() = 0;
    virtual void IndicateXY() = 0;

    void Answer(const Bytes& rFrame);
    void Indicate(const Bytes& rFrame);
    const CWiring& GetWiring() const { return m_Wiring; }
    /// Speed in whole rpm, as 16 bits.
    std::uint16_t GetRpm() const;

    /// Indications are for whoever listens.
    static constexpr std::uint8_t eAnyAddress = 0;

private:
    void TurningTick();

    CWiring m_Wiring;
    std::uint8_t m_Address;
    CSet m_Set;
    CState m_State;
    /// Lock and validity as last reported.
    bool m_bReportedInLock;
    bool m_bReportedInvalid;
    bool m_bTurning = false;
    std::uint32_t m_nTick = 0;
    CTimer m_Timer;
};
