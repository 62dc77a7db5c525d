#pragma once
#include <cstdint>
#include <functional>
#include <string>
#include <variant>
#include <vector>

#include "platform/paper/paper.h"

/// A report for people as it is to be read, whether on a page of HTML or on sheets of paper: blocks one below
/// the other. All texts are in the language of the reader, and clean (reporttext.h).

struct CReportHeading {
    std::string m_Text;
    bool m_bNewPage = false;  ///< on paper
};

struct CReportParagraph {
    enum class Kind : std::uint8_t { ePlain, eGood, eBad, eWarning, eNote };
    std::string m_Text;
    Kind m_Kind = Kind::ePlain;
};

/// Cells of the first column name their row. Without a header it is a list of names and values.
struct CReportTable {
    std::vector<std::string> m_Header;
    std::vector<std::vector<std::string>> m_Rows;
    std::string m_Caption;
};

struct CReportDrawing {
    double m_Width = 0.0;  ///< mm
    double m_Height = 0.0;
    std::string m_Description;  ///< for people who don't see it
    /// From the top left corner.
    std::function<void(IFPaper&)> m_Paint;
};

/// Side by side.
struct CReportDrawings {
    std::vector<CReportDrawing> m_Drawings;
    std::string m_Caption;
};

struct CReportPicture {
    std::vector<std::uint8_t> m_Png;
    double m_Width = 0.0;  ///< mm
    double m_Height = 0.0;
    std::string m_Caption;
};

/// Lines to write on, with a word below each.
struct CReportSignature {
    std::vector<std::string> m_Words;
};

using CReportBlock = std::variant<CReportHeading, CReportParagraph, CReportTable, CReportDrawings,
                                  CReportPicture, CReportSignature>;

struct CReportDocument {
    std::string m_Title;
    std::string m_Subtitle;
    std::string m_Language;    ///< its code
    std::string m_Footer;      ///< at the foot of each sheet
    std::string m_PageFormat;  ///< "Page %s of %s"
    std::vector<CReportBlock> m_Blocks;
};
