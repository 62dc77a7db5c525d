#pragma once
#include "rvdlm/m_rtr/rtr_trim/communication/iftocommunication.h"

/// One Kestrel or Saker module as CPlaneHandler sees it: the same operations with the same meanings as the
/// main window's view, but of a single module. There is no mapper for Saker modules yet; the name keeps its
/// place.
class IFToKestrelSaker : public IFToCommunication {};
