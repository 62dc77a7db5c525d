#pragma once
#include <functional>
#include <string>

#include "tests/windows/windowstage.h"

/// Called in each state of the window, with a name for its files.
using WindowVisitor = std::function<void(const std::string& rState, CWindowStage& rStage)>;

/// Brings a window through all the states that an operator meets, and shows each to the visitor.
/// rModuleLibrary empty: beside the program.
void VisitWindowStates(const std::string& rModuleLibrary, const WindowVisitor& rVisit);
