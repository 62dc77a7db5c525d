#pragma once
#include <array>

#include "rvdlm/m_rtr/rtr_trim/prebalancing/twoplanebalancing.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/twoplanetables.h"
#include "rvlib/math/vector.h"
#include "tests/rvdlm/m_rtr/rtr_trim/prebalancing/procedurefixture.h"

/// Mathematics of two planes that calculate nothing: notes its calls and answers what a test sets.
class CFakeTwoPlaneMath : public CTwoPlaneBalancingMathIF {
public:
    explicit CFakeTwoPlaneMath(std::vector<std::string>& rCalls) : m_rCalls(rCalls) {}

    void RestartMeasurement() override { Note("RestartMeasurement"); }
    void SetRotationDirectionPlane1(Direction Value) override { m_Rotation = Value; }
    int AddXYValuePlane1(std::int16_t x, std::int16_t y) override {
        m_Samples.emplace_back(x, y);
        return m_bComplete[0] ? 1 : 0;
    }
    int AddXYValuePlane2(std::int16_t x, std::int16_t y) override {
        m_Samples.emplace_back(x, y);
        return m_bComplete[1] ? 1 : 0;
    }
    void SetRawUnbalanceVectors(Direction Scaling1, Direction Scaling2) override {
        Note("SetRawUnbalanceVectors " + std::to_string(Scaling1) + " " + std::to_string(Scaling2));
    }
    void SetRawUnbalanceVectorsAngles(const Matrix& rAngles1, const Matrix& rAngles2, Direction Scaling1,
                                      Direction Scaling2) override {
        Note("SetRawUnbalanceVectorsAngles " + Text(&rAngles1) + " " + Text(&rAngles2) + " " +
             std::to_string(Scaling1) + " " + std::to_string(Scaling2));
    }
    int ApplyNeutralPositionXYValues() override {
        Note("ApplyNeutralPositionXYValues");
        return 1;
    }
    void SetTestUnbalanceVectorCase1(const Matrix* pTest, Direction Scaling1) override {
        Note("SetTestUnbalanceVectorCase1 " + Text(pTest) + " " + std::to_string(Scaling1));
    }
    void ApplyTestPlusRawUnbalanceXYValuesCase1(std::uint32_t& rStatus) override {
        Note("ApplyTestPlusRawUnbalanceXYValuesCase1");
        rStatus = m_Case1Status;
    }
    void SetTestUnbalanceVectorCase2(const Matrix* pTest, Direction Scaling2) override {
        Note("SetTestUnbalanceVectorCase2 " + Text(pTest) + " " + std::to_string(Scaling2));
    }
    void GetPrebalanceResult(Matrix& rInvA, Matrix& rUAPlane1, Matrix& rUAPlane2,
                             std::uint32_t& rStatus) override {
        Note("GetPrebalanceResult");
        rInvA = m_InvA;
        rUAPlane1 = m_UA1;
        rUAPlane2 = m_UA2;
        rStatus = m_Status;
    }
    void SetMathMatrices(Matrix InvA, Matrix UAPlane1, Matrix UAPlane2) override {
        m_GivenInvA = InvA;
        m_GivenUA1 = UAPlane1;
        m_GivenUA2 = UAPlane2;
        Note("SetMathMatrices");
    }
    void GetRebalanceResult(Matrix& rUAPlane1, Matrix& rUAPlane2) override {
        Note("GetRebalanceResult");
        rUAPlane1 = m_RebalanceUA1;
        rUAPlane2 = m_RebalanceUA2;
    }

    static Matrix MakeDiagonal(double Value) {
        Matrix Result = math::MakeNull(4, 4);
        for (std::uint32_t i = 0; i < 4; ++i) {
            Result(i, i) = Value;
        }
        return Result;
    }

    std::vector<std::pair<int, int>> m_Samples;
    std::array<bool, 2> m_bComplete{};
    std::uint32_t m_Case1Status = 0;
    std::uint32_t m_Status = 0;
    Matrix m_InvA = MakeDiagonal(3.0);
    Matrix m_UA1 = math::MakeVector(0.75, 0.5);
    Matrix m_UA2 = math::MakeVector(-0.75, 0.25);
    Matrix m_RebalanceUA1 = math::MakeVector(-0.125, 1.5);
    Matrix m_RebalanceUA2 = math::MakeVector(0.125, -1.5);
    Matrix m_GivenInvA;
    Matrix m_GivenUA1;
    Matrix m_GivenUA2;
    Direction m_Rotation = PreBalDB::CTypeBase::eClockwise;

private:
    void Note(std::string Call) { m_rCalls.push_back("Math." + std::move(Call)); }
    static std::string Text(const Matrix* pVector) {
        return pVector == nullptr ? "null"
                                  : std::to_string(static_cast<int>((*pVector)(0, 0))) + "," +
                                        std::to_string(static_cast<int>((*pVector)(1, 0)));
    }
    std::vector<std::string>& m_rCalls;
};

/// The two-plane procedure with its inside open to tests.
class CTwoPlaneProbe : public CProcedureProbe<CTwoPlaneBalancing> {
public:
    CTwoPlaneProbe(CPreBalMainWndInterface* pMainWnd, Means Means1, Means Means2,
                   std::unique_ptr<CPlaneBalancingMethod> pMethod1,
                   std::unique_ptr<CPlaneBalancingMethod> pMethod2,
                   std::unique_ptr<CTwoPlaneBalancingMathIF> pMath, PreBalDB::CPreBalBaseTableEntry& rEntry)
        : CProcedureProbe(pMainWnd, MakeFakePlane(std::move(pMethod1), Means1, 0),
                          MakeFakePlane(std::move(pMethod2), Means2, 1), std::move(pMath), rEntry,
                          "Set name") {}

    using CTwoPlaneBalancing::GetActivePlaneMethod;
    using CTwoPlaneBalancing::toggleActivePlane;
};

/// A two-plane procedure with fake means and mathematics.
class TwoPlaneTest : public ProcedureTest<CTwoPlaneProbe, CFakeTwoPlaneMath> {
protected:
    using S = CTwoPlaneBalancing;

    TwoPlaneTest() : ProcedureTest(TwoPlane::TABLES, 2) {
        m_Entry.CreateTwoPlane().CreatePlane1WeightCompensationTableEntry();
        m_Entry.CreateTwoPlane().CreatePlane2WeightCompensationTableEntry();
        m_Entry.CreateTwoPlane().SetInvA(CFakeTwoPlaneMath::MakeDiagonal(7.0));
        m_Entry.CreateTwoPlane().SetUAPlane1(math::MakeVector(1.5, -0.25));
        m_Entry.CreateTwoPlane().SetUAPlane2(math::MakeVector(-1.5, 0.5));
        Make();
    }

    /// A new procedure, idle; what it called while it was made is still to be taken.
    void Make() {
        Clear();
        auto pMethod1 = std::make_unique<CFakeMethod>(m_Entry.GetNumberOfSamples(), m_Wnd.m_Calls, 1);
        auto pMethod2 = std::make_unique<CFakeMethod>(m_Entry.GetNumberOfSamples(), m_Wnd.m_Calls, 2);
        auto pMath = std::make_unique<CFakeTwoPlaneMath>(m_Wnd.m_Calls);
        m_pMethod1 = pMethod1.get();
        m_pMethod2 = pMethod2.get();
        m_pMath = pMath.get();
        m_pMethod1->m_Positions = math::MakeVector(11, 22);
        m_pMethod2->m_Positions = math::MakeVector(33, 44);
        m_pMethod1->m_FirstPositions = math::MakeVector(10, 190);
        m_pMethod2->m_FirstPositions = math::MakeVector(30, 200);  // not quite opposed
        m_pMethod2->m_UA = math::MakeVector(-0.5, 0.125);
        m_pMethod2->m_Scaling = PreBalDB::CTypeBase::eClockwise;
        m_pMethod1->m_bHasPositions = m_Means1 == PreBalDB::CCompensationTableEntry::eWeights;
        m_pMethod2->m_bHasPositions = m_Means2 == PreBalDB::CCompensationTableEntry::eWeights;
        m_pSequence = std::make_unique<CTwoPlaneProbe>(&m_Wnd, m_Means1, m_Means2, std::move(pMethod1),
                                                       std::move(pMethod2), std::move(pMath), m_Entry);
    }
    void MakeAnew() override { Make(); }
    void SetComplete(bool bComplete) override { m_pMath->m_bComplete = {bComplete, bComplete}; }
    /// A new procedure's test leg of a plane, up to its verdict, with the weights at these positions. Those
    /// of a leg before it are moved.
    void TestPlane1(const math::matrix<double>& rPositions) {
        Reach(S::ePlane1TestUnbalanceSetWeights);
        m_pMethod1->m_Positions = rPositions;
        FinishTestLeg();
    }
    void TestPlane2(const math::matrix<double>& rPositions) {
        Reach(S::ePlane2TestUnbalanceSetWeights);
        m_pMethod2->m_Positions = rPositions;
        FinishTestLeg();
    }
    void FinishTestLeg() {
        Next();
        m_pSequence->CurrentRPM(SPEED);
        CompleteMeasurement();
        Next();
    }
    /// A measurement of this plane alone that is over or within the target, in a final state.
    void ShowReadings(std::int16_t Plane1, std::int16_t Plane2) {
        m_pSequence->CurrentXYValuePlane1(Plane1, 0);
        m_pSequence->CurrentXYValuePlane2(Plane2, 0);
        m_Loop.Advance(3500);
    }

    CTwoPlaneProbe::Means m_Means1 = PreBalDB::CCompensationTableEntry::eWeights;
    CTwoPlaneProbe::Means m_Means2 = PreBalDB::CCompensationTableEntry::eWeights;
    CFakeMethod* m_pMethod1 = nullptr;
    CFakeMethod* m_pMethod2 = nullptr;
};
