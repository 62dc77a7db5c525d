#pragma once
#include <cstdint>

#include "platform/rvmdb/compensationtableentry.h"
#include "rvdlm/m_rtr/rtr_trim/methods/planebalancingmethod.h"
#include "rvdlm/m_rtr/rtr_trim/methods/weightbalancingview.h"
#include "rvdlm/m_rtr/rtr_trim/methods/weightcompensation.h"
#include "rvlib/math/matrix.h"
#include "rvlib/rvbas/base/autoincdectimer.h"

class CPreBalMainWndInterface;

/// Compensation of one plane by two movable weights. The operator or the NC turns them by key actions; a key
/// that is held repeats. Positions are whole degrees on the rotor's scale, 0 to 359. Weights never end up
/// closer than 20 degrees by a key: they change roles instead.
class CWeightBalancingMethod : public CPlaneBalancingMethod,
                               private CWeightBalancingView,
                               private CWeightCompensation,
                               private Base::CAutoIncDecTimer {
public:
    /// Plane: 0 the first, 1 the second. pMainWnd and pWeightSelection must outlive the method; the latter is
    /// shared by the planes of a sequence: bit 0 the active weight of the change menus (set: weight 2), bit 1
    /// their step (set: 10 degrees).
    CWeightBalancingMethod(const PreBalDB::CWeightCompensationTableEntry& rTableEntry,
                           CPreBalMainWndInterface* pMainWnd, unsigned Plane, std::uint32_t nSamples,
                           int IgnoreRebalWeights, int* pWeightSelection, bool bUseOldMenu);
    ~CWeightBalancingMethod() override;

    /// eNeutralPosition opposes the weights; eTestUnbalance moves one of them by the speed increment.
    void SetDisplayMode(DisplayMode Mode) override;
    void SetPlainDisplayMode(DisplayMode Mode) override;
    int GetNeutralPositionMenu(std::uint8_t nPlanes) override;
    int GetTestUnbalanceMenu() override;
    int GetTestUnbalanceChangeMenu() override;
    int GetCommitChangeMenu(std::uint8_t nPlanes) override;
    int GetCheckWeightsMenu(std::uint8_t nPlanes) override;
    const math::matrix<double>* GetTestUnbalanceVectorInDeg() override;
    void SetTestUnbalanceVectorInDeg(const math::matrix<double>& rPositions) override;
    /// With bAllowEqualAngles false and the setting IgnoreRebalWeights, equal positions are spread by 10
    /// degrees each way. Positions that don't produce a vector within capacity are logged as a warning, or,
    /// with the feature flag PreBalancingConsistentWeightOrder, replaced by the mirrored ones that do.
    bool SetUA(const math::matrix<double>& rUA, double* pPerCentCompensationDifference,
               bool bAllowEqualAngles) override;
    math::matrix<double> GetUA() override;
    void SetRotationDirection(PreBalDB::CTypeBase::Direction Value) override;
    PreBalDB::CTypeBase::Direction GetScalingDirection() override;
    bool KeyPressed(CKeyActions::KeyAction Action, int Step) override;
    void Paint(CDC* pDC, const CRect& rRect, bool bRedrawAll) override;
    void FillNotification(CPreBalNotification& rNotification) override;
    void GetWeightPositions(int& rAngleWeight1, int& rAngleWeight2) override;

    /// Kind 0: menu of a procedure with one plane, 1: with two.
    virtual int GetChangeWeightsMenu(int Kind);

private:
    void OnAutoIncrement() override;
    void OnAutoDecrement() override;
    void StopTimers();
    /// Shows the change menu that fits the selection.
    void ReplaceMenu();
    /// Starts a move of the weight by Step in the direction of Sign, repeated until the key goes up.
    void StartMove(int Weight, int Sign, int Step);
    /// A further step of the held key.
    void RepeatMove(int Sign);
    void CorrectWeights(int Step, int Old1, int Old2);
    /// Whether weights there give the vector, but for the rounding to whole degrees.
    bool DoPositionsProduce(int Angle1, int Angle2, const math::matrix<double>& rUA) const;
    void CheckOrder(const math::matrix<double>& rUA);

    CPreBalMainWndInterface* m_pMainWnd;
    int m_ActiveWeight = 0;  ///< that the repeat moves: 1, 2, or 0 for none
    int m_FirstStep = 0;     ///< signed size of the step done at the key press
    int m_Step = 1;          ///< of each repeat, degrees
    int m_AngleWeight1 = 0;
    int m_AngleWeight2 = 90;
    math::matrix<double> m_TestUnbalanceVector;  ///< buffer of GetTestUnbalanceVectorInDeg
    int m_IgnoreRebalWeights;
    int* m_pWeightSelection;
    bool m_UseOldMenu;
    bool m_ConsistentWeightOrder;  ///< feature flag PreBalancingConsistentWeightOrder
};
