#pragma once

/// "run database copy FROM TO", "run database prepare STORE".
int RunDatabaseCommand(int argc, const char* const* argv);
