#pragma once
#include <cstdint>

/// The measurements of a procedure. Those with test weights are numbered by their legs: the second one
/// belongs to the second plane of a procedure with two. A re-balancing has the first and the final one only.
enum class Measurement : std::uint8_t { eNone, eFirst, eTest1, eTest2, eFinal };
