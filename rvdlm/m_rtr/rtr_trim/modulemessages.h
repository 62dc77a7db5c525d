#pragma once
// Numbers of the messages between the module's own windows. Never renumber.
#include "platform/window/types.h"

constexpr UINT WM_RV_UPDATECONFIGURATION = 1224;  ///< load the named configuration
constexpr UINT WM_RV_PROCESSNAMECHANGED = 1225;
constexpr UINT WM_RV_SAVECONFIGURATION = 1226;
constexpr UINT WM_RV_UPDATETABS = 1227;         ///< wParam 1 with screws
constexpr UINT WM_RV_CALIBRATEDCHANGED = 1228;  ///< wParam calibrated
constexpr UINT WM_RV_UPDATESCREWTABLE = 1244;
constexpr UINT WM_RV_SCREWTABLENAMECHANGED = 1245;
constexpr UINT WM_RV_SAVESCREWTABLE = 1246;
constexpr UINT WM_RV_DBINITDONE = 9216;  ///< the module to itself
