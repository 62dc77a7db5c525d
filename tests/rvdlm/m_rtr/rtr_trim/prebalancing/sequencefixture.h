#pragma once
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "rvdlm/m_rtr/rtr_trim/prebalancing/singleplanebalancing.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/singleplanetables.h"
#include "tests/rvdlm/m_rtr/rtr_trim/prebalancing/procedurefixture.h"

/// Mathematics that calculate nothing: notes its calls and answers what a test sets.
class CFakeMath : public CSinglePlaneBalancingMathIF {
public:
    explicit CFakeMath(std::vector<std::string>& rCalls) : m_rCalls(rCalls) {}

    void RestartMeasurement() override { Note("RestartMeasurement"); }
    void SetRotationDirection(PreBalDB::CTypeBase::Direction Value) override { m_Rotation = Value; }
    void SetScalingDirection(PreBalDB::CTypeBase::Direction Value) override { m_Scaling = Value; }
    int AddXYValue(std::int16_t x, std::int16_t y) override {
        m_Samples.emplace_back(x, y);
        return m_bComplete ? 1 : 0;
    }
    void SetRawUnbalanceVector(const math::matrix<double>& rAngles,
                               PreBalDB::CTypeBase::Direction Value) override {
        Note("SetRawUnbalanceVector " + Text(rAngles) + " " + std::to_string(Value));
    }
    math::matrix<double> GetRawUnbalanceVector() override { return math::MakeVector(0, 180); }
    int ApplyNeutralPositionXYValues() override {
        Note("ApplyNeutralPositionXYValues");
        return 1;
    }
    void SetTestUnbalanceVector(const math::matrix<double>* pTest,
                                PreBalDB::CTypeBase::Direction Value) override {
        Note("SetTestUnbalanceVector " + (pTest != nullptr ? Text(*pTest) : "null") + " " +
             std::to_string(Value));
    }
    void GetPrebalanceResult(math::matrix<double>& rInvA, math::matrix<double>& rUA,
                             std::uint32_t& rTestWeightStatus) override {
        Note("GetPrebalanceResult");
        if (m_bThrow) {
            throw math::matrix_error("singular");
        }
        rInvA = m_InvA;
        rUA = m_UA;
        rTestWeightStatus = m_Status;
    }
    void SetMathMatrices(math::matrix<double> InvA, math::matrix<double> UA) override {
        m_GivenInvA = InvA;
        m_GivenUA = UA;
        Note("SetMathMatrices");
    }
    void GetRebalanceResult(math::matrix<double>& rUA) override {
        Note("GetRebalanceResult");
        if (m_bThrow) {
            throw math::matrix_error("inconsistent");
        }
        rUA = m_RebalanceUA;
    }

    static math::matrix<double> MakeInvA() {
        math::matrix<double> Result(2, 2);
        Result(0, 0) = 1.0;
        Result(0, 1) = -2.0;
        Result(1, 0) = 2.0;
        Result(1, 1) = 1.0;
        return Result;
    }

    std::vector<std::pair<int, int>> m_Samples;
    bool m_bComplete = false;
    bool m_bThrow = false;
    std::uint32_t m_Status = 0;
    math::matrix<double> m_InvA = MakeInvA();
    math::matrix<double> m_UA = math::MakeVector(0.75, 0.5);
    math::matrix<double> m_RebalanceUA = math::MakeVector(-0.125, 1.5);
    math::matrix<double> m_GivenInvA;
    math::matrix<double> m_GivenUA;
    PreBalDB::CTypeBase::Direction m_Rotation = PreBalDB::CTypeBase::eClockwise;
    PreBalDB::CTypeBase::Direction m_Scaling = PreBalDB::CTypeBase::eClockwise;

private:
    void Note(std::string Call) { m_rCalls.push_back("Math." + std::move(Call)); }
    static std::string Text(const math::matrix<double>& rVector) {
        return std::to_string(static_cast<int>(rVector(0, 0))) + "," +
               std::to_string(static_cast<int>(rVector(1, 0)));
    }
    std::vector<std::string>& m_rCalls;
};

/// The single-plane procedure with its inside open to tests.
class CSequenceProbe : public CProcedureProbe<CSinglePlaneBalancing> {
public:
    CSequenceProbe(CPreBalMainWndInterface* pMainWnd, std::size_t Sensor, Means Value,
                   std::unique_ptr<CPlaneBalancingMethod> pMethod,
                   std::unique_ptr<CSinglePlaneBalancingMathIF> pMath,
                   PreBalDB::CPreBalBaseTableEntry& rEntry)
        : CProcedureProbe(pMainWnd, MakeFakePlane(std::move(pMethod), Value, Sensor), std::move(pMath),
                          rEntry, "Set name") {}

    using CPreBalancing::GetCalibratedText;
    using CPreBalancing::GetCurrentText;
    int GetIgnoreRebalWeights() const { return m_IgnoreRebalWeights; }
    int GetUseOldWeightChangeMenu() const { return m_UseOldWeightChangeMenu; }
};

/// A single-plane procedure with fake means and mathematics.
class SequenceTest : public ProcedureTest<CSequenceProbe, CFakeMath> {
protected:
    using S = CSinglePlaneBalancing;

    SequenceTest() : ProcedureTest(SinglePlane::TABLES, 1) {
        m_Entry.CreateSinglePlane().CreateWeightCompensationTableEntry();
        m_Entry.CreateSinglePlane().SetRotationDirection(PreBalDB::CTypeBase::eCounterClockwise);
        m_Entry.CreateSinglePlane().SetInvA(FakeStoredInvA());
        m_Entry.CreateSinglePlane().SetUA(math::MakeVector(1.5, -0.25));
        Make();
    }

    static math::matrix<double> FakeStoredInvA() {
        math::matrix<double> Result(2, 2);
        Result(0, 0) = Result(1, 1) = 4.0;
        Result(0, 1) = -3.0;
        Result(1, 0) = 3.0;
        return Result;
    }

    /// A new procedure, idle.
    void Make(bool bScrews = false, std::size_t Sensor = 0) {
        Clear();
        auto pMethod = std::make_unique<CFakeMethod>(m_Entry.GetNumberOfSamples(), m_Wnd.m_Calls);
        auto pMath = std::make_unique<CFakeMath>(m_Wnd.m_Calls);
        m_pMethod = pMethod.get();
        m_pMath = pMath.get();
        m_pMethod->m_bHasPositions = !bScrews;
        m_pSequence = std::make_unique<CSequenceProbe>(&m_Wnd, Sensor,
                                                       bScrews ? PreBalDB::CCompensationTableEntry::eScrews
                                                               : PreBalDB::CCompensationTableEntry::eWeights,
                                                       std::move(pMethod), std::move(pMath), m_Entry);
        m_Wnd.m_Calls.clear();
    }
    void MakeAnew() override { Make(m_bScrews); }
    void SetComplete(bool bComplete) override { m_pMath->m_bComplete = bComplete; }

    /// What a key does in a state that it doesn't leave.
    std::vector<std::string> CallsOfKey(CKeyActions::KeyAction Action) {
        TakeCalls();
        const int State = GetState();
        EXPECT_EQ(Key(Action), 1);
        EXPECT_EQ(GetState(), State);
        return TakeCalls();
    }
    /// Positions in the store, as an earlier run left them.
    void StorePositions(bool bValid, bool bSinglePlane) {
        WeightPos2Plane Record;
        Record.m_PositionsPlane1 = math::MakeVector(77, 266);
        Record.m_PositionsValid = bValid;
        Record.m_SinglePlane = bSinglePlane;
        CWeightPositionStore::Set("000005_WHEEL1", Record);
        m_Wnd.m_Store.Load();
    }

    bool m_bScrews = false;
    CFakeMethod* m_pMethod = nullptr;
};
