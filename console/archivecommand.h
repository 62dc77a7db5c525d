#pragma once

/// "archive list | show | report | export | prune | restore-calibration": the runs that are kept.
int RunArchiveCommand(int argc, const char* const* argv);
