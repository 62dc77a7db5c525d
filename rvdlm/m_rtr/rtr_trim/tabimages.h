#pragma once
#include "platform/window/imagelist.h"

/// The small pictures on the tabs of the configuration.
namespace TabImages {

enum Image { eSettings = 0, eScrewTable = 1, eHelp = 2 };
constexpr int WIDTH = 16;

CImageList Make();

}  // namespace TabImages
