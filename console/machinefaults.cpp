#include "console/machinefaults.h"

#include <array>

nlohmann::json CMachineFault::MakeRequest(bool bOn) const {
    return {{"kind", m_pKind}, {m_pField, bOn ? m_Amount : 0}};
}

std::span<const CMachineFault> GetMachineFaults() {
    static constexpr std::array FAULTS = {
        CMachineFault{"MACHINE_FAULT_DROP", "drop", "next", 20, false},
        CMachineFault{"MACHINE_FAULT_CUT", "cut_ms", "value", 5000, false},
        CMachineFault{"MACHINE_FAULT_SILENCE", "silence_ms", "value", 5000, false},
        CMachineFault{"MACHINE_FAULT_UNLOCK", "unlock_ms", "value", 5000, false},
        CMachineFault{"MACHINE_FAULT_NOISE", "noise_counts", "value", 20, true},
    };
    return FAULTS;
}
