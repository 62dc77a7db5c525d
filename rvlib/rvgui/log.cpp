#include "rvlib/rvgui/log.h"

namespace Gui {

CLogComponent* g_pLog = CLogComponent::Register("GUI_toolkit", {{"Envelope", ENVELOPE_TOPIC}});

}  // namespace Gui
