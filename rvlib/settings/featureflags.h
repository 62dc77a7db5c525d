#pragma once
#include <string>

/// Whether a feature is switched on: bDefault, overridden by the registry's feature flags, overridden by the
/// settings document (section "system_falconet").
bool IsFeatureEnabled(const std::string& rName, bool bDefault);
