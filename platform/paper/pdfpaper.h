#pragma once
#include <chrono>
#include <memory>
#include <string>

#include "platform/paper/paper.h"

/// Sheets of A4 that become a PDF file: vectors, fonts embedded, text that can be searched. The same drawing
/// gives the same bytes.
class IFPdfPaper : public IFPagedPaper {
public:
    /// Ends the drawing. The result is the file's contents; empty if something has gone wrong.
    virtual std::vector<std::uint8_t> Finish() = 0;
};

/// The date is the one that the file tells of its making. A graphical application must be there, a display
/// need not.
std::unique_ptr<IFPdfPaper> MakePdfPaper(const std::string& rTitle, std::chrono::sys_seconds Date);
