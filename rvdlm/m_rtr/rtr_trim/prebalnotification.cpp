#include "rvdlm/m_rtr/rtr_trim/prebalnotification.h"

#include <span>

#include "rvdlm/m_rtr/rtr_trim/log.h"

namespace {

// The two verdicts over the target have no text: a log of such a run keeps the mark of the assertion.
constexpr std::array<const char*, 9> STEP_TEXTS = {
    "Inactive",            // 0
    "Parameter",           // 1
    "ParameterWithReBal",  // 2
    "Setup",               // 3
    "ReBalActive",         // 4
    "Failure",             // 5
    "SetupAborted",        // 6
    "SetupSuccess",        // 7
    "RebalSuccess",        // 8
};

constexpr std::array<const char*, 7> ACTION_TEXTS = {
    "None",                 // 0
    "SetSpindleSpeed",      // 1
    "SpindleStart",         // 2
    "SpindleStop",          // 3
    "SetWeights",           // 4
    "Measure",              // 5
    "MeasurementValuesOK",  // 6
};

const char* FindText(std::span<const char* const> Texts, std::int32_t Value) {
    return Value >= 0 && static_cast<std::size_t>(Value) < Texts.size()
               ? Texts[static_cast<std::size_t>(Value)]
               : nullptr;
}

}  // namespace

int CPreBalNotification::Encode(std::vector<std::int32_t>& rData) const {
    rData.clear();
    rData.push_back(m_Step);
    rData.push_back(m_Action);
    const auto AppendPlane = [&rData](const std::array<std::int32_t, 3>& rAngles,
                                      const std::array<std::int32_t, 3>& rWeights) {
        for (std::size_t i = 0; i < rAngles.size(); ++i) {
            rData.push_back(rAngles[i]);
            rData.push_back(rWeights[i]);
        }
    };
    AppendPlane(m_AnglesPlane1, m_WeightsPlane1);
    AppendPlane(m_AnglesPlane2, m_WeightsPlane2);
    Log();
    return 1;
}

void CPreBalNotification::Log() const {
    if (RtrTrim::g_pLog == nullptr || (RtrTrim::g_pLog->GetLevel() & RtrTrim::PB_FLOW) == 0) {
        return;
    }
    RtrTrim::g_pLog->LogStartBlock(__FILE__, __LINE__, __func__, RtrTrim::PB_FLOW, "PbFlow",
                                   "PreBalNotification");
    PB_FLOW("Step: %s", PreBalStepToString(m_Step));
    PB_FLOW("Action: %s", ActionToString(m_Action));
    const auto LogPlane = [](int Plane, const std::array<std::int32_t, 3>& rAngles,
                             const std::array<std::int32_t, 3>& rWeights) {
        for (std::size_t i = 0; i < rAngles.size(); ++i) {
            PB_FLOW("Plane %d Weight%d: Angle=%d Weight=%d", Plane, static_cast<int>(i) + 1, rAngles[i],
                    rWeights[i]);
        }
    };
    LogPlane(1, m_AnglesPlane1, m_WeightsPlane1);
    LogPlane(2, m_AnglesPlane2, m_WeightsPlane2);
    RtrTrim::g_pLog->LogEndBlock(RtrTrim::PB_FLOW);
}

const char* CPreBalNotification::PreBalStepToString(std::int32_t Value) {
    if (const char* pText = FindText(STEP_TEXTS, Value)) {
        return pText;
    }
    RV_ASSERT_FAIL(RtrTrim::g_pLog, "impossible");
    return "UNDEFINED Step";
}

const char* CPreBalNotification::ActionToString(std::int32_t Value) {
    const char* pText = FindText(ACTION_TEXTS, Value);
    return pText != nullptr ? pText : "UNDEFINED Action";
}
