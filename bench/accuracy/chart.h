#pragma once
#include <optional>
#include <string>
#include <vector>

#include "platform/paper/paper.h"

/// One axis of a plot.
struct CChartAxis {
    std::string m_Label;  ///< with its unit
    double m_Low = 0.0;
    double m_High = 1.0;
    std::vector<double> m_Marks;
    bool m_bLogarithmic = true;

    /// Place of a value, 0 to 1.
    double GetPlace(double Value) const;
};

/// Curves over two axes. What colours say, dashes say too.
struct CLineChart {
    struct CCurve {
        std::string m_Name;
        std::vector<CPaperPoint> m_Points;  ///< values
        CPaperPen m_Pen;
        bool m_bMarks = false;  ///< a dot at each point
    };
    std::string m_Title;
    CChartAxis m_X;
    CChartAxis m_Y;
    std::vector<CCurve> m_Curves;

    /// A whole SVG file.
    std::string Draw() const;
};

/// Cells in colours, with their numbers: a quantity over two others.
struct CMapChart {
    struct CCell {
        std::optional<double> m_Value;  ///< in percent; nothing: crossed out
        std::string m_Note;             ///< below the number
    };
    std::string m_Title;
    std::string m_LabelX;
    std::string m_LabelY;
    std::string m_Legend;
    std::vector<std::string> m_Columns;
    std::vector<std::string> m_Rows;          ///< from the bottom
    std::vector<std::vector<CCell>> m_Cells;  ///< by row, from the bottom
    std::vector<std::string> m_Comments;      ///< below the plot

    std::string Draw() const;
};

/// A number in as few digits as tell it: "0.05", "3.4", "120".
std::string WriteShort(double Value);
