#pragma once

/// "backup FILE": see CBackup.
int RunBackup(int argc, const char* const* argv);
/// "restore FILE [--yes]": see CBackup.
int RunRestore(int argc, const char* const* argv);
/// "service-bundle FILE": see servicebundle.h.
int RunServiceBundle(int argc, const char* const* argv);
