#pragma once

/// Units that page, host and configuration show for the same values.
namespace Units {

/// Of readings and of the target: what a module's counts are called.
inline constexpr const char* UNBALANCE = "µm/s";

}  // namespace Units
