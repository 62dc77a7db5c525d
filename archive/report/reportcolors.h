#pragma once
#include "platform/paper/paper.h"

/// What the drawings of a report are painted in. Dark enough to be told apart in black and white.
namespace ReportColors {

inline constexpr CPaperColor INK{0x1A, 0x1A, 0x1A};
inline constexpr CPaperColor GRID{0xBB, 0xBB, 0xBB};
inline constexpr CPaperColor PALE{0x70, 0x70, 0x70};
inline constexpr CPaperColor GREEN{0x00, 0x68, 0x38};
inline constexpr CPaperColor BLUE{0x00, 0x38, 0x68};
inline constexpr CPaperColor RED{0xCE, 0x00, 0x00};
inline constexpr CPaperColor WHITE{0xFF, 0xFF, 0xFF};

}  // namespace ReportColors
