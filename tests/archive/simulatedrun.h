#pragma once
#include <array>
#include <cmath>
#include <complex>
#include <cstdint>
#include <functional>
#include <random>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "archive/runrecord.h"
#include "contract/holering.h"
#include "rvdlm/m_rtr/rtr_trim/methods/screwcompensation.h"
#include "rvdlm/m_rtr/rtr_trim/methods/weightbalancingmethod.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/singleplanebalancingmath.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/twoplanebalancingmath.h"
#include "simulator/noise.h"
#include "simulator/rotor.h"

/// A pre-balancing as it is recorded, and re-balancings after it, without frames and sequences: the simulated
/// rotor's physics, and the module's own mathematics for the correction. What is fitted in truth may differ
/// from what is noted.
class CSimulatedRun {
public:
    struct CSetup {
        CRotorFile m_Rotor;  ///< m_Rotation, scales, holes, influence, unbalance
        std::string m_Mode;  ///< "plane1", "plane2", "two-plane"
        bool m_bScrews = false;
        std::uint32_t m_nScrews = 2;
        std::vector<CTableScrew> m_Table;
        std::size_t m_nReadings = 100;
        double m_Noise = 0.0;  ///< of each reading, counts
        /// Instead: of the mean, relative to the first reading.
        double m_RelativeNoise = 0.0;
        double m_Drift = 0.0;  ///< of each measurement, relative to its reading, in each of X and Y
        std::uint64_t m_Seed = 1;
        std::array<int, 2> m_TestStep{60, 60};        ///< by which the first weight is moved, per plane
        std::array<double, 2> m_TestGrams{1.0, 1.0};  ///< of the test screw
        /// What each measurement's readings are multiplied by, in their order: a speed that isn't the same
        /// each time. 1 beyond the end.
        std::vector<double> m_Gains;
        /// In place of the noise, of one reading out of its measurement's.
        std::function<std::complex<double>(std::size_t Measured, std::size_t Plane, std::size_t Reading)>
            m_ReadingNoise;
        /// A sensor that answers to nothing.
        bool m_bDead = false;
    };
    /// What is fitted in truth at a stage, instead of what is noted.
    using Hand =
        std::function<CPlaneFitting(Measurement Which, std::size_t Plane, const CPlaneFitting& rNoted)>;
    using Direction = PreBalDB::CTypeBase::Direction;

    explicit CSimulatedRun(CSetup Setup)
        : m_Setup(std::move(Setup)), m_Rotor(m_Setup.m_Rotor), m_Noise(m_Setup.m_Seed, 0, 1.0) {
        CRunSetup& rSetup = m_Record.m_Setup;
        rSetup.m_Mode = m_Setup.m_Mode;
        // A scale and a sense of rotation are as seen from the plane's own end; two planes go by plane 1.
        const bool bFromPlane2 = m_Setup.m_Mode == "plane2";
        rSetup.m_bClockwise = (m_Setup.m_Rotor.m_Rotation == CRotorFile::eClockwise) != bFromPlane2;
        rSetup.m_nSamples = static_cast<std::uint32_t>(m_Setup.m_nReadings);
        for (std::size_t i = 0; i < 2; ++i) {
            if (m_Setup.m_Mode == "two-plane" || (i == 1) == bFromPlane2) {
                m_Planes.push_back(i);
                const auto& rPlane = m_Setup.m_Rotor.m_Planes[i];
                CPlaneSetup& rTo = rSetup.m_Planes[i].emplace();
                rTo.m_bScrews = m_Setup.m_bScrews;
                rTo.m_bScaleClockwise = rPlane.m_Scale == CRotorFile::eClockwise;
                rTo.m_nHoles = static_cast<std::uint32_t>(rPlane.m_Holes);
                rTo.m_nScrews = m_Setup.m_nScrews;
                rTo.m_Table = m_Setup.m_Table;
                if (!m_Setup.m_bScrews) {
                    m_Noted[i].m_Weights = {0, 180};
                }
            }
        }
    }

    CRunRecord& GetRecord() { return m_Record; }
    void SetHand(Hand Wrong) { m_Hand = std::move(Wrong); }
    /// What the readings are multiplied by: -1 for X alone is a sense of rotation that is noted wrongly.
    void TurnSense() { m_bTurnSense = !m_bTurnSense; }

    /// First measurement and test runs, and what the module asks for then.
    void RunTests() {
        Measure(Measurement::eFirst);
        for (std::size_t i = 0; i < m_Planes.size(); ++i) {
            CPlaneFitting& rNoted = m_Noted[m_Planes[i]];
            if (m_Setup.m_bScrews) {
                rNoted.m_Screws = {{1, m_Setup.m_TestGrams[m_Planes[i]]}};
            } else {
                rNoted.m_Weights[0] = m_Setup.m_TestStep[m_Planes[i]];
            }
            Measure(i == 0 ? Measurement::eTest1 : Measurement::eTest2);
        }
        Compute();
    }
    /// With the correction fitted.
    void RunFinal() {
        Measure(Measurement::eFinal);
        m_Record.m_State = CRunRecord::State::eFinished;
    }
    void Run() {
        RunTests();
        RunFinal();
    }
    /// What a re-balancing asks for: the rotor has become this one, with the correction still fitted. False
    /// if the module refuses, since the correction that it begins with is beyond the capacity.
    bool Rebalance(const CRotorFile& rLater) {
        m_Rotor = CRotor(rLater);
        m_Record.m_Measurements.clear();
        m_bCapacityEnough = true;
        std::vector<math::matrix<double>> Stored = m_UA;
        for (std::size_t i = 0; i < m_Planes.size(); ++i) {
            Ask(m_Planes[i], static_cast<unsigned>(i), Stored[i]);
        }
        if (!m_Setup.m_bScrews && !m_bCapacityEnough) {
            return false;
        }
        m_bCapacityEnough = true;
        Measure(Measurement::eFirst);
        if (m_Planes.size() == 1) {
            CSinglePlaneBalancingMath Math(static_cast<std::uint32_t>(m_Setup.m_nReadings));
            Math.SetRotationDirection(GetRotation());
            Math.SetMathMatrices(m_InvA, m_UA[0]);
            for (const auto& [x, y] : GetSamples(Measurement::eFirst, m_Planes[0])) {
                Math.AddXYValue(x, y);
            }
            Math.GetRebalanceResult(m_UA[0]);
        } else {
            CTwoPlaneBalancingMath Math(static_cast<std::uint32_t>(m_Setup.m_nReadings));
            Math.SetRotationDirectionPlane1(GetRotation());
            Math.SetMathMatrices(m_InvA, m_UA[0], m_UA[1]);
            FeedTwo(Math, Measurement::eFirst);
            Math.GetRebalanceResult(m_UA[0], m_UA[1]);
        }
        Place();
        return true;
    }
    const std::array<CPlaneFitting, 2>& GetNoted() const { return m_Noted; }
    void SetNoted(std::size_t Plane, CPlaneFitting Fitting) { m_Noted[Plane] = std::move(Fitting); }
    bool IsCapacityEnough() const { return m_bCapacityEnough; }
    bool IsAccepted() const { return m_Status == 0; }
    CRotor& GetRotor() { return m_Rotor; }
    const math::matrix<double>& GetInvA() const { return m_InvA; }
    /// The compensation of each balanced plane: as computed, and as the positions produce it.
    const std::vector<math::matrix<double>>& GetWantedUA() const { return m_WantedUA; }
    const std::vector<math::matrix<double>>& GetUA() const { return m_UA; }
    const std::vector<std::size_t>& GetPlanes() const { return m_Planes; }

    /// The exact reading with what is fitted, as the module would send it without rounding.
    std::complex<double> GetTrueReading(std::size_t Plane) const {
        const std::complex<double> True = m_Setup.m_bDead ? 0.0 : m_Rotor.GetReading(Plane);
        return m_bTurnSense ? std::complex<double>(-True.real(), True.imag()) : True;
    }

    /// Puts what is noted on the rotor.
    void Fit(Measurement Which) {
        for (const std::size_t Plane : m_Planes) {
            const CPlaneFitting True = m_Hand ? m_Hand(Which, Plane, m_Noted[Plane]) : m_Noted[Plane];
            m_Rotor.FitWeights(Plane, True.m_Weights);
            std::vector<CSimulatedScrew> Screws;
            const CHoleRing Ring{m_Record.m_Setup.m_Planes[Plane]->m_nHoles,
                                 !m_Record.m_Setup.m_Planes[Plane]->m_bScaleClockwise};
            for (const CFittedScrew& rScrew : True.m_Screws) {
                Screws.push_back({static_cast<int>(Ring.GetRotorHole(rScrew.m_Hole)), rScrew.m_Grams});
            }
            m_Rotor.FitScrews(Plane, Screws);
        }
    }

    void Measure(Measurement Which) {
        Fit(Which);
        const double Gain = m_nMeasured < m_Setup.m_Gains.size() ? m_Setup.m_Gains[m_nMeasured] : 1.0;
        CRunMeasurement Measured;
        Measured.m_Which = Which;
        for (const std::size_t Plane : m_Planes) {
            const std::complex<double> True = Gain * GetTrueReading(Plane);
            const std::complex<double> Drifted = True + std::abs(True) * m_Setup.m_Drift * m_Noise.Next();
            if (m_nMeasured == 0) {
                m_FirstLength[Plane] = std::abs(True);
            }
            Samples& rSamples = m_Samples[static_cast<std::size_t>(Which)][Plane];
            rSamples.clear();
            const double Noise = m_Setup.m_RelativeNoise > 0.0
                                     ? m_Setup.m_RelativeNoise * m_FirstLength[Plane] *
                                           std::sqrt(static_cast<double>(m_Setup.m_nReadings))
                                     : m_Setup.m_Noise;
            CMeasuredPlane& rPlane = Measured.m_Planes[Plane].emplace();
            rPlane.m_Fitted = m_Noted[Plane];
            double X = 0.0;
            double Y = 0.0;
            double XX = 0.0;
            double YY = 0.0;
            double XY = 0.0;
            for (std::size_t i = 0; i < m_Setup.m_nReadings; ++i) {
                const std::complex<double> Noisy =
                    Drifted + (m_Setup.m_ReadingNoise ? m_Setup.m_ReadingNoise(m_nMeasured, Plane, i)
                                                      : Noise * m_Noise.Next());
                const std::int16_t x = CRotor::ToCounts(Noisy.real());
                const std::int16_t y = CRotor::ToCounts(Noisy.imag());
                X += x;
                Y += y;
                XX += static_cast<double>(x) * x;
                YY += static_cast<double>(y) * y;
                XY += static_cast<double>(x) * y;
                rSamples.emplace_back(x, y);
            }
            const double n = static_cast<double>(m_Setup.m_nReadings);
            rPlane.m_nReadings = m_Setup.m_nReadings;
            rPlane.m_Mean = {X / n, Y / n};
            rPlane.m_Smoothed = rPlane.m_Mean;
            rPlane.m_VarianceX = (XX - X * X / n) / (n - 1.0);
            rPlane.m_VarianceY = (YY - Y * Y / n) / (n - 1.0);
            rPlane.m_CovarianceXY = (XY - X * Y / n) / (n - 1.0);
        }
        m_Record.m_Measurements.push_back(std::move(Measured));
        ++m_nMeasured;
    }

private:
    using Samples = std::vector<std::pair<std::int16_t, std::int16_t>>;

    Direction GetScale(std::size_t Plane) const {
        return m_Record.m_Setup.m_Planes[Plane]->m_bScaleClockwise ? Direction::eClockwise
                                                                   : Direction::eCounterClockwise;
    }
    Direction GetRotation() const {
        return m_Record.m_Setup.m_bClockwise ? Direction::eClockwise : Direction::eCounterClockwise;
    }
    static math::matrix<double> MakeAngles(const std::vector<int>& rWeights) {
        math::matrix<double> Angles(2, 1);
        Angles(0, 0) = rWeights[0];
        Angles(1, 0) = rWeights[1];
        return Angles;
    }
    const Samples& GetSamples(Measurement Which, std::size_t Plane) const {
        return m_Samples[static_cast<std::size_t>(Which)][Plane];
    }
    void Compute() {
        if (m_Planes.size() == 1) {
            ComputeOne();
        } else {
            ComputeTwo();
        }
        Place();
        m_Record.m_Calibration = CRunCalibration{3000, m_InvA, m_UA};
    }
    /// Turns the compensation into positions, and goes on with what these produce.
    void Place() {
        m_WantedUA = m_UA;
        for (std::size_t i = 0; i < m_Planes.size(); ++i) {
            Ask(m_Planes[i], static_cast<unsigned>(i), m_UA[i]);
        }
    }
    void ComputeOne() {
        const std::size_t Plane = m_Planes[0];
        CSinglePlaneBalancingMath Math(static_cast<std::uint32_t>(m_Setup.m_nReadings));
        Math.SetRotationDirection(GetRotation());
        Math.SetScalingDirection(GetScale(Plane));
        const auto Feed = [&](Measurement Which) {
            for (const auto& [x, y] : GetSamples(Which, Plane)) {
                Math.AddXYValue(x, y);
            }
        };
        if (!m_Setup.m_bScrews) {
            Math.SetRawUnbalanceVector(MakeAngles({0, 180}), GetScale(Plane));
        }
        Feed(Measurement::eFirst);
        Math.ApplyNeutralPositionXYValues();
        math::matrix<double> Test(2, 1);
        if (!m_Setup.m_bScrews) {
            Test = MakeAngles(m_Noted[Plane].m_Weights);
        }
        Math.SetTestUnbalanceVector(m_Setup.m_bScrews ? nullptr : &Test, GetScale(Plane));
        Feed(Measurement::eTest1);
        m_UA = {math::matrix<double>(2, 1)};
        Math.GetPrebalanceResult(m_InvA, m_UA[0], m_Status);
    }
    void FeedTwo(CTwoPlaneBalancingMath& rMath, Measurement Which) const {
        rMath.RestartMeasurement();
        for (const auto& [x, y] : GetSamples(Which, 0)) {
            rMath.AddXYValuePlane1(x, y);
        }
        for (const auto& [x, y] : GetSamples(Which, 1)) {
            rMath.AddXYValuePlane2(x, y);
        }
    }
    void ComputeTwo() {
        CTwoPlaneBalancingMath Math(static_cast<std::uint32_t>(m_Setup.m_nReadings));
        Math.SetRotationDirectionPlane1(GetRotation());
        Math.SetRawUnbalanceVectors(GetScale(0), GetScale(1));
        FeedTwo(Math, Measurement::eFirst);
        Math.ApplyNeutralPositionXYValues();
        std::array<math::matrix<double>, 2> Tests{math::matrix<double>(2, 1), math::matrix<double>(2, 1)};
        for (std::size_t i = 0; i < 2 && !m_Setup.m_bScrews; ++i) {
            Tests[i] = MakeAngles(m_Noted[i].m_Weights);
        }
        Math.SetTestUnbalanceVectorCase1(m_Setup.m_bScrews ? nullptr : Tests.data(), GetScale(0));
        FeedTwo(Math, Measurement::eTest1);
        Math.ApplyTestPlusRawUnbalanceXYValuesCase1(m_Status);
        Math.SetTestUnbalanceVectorCase2(m_Setup.m_bScrews ? nullptr : &Tests[1], GetScale(1));
        FeedTwo(Math, Measurement::eTest2);
        m_UA = {math::matrix<double>(2, 1), math::matrix<double>(2, 1)};
        Math.GetPrebalanceResult(m_InvA, m_UA[0], m_UA[1], m_Status);
    }
    void Ask(std::size_t Plane, unsigned Column, math::matrix<double>& rUA) {
        double Percent = 0.0;
        CPlaneFitting Asked;
        if (m_Setup.m_bScrews) {
            Base::CWDArray<PreBalDB::CScrew> Table;
            for (const CTableScrew& rScrew : m_Setup.m_Table) {
                Table.Add({rScrew.m_Name, rScrew.m_Grams});
            }
            struct CCompensation : CScrewCompensation {
                using CScrewCompensation::CScrewCompensation;
            };
            CCompensation Compensation(Table, static_cast<int>(m_Setup.m_nScrews),
                                       m_Setup.m_Rotor.m_Planes[Plane].m_Holes, Column, 0.0);
            Base::CWDArray<CScrew> Screws;
            Compensation.UA2Screws(rUA, Screws, &Percent, rUA, m_Setup.m_TestGrams[Plane]);
            for (std::size_t i = 0; i < static_cast<std::size_t>(Screws.GetSize()); ++i) {
                Asked.m_Screws.push_back({Screws[i].m_Hole, Screws[i].m_Weight});
            }
        } else {
            PreBalDB::CWeightCompensationTableEntry Entry;
            Entry.SetScalingDirection(GetScale(Plane));
            int Selection = 0;
            CWeightBalancingMethod Method(Entry, nullptr, Column, 1, 0, &Selection, false);
            if (Method.SetUA(rUA, &Percent, true)) {
                rUA = Method.GetUA();
            }
            Asked.m_Weights = {0, 0};
            Method.GetWeightPositions(Asked.m_Weights[0], Asked.m_Weights[1]);
        }
        m_bCapacityEnough = m_bCapacityEnough && Percent == 0.0;
        m_Noted[Plane] = std::move(Asked);
    }

    CSetup m_Setup;
    CRotor m_Rotor;
    CNoise m_Noise;
    CRunRecord m_Record;
    Hand m_Hand;
    bool m_bTurnSense = false;
    std::array<double, 2> m_FirstLength{};
    std::size_t m_nMeasured = 0;
    bool m_bCapacityEnough = true;
    std::vector<std::size_t> m_Planes;
    std::array<CPlaneFitting, 2> m_Noted;
    std::array<std::array<Samples, 2>, 5> m_Samples;
    math::matrix<double> m_InvA{2, 2};
    std::vector<math::matrix<double>> m_WantedUA;
    std::vector<math::matrix<double>> m_UA;
    std::uint32_t m_Status = 1;
};
