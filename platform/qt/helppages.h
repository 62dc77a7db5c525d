#pragma once
#include <QString>
#include <memory>

#include "platform/help/compiledhelp.h"

/// The pages that the viewer makes itself from a compiled help: table of contents, index, what a search has
/// found. All as HTML with links "chm:/page"; in the language of GetText.
namespace HelpPages {

QString MakeContents(const CCompiledHelp& rHelp);
QString MakeIndex(const CCompiledHelp& rHelp);
/// A page with one line, for what is missing.
QString MakeLine(const QString& rLine);

/// The pages that hold all of the words, anywhere and in any case, those with a word in the title first.
QString MakeFound(const CCompiledHelp& rHelp, const QString& rWords);

}  // namespace HelpPages
