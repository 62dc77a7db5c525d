#pragma once
#include <cstdint>

/// The rate in baud that a terminal sends with; 0 if the descriptor is none. On the master side of a pseudo
/// terminal: the one that its other side is set to. Rates beyond the usual ones are told as well.
std::uint32_t GetLineSpeed(int Descriptor);
