#pragma once

/// "simulator ...": the rotor simulator takes the place of this process. Returns only if it can't be
/// started.
int RunSimulatorProgram(int argc, const char* const* argv);
/// "nc ...": the same with the NC simulator.
int RunNcProgram(int argc, const char* const* argv);
