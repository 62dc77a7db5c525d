#include "console/trainingslip.h"

#include <cstdlib>

namespace {

constexpr int TURN = 360;

int Mirror(int Angle) {
    return (TURN - Angle) % TURN;
}

bool CancelEachOther(const std::vector<int>& rAngles) {
    return rAngles.size() == 2 && std::abs(rAngles[0] - rAngles[1]) == TURN / 2;
}

}  // namespace

std::vector<CFitting> CTrainingSlip::Fit(std::vector<CFitting> Wanted) {
    for (CFitting& rFitting : Wanted) {
        if (m_bStruck || m_Kind == CTrainingSituation::Slip::eNone || rFitting.m_bScrews ||
            CancelEachOther(rFitting.m_Angles)) {
            continue;
        }
        if (m_Kind == CTrainingSituation::Slip::eForgotten) {
            rFitting.m_Angles.pop_back();
            m_bStruck = true;
        }
        for (int& rAngle : rFitting.m_Angles) {
            constexpr int SEEN = 20;  // degrees that make a difference
            const int Apart = std::abs(Mirror(rAngle) - rAngle);
            if (!m_bStruck && Apart >= SEEN && Apart <= TURN - SEEN) {
                rAngle = Mirror(rAngle);
                m_bStruck = true;
            }
        }
    }
    return Wanted;
}
