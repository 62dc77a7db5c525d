#pragma once
#include <string>
#include <vector>

#include "archive/report/reportdocument.h"
#include "archive/report/reportinput.h"

/// Readings before and after of a row of runs, on a logarithmic scale, for paper.
struct CTrendDrawing {
    std::vector<CReportTrendPoint> m_Points;  ///< oldest first
    std::string m_Description;
    std::string m_Before;  ///< words of the legend
    std::string m_Within;
    std::string m_Over;
    std::string m_FirstDate;
    std::string m_LastDate;
    std::string m_Unit;

    static CReportDrawing Make(CTrendDrawing Drawing);
};
