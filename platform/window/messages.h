#pragma once
// Numbers of the window messages. The numbers are a contract with hosts: never renumber.
#include "platform/window/types.h"

// Messages of the window layer itself.
constexpr UINT WM_CREATE = 1;
constexpr UINT WM_DESTROY = 2;
constexpr UINT WM_SIZE = 5;
constexpr UINT WM_PAINT = 15;
constexpr UINT WM_TIMER = 275;

// Host to module.
constexpr UINT WM_RV_RAWDATA_FIRST = 1035;  ///< 1035 to 1040: a received frame; all treated alike
constexpr UINT WM_RV_RAWDATA_LAST = 1040;
constexpr UINT WM_RV_INITWINDOW = 1045;         ///< wParam module address, lParam bit field
constexpr UINT WM_RV_MODULEACTION = 1058;       ///< wParam action, lParam flag
constexpr UINT WM_RV_DESTROYPENDING = 1088;     ///< the host is about to destroy the window
constexpr UINT WM_RV_PREBALANCINGSTATE = 1123;  ///< wParam wanted state
constexpr UINT WM_RV_QUERYPROGRESS = 1150;      ///< lParam a CPreBalProgress to fill (prebalprogress.h)
constexpr UINT WM_RV_DBINITDONE = 9216;         ///< the module to itself

// Module to host.
constexpr UINT WM_RV_HELPORMENU = 1065;         ///< wParam 111 or 127, lParam 0 or 1
constexpr UINT WM_RV_SETMENU = 1075;            ///< wParam menu number, -1 for none
constexpr UINT WM_RV_SOFTKEYENABLE = 1122;      ///< wParam mask, lParam values of the masked bits
constexpr UINT WM_RV_BALANCINGACTIVITY = 1124;  ///< wParam 0 configuration, 1 pre-, 2 re-balancing

// Within the module.
constexpr UINT WM_RV_MESSAGEWND = 1066;           ///< foreign thread to window thread
constexpr UINT WM_RV_UPDATECONFIGURATION = 1224;  ///< load the named configuration
constexpr UINT WM_RV_PROCESSNAMECHANGED = 1225;
constexpr UINT WM_RV_SAVECONFIGURATION = 1226;
constexpr UINT WM_RV_UPDATETABS = 1227;         ///< wParam 1 with screws
constexpr UINT WM_RV_CALIBRATEDCHANGED = 1228;  ///< wParam calibrated
constexpr UINT WM_RV_UPDATESCREWTABLE = 1244;
constexpr UINT WM_RV_SCREWTABLENAMECHANGED = 1245;
constexpr UINT WM_RV_SAVESCREWTABLE = 1246;

/// Code of rvCOM::Notify: deliver frames of an address to a window.
constexpr UINT RV_NOTIFY_RAWDATA = 1008;
