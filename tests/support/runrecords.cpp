#include "tests/support/runrecords.h"

#include <chrono>
#include <cmath>
#include <numbers>

namespace RunRecords {

namespace {

constexpr std::uint64_t SECOND = 1000;

math::matrix<double> MakeVector(Complex z) {
    math::matrix<double> Vector(2, 1);
    Vector(0, 0) = z.real();
    Vector(1, 0) = z.imag();
    return Vector;
}

CPlaneFitting Weights(int First, int Second) {
    return {{First, Second}, {}};
}

CPlaneFitting Screws(std::vector<CFittedScrew> Fitted) {
    return {{}, std::move(Fitted)};
}

CRunMeasurement MakeMeasurement(Measurement Which, std::uint64_t Time, std::vector<Complex> Readings,
                                std::vector<CPlaneFitting> Fitted) {
    CRunMeasurement Measurement;
    Measurement.m_Which = Which;
    Measurement.m_Time = Time;
    Measurement.m_MeanRpm = 3000.2;
    Measurement.m_MinRpm = 2999.0;
    Measurement.m_MaxRpm = 3001.0;
    for (std::size_t i = 0; i < Readings.size(); ++i) {
        Measurement.m_Planes.at(i) = MakePlane(Readings[i]);
        Measurement.m_Planes.at(i)->m_Fitted = Fitted[i];
    }
    return Measurement;
}

CRunRecord MakeCommon() {
    CRunRecord Record;
    Record.m_Id = 17;
    Record.m_Started = std::chrono::sys_days(std::chrono::year(2026) / 3 / 14) + std::chrono::hours(9) +
                       std::chrono::minutes(26);
    Record.m_Ended = Record.m_Started + std::chrono::seconds(95);
    Record.m_Version = "0.9.0";
    Record.m_Machine = "0#1#255-0-486107-930938880-1";
    Record.m_Rotor = "Spindle 12, wheel 400";
    Record.m_Family = "kestrel";
    Record.m_Addresses = {5};
    Record.m_Setup.m_Configuration = "Default";
    Record.m_Setup.m_Mode = "plane1";
    Record.m_Setup.m_bClockwise = false;
    Record.m_Setup.m_RpmTolerance = 10;
    Record.m_Setup.m_TargetUnbalance = 5;
    Record.m_Setup.m_nSamples = 100;
    Record.m_State = CRunRecord::State::eFinished;
    Record.m_Result = "SetupSuccess";
    Record.m_bSaved = true;
    return Record;
}

CPlaneSetup MakeScrewSetup() {
    CPlaneSetup Setup;
    Setup.m_bScrews = true;
    Setup.m_nHoles = 12;
    Setup.m_nScrews = 2;
    Setup.m_TableName = "Rotor";
    Setup.m_Table = {{"M6x8", 1.0}, {"M6x12", 2.5}, {"M6x16", 4.0}};
    return Setup;
}

CPlanePrediction MakePrediction(double Amplitude, double AtMost) {
    CPlanePrediction Prediction;
    Prediction.m_Reading = {Amplitude, 0.0};
    Prediction.m_VarianceX = Prediction.m_VarianceY = 0.2;
    Prediction.m_Amplitude = Amplitude;
    Prediction.m_AtMost95 = AtMost;
    return Prediction;
}

}  // namespace

math::matrix<double> MakeBlocks(const std::vector<std::vector<Complex>>& rBlocks) {
    const auto n = static_cast<std::uint32_t>(rBlocks.size());
    math::matrix<double> Matrix(2 * n, 2 * n);
    for (std::uint32_t i = 0; i < n; ++i) {
        for (std::uint32_t j = 0; j < n; ++j) {
            const Complex z = rBlocks[i][j];
            Matrix(2 * i, 2 * j) = Matrix(2 * i + 1, 2 * j + 1) = z.real();
            Matrix(2 * i, 2 * j + 1) = -z.imag();
            Matrix(2 * i + 1, 2 * j) = z.imag();
        }
    }
    return Matrix;
}

Complex FromPolar(double Amplitude, double AngleDeg) {
    return std::polar(Amplitude, AngleDeg * std::numbers::pi / 180.0);
}

CMeasuredPlane MakePlane(Complex Mean, std::size_t nReadings, double Radius) {
    CMeasuredPlane Plane;
    Plane.m_Smoothed = Plane.m_Mean = {Mean.real(), Mean.imag()};
    Plane.m_nReadings = nReadings;
    const double n = static_cast<double>(nReadings);
    if (nReadings > 1) {
        Plane.m_VarianceX = Plane.m_VarianceY = Radius * Radius / 2.0 * n / (n - 1.0);
        Plane.m_CovarianceXY = 0.3 * Plane.m_VarianceX;
    }
    for (std::size_t i = 0; i < nReadings; ++i) {
        const Complex Reading =
            Mean + std::polar(Radius, 2.0 * std::numbers::pi * static_cast<double>(i) / n);
        Plane.m_Readings.push_back({static_cast<std::uint32_t>(50 * i),
                                    static_cast<std::int16_t>(std::lround(Reading.real())),
                                    static_cast<std::int16_t>(std::lround(Reading.imag()))});
    }
    return Plane;
}

CRunRecord MakeWeights() {
    CRunRecord Record = MakeCommon();
    Record.m_Setup.m_Planes[0] = CPlaneSetup();
    Record.m_Measurements = {
        MakeMeasurement(Measurement::eFirst, 12 * SECOND, {FromPolar(120.3, 75.0)}, {Weights(0, 180)}),
        MakeMeasurement(Measurement::eTest1, 41 * SECOND, {FromPolar(71.0, 138.0)}, {Weights(30, 150)}),
        MakeMeasurement(Measurement::eFinal, 88 * SECOND, {FromPolar(1.2, 210.0)}, {Weights(64, 191)})};
    Record.m_Calibration = CRunCalibration{
        3000, MakeBlocks({{1.0 / FromPolar(150.0, 40.0)}}), {MakeVector(FromPolar(0.802, 232.1))}};
    Record.m_Prediction[0] = MakePrediction(0.9, 2.9);
    Record.m_Setup.m_Iso = {12.0, 6000.0, 6.3, {45.0, 0.0}, {}};
    return Record;
}

CRunRecord MakeScrews() {
    CRunRecord Record = MakeCommon();
    Record.m_Setup.m_Planes[0] = MakeScrewSetup();
    Record.m_Setup.m_Planes[0]->m_bScaleClockwise = false;
    Record.m_Measurements = {
        MakeMeasurement(Measurement::eFirst, 12 * SECOND, {FromPolar(84.0, 300.0)}, {Screws({})}),
        MakeMeasurement(Measurement::eTest1, 41 * SECOND, {FromPolar(61.0, 338.0)}, {Screws({{1, 2.5}})}),
        MakeMeasurement(Measurement::eFinal, 88 * SECOND, {FromPolar(7.4, 31.0)},
                        {Screws({{2, 4.0}, {5, 1.0}})})};
    Record.m_Calibration = CRunCalibration{
        3000, MakeBlocks({{1.0 / FromPolar(52.0, 10.0)}}), {MakeVector(FromPolar(1.62, 110.0))}};
    Record.m_Result = "SetupOverTarget";
    return Record;
}

CRunRecord MakePublishedTwoPlane() {
    CRunRecord Record = MakeCommon();
    Record.m_Setup.m_Mode = "two-plane";
    Record.m_Setup.m_Planes = {MakeScrewSetup(), MakeScrewSetup()};
    Record.m_Setup.m_Planes[1]->m_bScaleClockwise = false;
    constexpr double MASS = 1.15;
    const Complex V0[] = {FromPolar(170, 112), FromPolar(53, 78)};
    const Complex V1[] = {FromPolar(235, 94), FromPolar(58, 68)};
    const Complex V2[] = {FromPolar(189, 115), FromPolar(77, 104)};
    // Influence in counts per gram; the unit of the module's figures is the test screw.
    const Complex A11 = V1[0] - V0[0];
    const Complex A21 = V1[1] - V0[1];
    const Complex A12 = V2[0] - V0[0];
    const Complex A22 = V2[1] - V0[1];
    const Complex Det = A11 * A22 - A12 * A21;
    const Complex I11 = A22 / Det;
    const Complex I12 = -A12 / Det;
    const Complex I21 = -A21 / Det;
    const Complex I22 = A11 / Det;
    const CPlaneFitting None = Screws({});
    const CPlaneFitting Test = Screws({{1, MASS}});
    Record.m_Measurements = {
        MakeMeasurement(Measurement::eFirst, 12 * SECOND, {V0[0], V0[1]}, {None, None}),
        MakeMeasurement(Measurement::eTest1, 41 * SECOND, {V1[0], V1[1]}, {Test, None}),
        MakeMeasurement(Measurement::eTest2, 70 * SECOND, {V1[0] + V2[0] - V0[0], V1[1] + V2[1] - V0[1]},
                        {Test, Test}),
        MakeMeasurement(Measurement::eFinal, 99 * SECOND, {FromPolar(4.1, 20), FromPolar(2.2, 250)},
                        {Screws({{9, 1.956}}), Screws({{5, 1.073}})})};
    Record.m_Calibration =
        CRunCalibration{3000,
                        MakeBlocks({{I11, I12}, {I21, I22}}),
                        {MakeVector(-(I11 * V0[0] + I12 * V0[1])), MakeVector(-(I21 * V0[0] + I22 * V0[1]))}};
    Record.m_Prediction = {MakePrediction(3.0, 6.5), MakePrediction(1.8, 4.0)};
    Record.m_Setup.m_Iso = {30.0, 3000.0, 6.3, {120.0, 120.0}, {200.0, 300.0}};
    return Record;
}

CRunRecord MakePublishedSinglePlane(Complex First, double Mass, Complex Test) {
    CRunRecord Record = MakeCommon();
    Record.m_Setup.m_Planes[0] = MakeScrewSetup();
    const Complex Alpha = Test - First;
    Record.m_Measurements = {
        MakeMeasurement(Measurement::eFirst, 12 * SECOND, {First}, {Screws({})}),
        MakeMeasurement(Measurement::eTest1, 41 * SECOND, {Test}, {Screws({{1, Mass}})})};
    Record.m_Calibration = CRunCalibration{3000, MakeBlocks({{1.0 / Alpha}}), {MakeVector(-First / Alpha)}};
    return Record;
}

CRunRecord MakeBrokenOff() {
    CRunRecord Record = MakeWeights();
    Record.m_Measurements.resize(1);
    Record.m_Calibration.reset();
    Record.m_Prediction = {};
    Record.m_State = CRunRecord::State::eBrokenOff;
    Record.m_Result = "Setup";
    Record.m_bSaved = false;
    return Record;
}

CRunRecord MakeFailed() {
    CRunRecord Record = MakeWeights();
    Record.m_Measurements.resize(2);
    Record.m_Calibration.reset();
    Record.m_Prediction = {};
    Record.m_State = CRunRecord::State::eFailed;
    Record.m_Result = "Failure";
    Record.m_bSaved = false;
    Record.m_Warnings = {{41 * SECOND, 4, "Test weights have too little effect"}};
    return Record;
}

}  // namespace RunRecords
