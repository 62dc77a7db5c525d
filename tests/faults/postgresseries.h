#pragma once
#include <string>

#include "tests/faults/faultseries.h"

/// Databases of its own on the server that the URL names, of a role that may make some. Directory: of the
/// server's cluster, in which its process is found; for the kind "server", which stops it: somebody must
/// start it again, as tools/with_postgresql.sh does.
CFaultSeries::CServer MakePostgresServer(const std::string& rUrl, const std::string& rDirectory);
