#pragma once
#include <string>

#include "archive/isodata.h"

/// What is known of the rotors, from the store of the installation and into it.
namespace IsoAccess {

/// Values of 0 if nothing is known, or the store can't be read.
CIsoData Read(const std::string& rMachine, const std::string& rConfiguration);
/// Why it wasn't written, in the language in use; empty if it was.
std::string Write(const std::string& rMachine, const std::string& rConfiguration, const CIsoData& rData);

}  // namespace IsoAccess
