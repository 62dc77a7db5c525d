#include "platform/system/version.h"

const char* GetProjectVersion() {
    return ROTOR_TRIM_VERSION;
}
