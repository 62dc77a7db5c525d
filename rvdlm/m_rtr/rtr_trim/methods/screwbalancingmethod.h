#pragma once
#include <cstdint>
#include <optional>

#include "platform/rvmdb/compensationtableentry.h"
#include "rvdlm/m_rtr/rtr_trim/methods/planebalancingmethod.h"
#include "rvdlm/m_rtr/rtr_trim/methods/screwbalancingview.h"
#include "rvdlm/m_rtr/rtr_trim/methods/screwcompensation.h"
#include "rvlib/math/matrix.h"

/// Compensation of one plane by screws in a ring of holes. The operator chooses the single screw that serves
/// as the test weight, in hole 1; the NC can preset it. The screws of a correction are computed.
///
/// Holes are counted clockwise as seen from the plane's end, here, in the mathematics and in what the NC
/// gets, whatever the sense of the rotor's scale. Only the view knows that sense, and writes the numbers that
/// the rotor carries.
class CScrewBalancingMethod : public CPlaneBalancingMethod,
                              private CScrewBalancingView,
                              private CScrewCompensation {
public:
    /// Plane: 0 the first, 1 the second. rTableEntry must outlive the method: the reference weight in it
    /// follows the test screw. Reads the test weight that the NC asks for, once.
    CScrewBalancingMethod(PreBalDB::CScrewCompensationTableEntry& rTableEntry, unsigned Plane,
                          std::uint32_t nSamples);
    ~CScrewBalancingMethod() override = default;

    /// eNeutralPosition takes all screws out; eTestUnbalance leaves the test screw alone in hole 1, and makes
    /// it the reference. The latter throws std::invalid_argument without a screw in the table.
    void SetDisplayMode(DisplayMode Mode) override;
    void SetPlainDisplayMode(DisplayMode Mode) override;
    /// Asserts: screws have no neutral position. 0.
    int GetNeutralPositionMenu(std::uint8_t nPlanes) override;
    int GetTestUnbalanceMenu() override;
    int GetTestUnbalanceChangeMenu() override;
    int GetCommitChangeMenu(std::uint8_t nPlanes) override;
    int GetCheckWeightsMenu(std::uint8_t nPlanes) override;
    /// Null: screws have no position in degrees.
    const math::matrix<double>* GetTestUnbalanceVectorInDeg() override;
    void SetTestUnbalanceVectorInDeg(const math::matrix<double>& rPositions) override;
    /// Result true; a lack of capacity shows in the percentage only. A vector of exactly nothing takes all
    /// screws out, and leaves the percentage as it is.
    bool SetUA(const math::matrix<double>& rUA, double* pPerCentCompensationDifference,
               bool bAllowEqualAngles) override;
    /// What the screws as placed produce, not what was asked for.
    math::matrix<double> GetUA() override;
    void SetRotationDirection(PreBalDB::CTypeBase::Direction Value) override;
    /// Always clockwise: the rotor's own sense goes to the view alone.
    PreBalDB::CTypeBase::Direction GetScalingDirection() override;
    bool KeyPressed(CKeyActions::KeyAction Action, int Step) override;
    void Paint(CDC* pDC, const CRect& rRect, bool bRedrawAll) override;
    /// Angles of the holes in whole degrees, weights in hundredths of a gram.
    void FillNotification(CPreBalNotification& rNotification) override;
    /// Leaves the arguments as they are.
    void GetWeightPositions(int& rAngleWeight1, int& rAngleWeight2) override;
    const Base::CWDArray<CScrew>* GetScrews() const override { return &m_Screws; }

private:
    void ChooseTestScrew();
    /// The test weight in grams that the NC asks for; none if no item is linked or it can't be read.
    static std::optional<double> ReadTestWeightFromNC();
    const PreBalDB::CScrew& GetTestScrew() const;
    /// Keys while the test screw is on show.
    void ChangeTestScrew(CKeyActions::KeyAction Action);
    void RemoveScrews();

    PreBalDB::CScrewCompensationTableEntry* m_pTableEntry;
    Base::CWDArray<PreBalDB::CScrew> m_TestScrewTable;
    int m_TestScrewIndex = -1;  ///< -1 without a table
    math::matrix<double> m_UA;  ///< that the present screws produce
    Base::CWDArray<CScrew> m_Screws;
};
