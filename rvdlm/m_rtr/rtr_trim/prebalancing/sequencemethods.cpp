// The means of a plane, as the configuration names them.
#include "rvdlm/m_rtr/rtr_trim/log.h"
#include "rvdlm/m_rtr/rtr_trim/methods/screwbalancingmethod.h"
#include "rvdlm/m_rtr/rtr_trim/methods/weightbalancingmethod.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/balancingsequence.h"

CSequencePlane CBalancingSequence::MakePlane(std::size_t Sensor, unsigned PlaneIndex,
                                             const CPlaneRecord& rRecord) {
    const auto MakeWeights = [&](const PreBalDB::CWeightCompensationTableEntry& rEntry) {
        return std::make_unique<CWeightBalancingMethod>(rEntry, m_pMainWnd, PlaneIndex,
                                                        m_pEntry->GetNumberOfSamples(), m_IgnoreRebalWeights,
                                                        GetWeightSelection(), m_UseOldWeightChangeMenu != 0);
    };
    CSequencePlane Plane;
    Plane.m_Sensor = Sensor;
    switch (rRecord.m_Used) {
        case PreBalDB::CCompensationTableEntry::eWeights:
            break;
        case PreBalDB::CCompensationTableEntry::eScrews:
            Plane.m_pMethod = std::make_unique<CScrewBalancingMethod>(rRecord.CreateScrews(), PlaneIndex,
                                                                      m_pEntry->GetNumberOfSamples());
            Plane.m_CompensationMethod = rRecord.m_Used;
            return Plane;
        default:
            RV_ASSERT_FAIL(RtrTrim::g_pLog, "inconsistent database");
            break;
    }
    Plane.m_pMethod = MakeWeights(rRecord.CreateWeights());
    return Plane;
}
