#pragma once
#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/system/timer.h"
#include "simulator/faults.h"

class CRotor;
class CSpindle;
class CTransmitter;

/// What all balancing modules have in common, whatever their frames look like: an address on the line, an
/// active set, a state, the five queries, and the times at which they report by themselves. A family derives
/// and supplies the frames.
///
/// While the spindle turns a module reports X/Y at 20 Hz and the speed at 10 Hz, unless it is slower: then
/// both with the same period. When it comes to rest it reports the speed at once, and then every second, or
/// with its own longer period, so that a lost report of 0 rpm doesn't leave the receiver believing that the
/// spindle still turns. State and set are reported whenever they change.
class CBalancingModule {
public:
    static constexpr std::uint32_t RPM_PERIOD_MS = 100;  ///< or that of X/Y, if it is longer
    static constexpr std::uint32_t STANDING_PERIOD_MS = 1000;
    static constexpr std::size_t MAX_PLANES = 2;

    /// What a module is wired to. All must outlive it.
    struct CWiring {
        const CRotor& m_rRotor;
        const CSpindle& m_rSpindle;
        CTransmitter& m_rTransmitter;
        std::uint32_t m_ReportPeriodMs = 50;  ///< of X/Y
    };
    /// How a module of two planes treats them.
    enum Mode : std::uint8_t { eNothing = 0, ePlane1 = 1, ePlane2 = 2, eBothIndependent = 3, eTwoPlane = 4 };
    /// The active set. The factor is known to Kestrel modules only, what stands behind the adaption to Lanner
    /// modules only.
    struct CModuleSet {
        std::uint8_t m_Number = 1;
        std::uint8_t m_RPMFactor = 1;
        std::array<std::uint8_t, MAX_PLANES> m_SensorAdaption{1, 1};  ///< per sensor of the module
        std::string m_Name;
        Mode m_Mode = eBothIndependent;
        /// The module's first sensor sits at the machine's plane 2, and its second at plane 1. Such a module
        /// works in mode eBothIndependent or eTwoPlane.
        bool m_bSwap = false;
        bool operator==(const CModuleSet&) const = default;
    };
    struct CState {
        std::uint8_t m_State = 0;
        std::uint8_t m_Parameter = 0;
        bool m_bUILocked = false;
        /// Of a Lanner module, bits per plane of the machine, beyond what follows from the spindle.
        std::array<std::uint8_t, MAX_PLANES> m_Flags{};
        std::array<std::uint8_t, MAX_PLANES> m_Failures{};
        bool operator==(const CState&) const = default;
    };

    CBalancingModule(const CWiring& rWiring, std::uint8_t Address, CState State, CModuleSet Set);
    virtual ~CBalancingModule() = default;
    CBalancingModule(const CBalancingModule&) = delete;
    CBalancingModule& operator=(const CBalancingModule&) = delete;

    /// Whether a frame on the line is addressed to this module.
    bool IsFor(std::span<const std::uint8_t> Frame) const;
    /// Takes every frame on the line. Frames for other addresses and unknown requests are passed over in
    /// silence.
    void PutFrame(std::span<const std::uint8_t> Frame);
    /// The spindle was commanded, has reached its speed, or is in lock again.
    void SpindleChanged();

    void ChangeSet(const CModuleSet& rSet);
    const CModuleSet& GetSet() const { return m_Set; }
    void ChangeState(const CState& rState);
    const CState& GetState() const { return m_State; }
    std::uint8_t GetAddress() const { return m_Address; }
    CTransmitter& GetTransmitter() { return m_Wiring.m_rTransmitter; }

    /// Another standard deviation of the readings, in counts; 0 brings back the sensors' own.
    virtual void DisturbReadings(double Deviation) = 0;

    /// Reports that nobody asks for and nothing needs, by their names on the control link.
    virtual std::span<const std::string_view> GetReports() const { return {}; }
    /// Sends one of them, by its index.
    virtual void SendReport(std::size_t) {}

protected:
    using Bytes = std::vector<std::uint8_t>;
    /// A module of two planes has a frame for each.
    using Frames = std::vector<Bytes>;

    /// The commands that both families know.
    enum Command : std::uint8_t {
        eModuleState = 0x08,
        eActiveSet = 0x10,
        eModuleData = 0x11,
        eRpmData = 0x1C,
        eXYData = 0x1E,
    };
    static constexpr std::uint8_t SUB_CODE_IDENTIFICATION = 8;
    /// Indications are for whoever listens.
    static constexpr std::uint8_t ANY_ADDRESS = 0;

    /// What the nameplate tells. Article numbers read as six hexadecimal digits.
    struct CNameplate {
        std::uint8_t m_Type;
        std::uint8_t m_YearOfProduction;
        std::uint8_t m_CalendarWeek;
        std::uint8_t m_SoftwareVersion;
        std::uint8_t m_TNumber;
        std::array<std::uint8_t, 3> m_ArticleNumber;
        std::uint32_t m_SerialNumber;
        std::uint32_t m_WorkingHours;
    };

    virtual const CNameplate& GetNameplate() const = 0;
    /// The sub-code of the query for the active set.
    virtual std::uint8_t GetSetSubCode() const = 0;
    virtual Bytes MakeState(std::uint8_t Destination) const = 0;
    virtual Bytes MakeSet(std::uint8_t Destination) const = 0;
    virtual Frames MakeRpm(std::uint8_t Destination) const = 0;
    /// Not const: each frame draws new noise.
    virtual Frames MakeXY(std::uint8_t Destination) = 0;
    /// What a family reports besides while the spindle turns; called with every X/Y, ticks count from 1.
    virtual void OnTurningTick(std::uint32_t) {}

    Bytes MakeHeader(std::uint8_t Kind, std::uint8_t Destination) const;
    void Indicate(const Bytes& rFrame);
    const CWiring& GetWiring() const { return m_Wiring; }
    /// Speed in whole rpm, as 16 bits.
    std::uint16_t GetRpm() const;

private:
    void AnswerRequest(std::span<const std::uint8_t> Request);
    Bytes MakeIdentification(std::uint8_t Destination) const;
    void Answer(const Frames& rFrames);
    void Indicate(const Frames& rFrames);
    void IndicateRpm() { Indicate(MakeRpm(ANY_ADDRESS)); }
    void TurningTick();
    void ReportStanding();

    CWiring m_Wiring;
    std::uint8_t m_Address;
    CModuleSet m_Set;
    CState m_State;
    /// Lock and validity as last reported.
    bool m_bReportedInLock;
    bool m_bReportedInvalid;
    bool m_bTurning = false;
    std::uint32_t m_nTick = 0;
    CTimer m_Timer;
};
