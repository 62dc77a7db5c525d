#pragma once
#include <cstdint>

#include "archive/runrecord.h"

/// A run of two planes, weights and screws, in which no field has its default: what is lost on a way shows.
inline CRunRecord MakeArchivedRun() {
    const auto Fill = [](std::uint32_t nRows, std::uint32_t nColumns, double From) {
        math::matrix<double> Matrix(nRows, nColumns);
        for (std::uint32_t i = 0; i < nRows; ++i) {
            for (std::uint32_t j = 0; j < nColumns; ++j) {
                Matrix(i, j) = From + i * 0.1 + j / 3.0;
            }
        }
        return Matrix;
    };
    CRunRecord Record;
    Record.m_Started = std::chrono::sys_seconds(std::chrono::seconds(1790000000));
    Record.m_Ended = Record.m_Started + std::chrono::seconds(65);
    Record.m_Version = "1.2.3";
    Record.m_Machine = "9-Lanner-1";
    Record.m_Rotor = "wheel \"7\" <b>&'; DROP TABLE run; --";
    Record.m_Driver = CRunRecord::Driver::eNc;
    Record.m_bRebalance = true;
    Record.m_Family = "lanner";
    Record.m_Addresses = {9, 12};
    CRunSetup& rSetup = Record.m_Setup;
    rSetup.m_Configuration = "Scheibe äöü";
    rSetup.m_Mode = "two-plane";
    rSetup.m_bClockwise = false;
    rSetup.m_RpmTolerance = 51;
    rSetup.m_TargetUnbalance = 6;
    rSetup.m_nSamples = 41;
    rSetup.m_Planes[0] =
        CPlaneSetup{true, false, 18, 3, 2.5, "Rotor", {{"M6x12", 2.5}, {"M6x16", 1.0 / 3.0}}};
    rSetup.m_Planes[1] = CPlaneSetup{};
    rSetup.m_Planes[1]->m_bScaleClockwise = false;
    rSetup.m_InvA = Fill(4, 4, 0.1);
    rSetup.m_UA = {Fill(2, 1, 0.7), Fill(2, 1, -1e-17)};
    rSetup.m_Iso = CIsoData{12.5, 6000.0, 6.3, {45.0, 46.0}, {80.0, 81.0}};
    rSetup.m_Properties = R"({"name":"Scheibe äöü"})";
    for (const Measurement Which : {Measurement::eFirst, Measurement::eFinal}) {
        CRunMeasurement& rMeasurement = Record.m_Measurements.emplace_back();
        const auto Number = static_cast<double>(Record.m_Measurements.size());
        rMeasurement.m_Which = Which;
        rMeasurement.m_Time = static_cast<std::uint64_t>(Number * 10001);
        rMeasurement.m_MeanRpm = 3000.1 + Number;
        rMeasurement.m_MinRpm = 2999.0;
        rMeasurement.m_MaxRpm = 3002.0;
        for (std::size_t Plane = 0; Plane < 2; ++Plane) {
            CMeasuredPlane& rPlane = rMeasurement.m_Planes.at(Plane).emplace();
            rPlane.m_Smoothed = {30.0 / Number, 40.0 / Number};
            rPlane.m_Readings = {{1000, 29, -41}, {1050, 31, 32767}, {1101, -32768, 0}};
            rPlane.m_nReadings = 3;
            rPlane.m_Mean = {30.1, 39.9};
            rPlane.m_VarianceX = 1.5;
            rPlane.m_VarianceY = 1.0 / 7.0;
            rPlane.m_CovarianceXY = -0.25;
            if (Plane == 0) {
                rPlane.m_Fitted.m_Screws = {{1, 2.5}, {18, 1.0 / 3.0}};
            } else {
                rPlane.m_Fitted.m_Weights = {30, 359};
            }
        }
    }
    Record.m_Prediction[0] = CPlanePrediction{{1.25, -2.5}, 3.5, 4.5, 0.5, 2.8, 5.9};
    Record.m_Prediction[1] = CPlanePrediction{{-1.0, 1.0}, 0.1, 0.2, 0.05, 1.4, 2.9};
    Record.m_Warnings = {{4000, 3, "The module is not in lock."}, {4100, 8, "Über dem Ziel."}};
    Record.m_Calibration =
        CRunCalibration{3000, Fill(4, 4, 0.3), {Fill(2, 1, 0.9), Fill(2, 1, 1.9)}, {2.5, 3.5}};
    Record.m_State = CRunRecord::State::eFinished;
    Record.m_Result = "RebalOverTarget";
    Record.m_bSaved = true;
    return Record;
}
