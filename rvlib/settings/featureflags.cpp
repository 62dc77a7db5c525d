#include "rvlib/settings/featureflags.h"

#include "rvlib/settings/registry.h"
#include "rvlib/settings/xmlconfig.h"

bool IsFeatureEnabled(const std::string& rName, bool bDefault) {
    bool bEnabled = bDefault;
    CWKRegistry Key;
    std::uint32_t Value = 0;
    if (Key.Open(Registry::Root::eLocalMachine, "Software\\Corvane Metrology\\FeatureFlags",
                 Registry::Access::eQuery) &&
        Key.GetNumber(rName.c_str(), Value)) {
        bEnabled = Value != 0;
    }
    CRVXMLConfig Config;
    if (Config.Open()) {
        Config.GetBool("system_falconet", rName, &bEnabled);
    }
    return bEnabled;
}
