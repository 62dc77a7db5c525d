#pragma once
#include <filesystem>

#include "console/checkreport.h"
#include "console/opcsetup.h"

/// Looks at the NC that an installation's opc.json names as a run would use it. Writes into no node, and
/// trusts no certificate for good. Takes 3 min at most, usually some seconds.
CCheckReport CheckNc(const std::filesystem::path& rConfigDirectory,
                     const std::string& rGatewayProgram = COpcSetup::GetDefaultGateway());
