#pragma once
#include <filesystem>

#include "console/installation.h"

/// Puts the compiled help into the installation, where the module looks for it: those files that aren't there
/// yet, or are other ones there. rFrom: the directory with those that belong to this program. What can't be
/// written is left out; the help pane says then what is missing.
void ProvideHelp(const CConsoleInstallation& rInstallation, const std::filesystem::path& rFrom);

/// Where the build and a package put them: beside the program.
std::filesystem::path GetHelpOfProgram();
