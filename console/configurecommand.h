#pragma once

/// "run configure list|show|set|export|import": configurations, screw tables and ISO data of the machines in
/// the store, or of the module found on a line.
int RunConfigure(int argc, const char* const* argv);
