#pragma once
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/rvcom/bytelink.h"
#include "platform/rvcom/linediscipline.h"
#include "platform/system/lifetime.h"
#include "platform/system/timer.h"
#include "simulator/balancingmodule.h"
#include "simulator/machine.h"
#include "simulator/rotor.h"
#include "simulator/rotorfile.h"
#include "simulator/spindle.h"
#include "simulator/transmitter.h"
#include "simulator/wiredlink.h"

class CJsonFields;

/// A rotor on a spindle with its balancing modules at a line: frames on the byte link, requests of the
/// machine link in process. All its time is the event loop's, and its noise is seeded, so under virtual time
/// the same requests give the same frames at the same instants.
///
/// Requests, beyond those that machine.h names:
///   {"unbalance": {"plane": 1, "amount": 0.9, "angle_deg": 120}}   the rotor's own unbalance becomes this
///   {"set": {"number": 2, "rpm_factor": 1, "sensor_adaption": 1}}  of Kestrel modules
///   {"set": {"number": 2, "name": "spindle 2", "mode": "both", "swap": true,
///            "sensor_adaption": 1, "sensor_adaption_2": 2}}        of a Lanner module; adaptions by input,
///            mode one of nothing, plane1, plane2, both, two-plane; swap goes with the last two
///   {"module_state": {"state": 7, "parameter": 0, "ui_locked": false}}
///            of a Lanner module also "flags": [0, 1], "failures": [0, 8]: bits per plane of the machine,
///            beyond those that follow from the spindle
///   {"report": {"kind": "bal_configuration"}}   a Lanner module reports unasked; also module_configuration,
///            diagnosis_data
///   {"answer_delay": {"value": 20, "overtaken": false}}   what a module needs to answer, ms; its reports
///   wait
///            for that, unless the answer is overtaken
///   {"line": {"baud": 9600, "inverted": false, "echo": false}}   how the modules are wired: their own rate,
///            0 for whatever the other end has, which counts on a pseudo terminal; whether the two wires are
///            exchanged; whether the other end hears what it sends
/// What set, module_state and line leave out stays as it is; those before line strike all modules, or one
/// with "module": 1 or 2. {"fault": ...} takes what faults.h tells. A request that can't be carried out
/// changes nothing.
///
/// {"state": {}} answers
///   {"ok": true, "speed": 2990.0, "commanded": 3000, "lock": false, "invalid": true, "nominal_rpm": 3000,
///    "rotation": "cw", "scale": ["cw"], "holes": [12],
///    "unbalance": [{"amount": 0.8, "angle_deg": 123.0}], "residual": [{"amount": 0.8, "angle_deg": 123.0}],
///    "fitted": [{"weights": [30, 180], "screws": [{"hole": 1, "grams": 2.5}]}],
///    "modules": [{"address": 5, "set": 1, "rpm_factor": 1, "state": 7}], "sent": 417, "received": 9}
/// (a Lanner module has "mode" and "swap" in place of the factor; sent and received count frames)
/// with rotation and scales as in the rotor file, and the rotor's own unbalance, residual and fitted per
/// plane. The angles of unbalance and residual count counter-clockwise, seen
/// from plane 1's end.
class CSimulator : public IFMachine {
public:
    /// Null, with rError telling what would be right, if the modules of the rotor file can't be simulated at
    /// these addresses. No addresses: 5, and 6 for the second module.
    static std::unique_ptr<CSimulator> Create(const CRotorFile& rFile, std::unique_ptr<IFByteLink> pLink,
                                              std::vector<std::uint8_t> Addresses, std::string& rError);
    ~CSimulator() override;

    /// Opens the line. What OnOpened and OnClosed of the link are set to before is called too.
    void Open();
    void Request(const nlohmann::json& rRequest, Done OnAnswer) override;
    /// The same at once: carries the request out and returns the answer.
    nlohmann::json Carry(const nlohmann::json& rRequest);

    const CRotor& GetRotor() const { return m_Rotor; }
    const CSpindle& GetSpindle() const { return m_Spindle; }
    IFByteLink& GetLink() { return *m_pLink; }

private:
    CSimulator(const CRotorFile& rFile, std::unique_ptr<IFByteLink> pLink,
               const std::vector<std::uint8_t>& rAddresses);

    /// One per kind of request: carries it out, and may add to the answer.
    using Handler = void (CSimulator::*)(const nlohmann::json& rValue, nlohmann::json& rAnswer);
    struct CRequestKind {
        std::string_view m_Name;
        Handler m_Handler;
    };
    static const CRequestKind ms_Requests[];

    void OnSpeed(const nlohmann::json& rValue, nlohmann::json& rAnswer);
    void OnWeights(const nlohmann::json& rValue, nlohmann::json& rAnswer);
    void OnScrews(const nlohmann::json& rValue, nlohmann::json& rAnswer);
    void OnUnbalance(const nlohmann::json& rValue, nlohmann::json& rAnswer);
    void OnSet(const nlohmann::json& rValue, nlohmann::json& rAnswer);
    void OnModuleState(const nlohmann::json& rValue, nlohmann::json& rAnswer);
    void OnReport(const nlohmann::json& rValue, nlohmann::json& rAnswer);
    void OnAnswerDelay(const nlohmann::json& rValue, nlohmann::json& rAnswer);
    void OnLine(const nlohmann::json& rValue, nlohmann::json& rAnswer);
    void OnFault(const nlohmann::json& rValue, nlohmann::json& rAnswer);
    void OnState(const nlohmann::json& rValue, nlohmann::json& rAnswer);

    /// A module on the line with what is its own.
    struct CStation {
        std::unique_ptr<CTransmitter> m_pTransmitter;
        std::unique_ptr<CBalancingModule> m_pModule;
    };
    void AddModule(const CRotorFile& rFile, std::uint8_t Address);
    void CutLine(std::uint32_t Milliseconds);
    /// A frame for a module, through the faults of requests.
    void PutRequest(std::size_t nModule, std::span<const std::uint8_t> Frame);

    std::size_t ReadPlane(const CJsonFields& rFields) const;
    /// The set that a request makes of the present one.
    CBalancingModule::CModuleSet ReadSet(const CJsonFields& rFields,
                                         const CBalancingModule::CModuleSet& rPresent) const;
    CBalancingModule::CState ReadState(const CJsonFields& rFields,
                                       const CBalancingModule::CState& rPresent) const;
    /// The modules that a request means.
    std::vector<CBalancingModule*> ReadModules(const CJsonFields& rFields) const;

    CRotorFile::Modules m_Family;
    double m_NominalRpm;
    std::unique_ptr<CWiredLink> m_pLink;
    CRotor m_Rotor;
    CSpindle m_Spindle;
    CFaults m_Faults;
    LineDiscipline::CDecoder m_Decoder;
    std::vector<CStation> m_Stations;
    CTimer m_MendTimer;
    /// Outlived by requests that a fault has made late.
    CLifetime m_Lifetime;
};
