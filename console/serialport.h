#pragma once
#include <string>

#include "console/linkfacts.h"

/// Looks at a serial port before it is opened, and says why it couldn't be: with what the system tells, which
/// is more than whoever fails to open it learns. Fills in trouble, its text, group and holder; eNone if there
/// is nothing against it.
void LookAtSerialPort(const std::string& rPath, CLinkFacts& rFacts);

/// The program that has a device open, for people, "console (process 4711)"; empty if that can't be told,
/// which needs the same user, or root.
std::string FindHolder(const std::string& rPath);
