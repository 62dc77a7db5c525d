#pragma once

/// "run check --link LINK | --nc | --database": looks at what a run needs, and says what is wrong and what to
/// do.
int RunCheckCommand(int argc, const char* const* argv);
