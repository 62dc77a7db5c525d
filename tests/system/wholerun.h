#pragma once
#include <complex>
#include <cstdint>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "console/headlessrun.h"
#include "console/installation.h"
#include "console/session.h"
#include "platform/system/virtualeventloop.h"
#include "rvlib/settings/installation.h"
#include "simulator/rotorfile.h"
#include "simulator/simulator.h"
#include "tests/support/jsonschema.h"
#include "tests/support/testpaths.h"

/// A whole run under virtual time: simulator, line discipline, frames, the module's library, database and
/// files, with nothing in their place. What it leaves is judged by the rotor's physics.
class CWholeRun {
public:
    explicit CWholeRun(CRotorFile Rotor) : m_Rotor(std::move(Rotor)) {
        ResetInstallationRootForTest();  // that of the test before
        m_Options.m_bHeadless = true;
        m_Options.m_bArchive = false;
        m_Options.m_ModuleLibrary = TestProgram("librtr_trim.so");
    }

    /// Settings of the installation, as attributes of system_falconet.
    void WriteSettings(const std::string& rAttributes) const {
        std::ofstream(m_Installation.GetConfigDirectory() / "mcon.xdb")
            << "<Corvane><system_falconet " << rAttributes << "></system_falconet></Corvane>";
    }

    /// Initialises and runs what the options ask for. May be called again: the installation stays, loop and
    /// simulator are new.
    ExitCode Run(COptions::Procedure Procedure, bool bStartTurning = false) {
        m_Options.m_Procedure = Procedure;
        m_Options.m_bStartTurning = bStartTurning;
        m_Lines.clear();
        CVirtualEventLoop Loop;
        CConsoleSession Session(m_Options, &m_Rotor, m_Installation.GetDatabaseFile().string());
        CHeadlessRun Headless(Session, m_Options);
        Headless.OnProgress = [this](const std::string& rLine) { m_Lines.push_back(rLine); };
        Headless.OnSituation = [&](const CSituation& rSituation) {
            if (OnSituation) {
                OnSituation(rSituation, Session);
            }
        };
        if (OnSession) {
            OnSession(Session);
        }
        ExitCode Result = eExitFailed;
        m_bInitialised = Session.Initialise();
        if (m_bInitialised) {
            Session.Commission();
            Result = Headless.Run();
        }
        const CRotor& rRotor = Session.GetSimulator()->GetRotor();
        m_Residual = rRotor.GetResidual(0);
        m_Residuals.clear();
        for (std::size_t Plane = 0; Plane < rRotor.GetNumberOfPlanes(); ++Plane) {
            m_Residuals.push_back(rRotor.GetResidual(Plane));
        }
        m_MachineName = Session.GetMachineName();
        Session.Close();
        m_Report = Headless.GetReport().ToJson();
        EXPECT_EQ(CheckReport(m_Report), "");
        m_Records = Headless.GetRecorder().GetRecords();
        return Result;
    }

    std::string GetResult() const { return m_Report.at("result").get<std::string>(); }
    std::vector<std::string> GetAssertions() const {
        return m_Report.at("assertions").get<std::vector<std::string>>();
    }
    /// Number of records of the report in which the action was asked for.
    std::size_t CountActions(std::int32_t Action) const {
        std::size_t nFound = 0;
        for (const auto& rStep : m_Report.at("steps")) {
            nFound += rStep.at("notification").at(1) == Action ? 1 : 0;
        }
        return nFound;
    }
    bool HasWarning(std::uint32_t Warning) const {
        for (const auto& rStep : m_Report.at("steps")) {
            if (rStep.at("warning") == Warning) {
                return true;
            }
        }
        return false;
    }
    bool HasLine(const std::string& rPart) const {
        for (const std::string& rLine : m_Lines) {
            if (rLine.find(rPart) != std::string::npos) {
                return true;
            }
        }
        return false;
    }

    /// In the first measurement of the state the fault strikes, 3.5 s after the measuring condition holds;
    /// all warnings of that state from then on are kept.
    void StrikeIn(const std::string& rState, const nlohmann::json& rFault) {
        OnSituation = [this, rState, rFault, bDone = false](const CSituation& rSituation,
                                                            CConsoleSession& rSession) mutable {
            if (rSituation.m_Progress.m_State != rState) {
                return;
            }
            if (bDone) {
                m_WarningsAfterwards.push_back(rSituation.m_Warning);
            } else if (rSituation.m_Warning == 0) {
                bDone = true;
                IFEventLoop::Current().SetTimer(3500, [&rSession, rFault](std::uint32_t Id) {
                    IFEventLoop::Current().KillTimer(Id);
                    rSession.GetSimulator()->Carry({{"fault", rFault}});
                });
            }
        };
    }

    CRotorFile m_Rotor;
    COptions m_Options;
    CConsoleInstallation m_Installation{"", true};
    /// Called when the panel has changed: for what happens in the middle of a run.
    std::function<void(const CSituation&, CConsoleSession&)> OnSituation;

    /// Called before the module is asked for anything.
    std::function<void(CConsoleSession&)> OnSession;

    bool m_bInitialised = false;
    std::complex<double> m_Residual;                ///< what the rotor really has left in plane 1, in weights
    std::vector<std::complex<double>> m_Residuals;  ///< the same of all planes
    std::vector<std::uint32_t> m_WarningsAfterwards;  ///< of StrikeIn
    std::string m_MachineName;
    nlohmann::ordered_json m_Report;
    std::vector<CRunRecord> m_Records;
    std::vector<std::string> m_Lines;
};
