#pragma once
#include <memory>
#include <string>

#include "platform/help/compiledhelp.h"

/// The compiled help files that were read last, so that a page or a picture of one needn't unpack it again.
/// On the window thread.
namespace HelpShelf {

/// The file as it is now: read anew when it has changed, or wasn't there before. Never null.
std::shared_ptr<const CCompiledHelp> Take(const std::string& rFile);

}  // namespace HelpShelf
