#include "console/trainingsetup.h"

#include <memory>
#include <stdexcept>

#include "console/headlessrun.h"
#include "console/helpfiles.h"
#include "platform/system/virtualeventloop.h"
#include "simulator/simulator.h"

namespace {

CRotorFile::Sense Turn(CRotorFile::Sense Value) {
    return Value == CRotorFile::eClockwise ? CRotorFile::eCounterClockwise : CRotorFile::eClockwise;
}

/// The rotor that the configuration is set up for in place of the real one; null for that.
std::shared_ptr<const CRotorFile> MakeMistakenRotor(const CTrainingSituation& rSituation,
                                                    const CRotorFile& rRotor) {
    CRotorFile Mistaken = rRotor;
    switch (rSituation.m_Setting) {
        case CTrainingSituation::Setting::eRotor:
            return nullptr;
        case CTrainingSituation::Setting::eOtherRotation:
            Mistaken.m_Rotation = Turn(Mistaken.m_Rotation);
            break;
        case CTrainingSituation::Setting::eOtherScale:
            for (CRotorFile::CRotorPlane& rPlane : Mistaken.m_Planes) {
                rPlane.m_Scale = Turn(rPlane.m_Scale);
            }
            break;
    }
    return std::make_shared<const CRotorFile>(Mistaken);
}

}  // namespace

CTrainingSetup::CTrainingSetup(const CTrainingSituation& rSituation, const COptions& rOptions)
    : m_Options(rOptions) {
    std::string Error;
    const std::optional<CRotorFile> Rotor = CRotorFile::Parse(rSituation.m_pRotor, Error);
    if (!Rotor) {
        throw std::runtime_error("training " + std::string(rSituation.m_pId) + ": " + Error);
    }
    m_Rotor = *Rotor;
    m_Options.m_Mode = rSituation.m_pMode;
    m_Options.m_Methods.clear();
    if (*rSituation.m_pMethod != '\0') {
        m_Options.m_Methods.emplace_back(rSituation.m_pMethod);
    }
    m_Options.m_Modules.clear();
    m_Options.m_Addresses.clear();
    m_Options.m_Opc.reset();
    m_Options.m_bProcedureGiven = false;
    m_Options.m_pCommissionAs = MakeMistakenRotor(rSituation, m_Rotor);
    ProvideHelp(m_Installation, GetHelpOfProgram());
    if (rSituation.m_Goal == CTrainingSituation::Goal::eRebalanced) {
        BalanceOnce();
    }
}

void CTrainingSetup::BalanceOnce() {
    const CVirtualEventLoop Loop;
    COptions Options = m_Options;
    Options.m_bHeadless = true;
    Options.m_bShowPage = false;
    Options.m_ReportFile.clear();
    Options.m_ScreenshotDirectory.clear();
    Options.m_Procedure = COptions::Procedure::ePrebalance;
    CConsoleSession Session(Options, &m_Rotor, GetDatabaseFile());
    CHeadlessRun Run(Session, Options);
    Run.OnProgress = [](const std::string&) {};
    bool bBalanced = Session.Initialise();
    if (bBalanced) {
        Session.Commission();
        bBalanced = Run.Run() == eExitWithinTarget;
    }
    const CRotor& rRotor = Session.GetSimulator()->GetRotor();
    for (std::size_t Plane = 0; Plane < rRotor.GetNumberOfPlanes(); ++Plane) {
        m_Fitted.push_back({{"weights", {{"plane", Plane + 1}, {"angles", rRotor.GetWeights(Plane)}}}});
        // As a wheel does by wear and dressing.
        constexpr double WORN = 0.15;
        m_Rotor.m_Planes[Plane].m_Unbalance.m_Amount += WORN;
    }
    Session.Close();
    if (!bBalanced) {
        throw std::runtime_error("the rotor of the training couldn't be balanced once before");
    }
}

void CTrainingSetup::Begin(CConsoleSession& rSession) const {
    for (const nlohmann::json& rFitted : m_Fitted) {
        rSession.GetMachine()->Request(rFitted, [](const nlohmann::json&) {});
    }
}
