#pragma once
#include <optional>
#include <string>
#include <vector>

#include "archive/report/reportdocument.h"
#include "archive/vectorstatistics.h"
#include "contract/measurement.h"

/// A polar plot of one plane's measurements, for paper: 0 degrees to the right and 90 upwards, as on the
/// page. What colours say, shapes and dashes say too.
struct CPolarDrawing {
    struct CStation {
        Measurement m_Which = Measurement::eNone;
        std::string m_Label;  ///< "First: 120 µm/s at 45°"
        CVectorReading m_Mean;
        std::optional<CEllipse> m_Ellipse;
    };
    std::string m_Title;
    std::string m_Description;
    double m_Target = 0.0;  ///< radius of its circle; 0: none
    std::string m_TargetLabel;
    std::vector<CStation> m_Stations;  ///< in the order of the path
    std::vector<CVectorReading> m_Readings;
    double m_Full = 0.0;  ///< at the rim

    static constexpr double WIDTH = 76.0;  ///< mm

    /// The reach of all that there is, and of the end only: target and last measurement.
    double GetReach() const;
    double GetEndReach() const;

    /// With a range that holds this reach.
    static CReportDrawing Make(CPolarDrawing Drawing, double Reach);
};
