#pragma once
#include <string>

#include "console/checkreport.h"
#include "console/databasefacts.h"

/// Looks at the store of a connection, "sqlite:PATH" or "postgresql://...", and changes nothing: neither a
/// missing file nor a missing table is made, and an older store stays as old as it is.
CCheckReport CheckDatabase(const std::string& rConnection);

/// What it rests on.
CDatabaseFacts LookAtStore(const std::string& rConnection);
