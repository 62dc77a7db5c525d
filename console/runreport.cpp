#include "console/runreport.h"

#include <algorithm>
#include <array>
#include <fstream>

namespace {

using Json = nlohmann::ordered_json;

constexpr std::array<const char*, 11> STEP_NAMES = {
    "Inactive",     "Parameter",    "ParameterWithReBal", "Setup",           "ReBalActive",     "Failure",
    "SetupAborted", "SetupSuccess", "RebalSuccess",       "SetupOverTarget", "RebalOverTarget",
};

Json MatrixToJson(const math::matrix<double>& rMatrix) {
    Json Rows = Json::array();
    for (std::uint32_t i = 0; i < rMatrix.RowNo(); ++i) {
        Json Row = Json::array();
        for (std::uint32_t j = 0; j < rMatrix.ColNo(); ++j) {
            Row.push_back(rMatrix(i, j));
        }
        Rows.push_back(std::move(Row));
    }
    return Rows;
}

}  // namespace

const char* CRunReport::StepToString(std::int32_t Step) {
    return Step >= 0 && static_cast<std::size_t>(Step) < STEP_NAMES.size()
               ? STEP_NAMES[static_cast<std::size_t>(Step)]
               : "undefined";
}

bool CRunReport::AddSituation(std::uint64_t TimeMs, const CSituation& rSituation) {
    if (!rSituation.m_bRunning) {
        m_Last.reset();
        return false;
    }
    const CPreBalProgress& rProgress = rSituation.m_Progress;
    if (m_Last && m_Last->m_Progress.m_State == rProgress.m_State &&
        m_Last->m_Progress.m_Step == rProgress.m_Step && m_Last->m_Menu == rSituation.m_Menu &&
        m_Last->m_Warning == rSituation.m_Warning && m_Last->m_Notification == rSituation.m_Notification) {
        return false;
    }
    m_Last = rSituation;
    m_LastStep = rSituation.m_Notification.GetStep();
    m_Steps.push_back({
        {"t_ms", TimeMs},
        {"step", rProgress.m_Step},
        {"of", rProgress.m_NumberOfSteps},
        {"instruction", rProgress.m_Instruction},
        {"warning", rSituation.m_Warning},
        {"menu", rSituation.m_Menu},
        {"notification", rSituation.m_Notification.m_Values},
    });
    return true;
}

nlohmann::ordered_json CRunReport::ReadingsToJson(const CSituation& rSituation) {
    Json Readings = Json::array();
    for (const CPreBalProgress::CReading& rReading : rSituation.m_Progress.m_Readings) {
        if (rReading.m_bShown) {
            Readings.push_back({{"amplitude", rReading.m_Amplitude}, {"angle_deg", rReading.m_AngleDeg}});
        }
    }
    return Readings;
}

void CRunReport::SetInitial(const CSituation& rSituation) {
    if (m_Initial.empty()) {
        m_Initial = ReadingsToJson(rSituation);
    }
}

void CRunReport::SetFinal(const CSituation& rSituation) {
    m_Final = ReadingsToJson(rSituation);
}

nlohmann::ordered_json& CRunReport::GetPositions(std::size_t Plane) {
    while (m_Positions.size() <= Plane) {
        m_Positions.push_back(Json::object());
    }
    return m_Positions[Plane];
}

void CRunReport::SetWeights(std::size_t Plane, const std::vector<int>& rAngles) {
    GetPositions(Plane) = {{"weights", rAngles}};
}

void CRunReport::SetScrews(std::size_t Plane, const std::vector<CRotorScrew>& rScrews) {
    Json Screws = Json::array();
    for (const CRotorScrew& rScrew : rScrews) {
        Screws.push_back({{"hole", rScrew.m_Hole}, {"grams", rScrew.m_Grams}});
    }
    GetPositions(Plane) = {{"screws", Screws}};
}

void CRunReport::SetCalibration(const std::string& rConfiguration, std::uint32_t CalibratedRPM,
                                std::uint32_t Target, const math::matrix<double>& rInvA,
                                const std::vector<math::matrix<double>>& rUA) {
    m_Configuration = rConfiguration;
    m_CalibratedRPM = CalibratedRPM;
    m_Target = Target;
    m_InvA = MatrixToJson(rInvA);
    m_UA = Json::array();
    for (const math::matrix<double>& rVector : rUA) {
        for (std::uint32_t i = 0; i < rVector.RowNo(); ++i) {
            m_UA.push_back(Json::array({rVector(i, 0)}));
        }
    }
}

std::string CRunReport::GetResult() const {
    return StepToString(m_LastStep);
}

ExitCode CRunReport::GetExitCode() const {
    if (!m_bFinished || !m_bSaved) {
        return eExitFailed;
    }
    switch (m_LastStep) {
        case CPreBalCodes::eSetupSuccess:
        case CPreBalCodes::eRebalSuccess:
            return eExitWithinTarget;
        case CPreBalCodes::eSetupOverTarget:
        case CPreBalCodes::eRebalOverTarget:
            return eExitOverTarget;
        default:
            return eExitFailed;
    }
}

nlohmann::ordered_json CRunReport::ToJson() const {
    return {
        {"procedure", m_Procedure},
        {"result", GetResult()},
        {"exit", static_cast<int>(GetExitCode())},
        {"configuration", m_Configuration},
        {"calibrated_rpm", m_CalibratedRPM},
        {"target", m_Target},
        {"initial", m_Initial},
        {"final", m_Final},
        {"inv_a", m_InvA},
        {"ua", m_UA},
        {"positions", m_Positions},
        {"steps", m_Steps},
        {"assertions", m_Assertions},
        {"saved", m_bSaved},
    };
}

bool CRunReport::Write(const std::string& rPath) const {
    std::ofstream Out(rPath, std::ios::binary | std::ios::trunc);
    Out << ToJson().dump(2) << '\n';
    return static_cast<bool>(Out.flush());
}
