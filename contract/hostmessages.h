#pragma once
// Numbers of the messages between the host and the module's window. Never renumber.
#include <cstdint>

// Host to module.
constexpr std::uint32_t WM_RV_RAWDATA_FIRST = 1035;  ///< 1035 to 1040: a received frame; all treated alike
constexpr std::uint32_t WM_RV_RAWDATA_LAST = 1040;
constexpr std::uint32_t WM_RV_INITWINDOW =
    1045;  ///< wParam module address, lParam a CInitFlags (initflags.h)
constexpr std::uint32_t WM_RV_MODULEACTION = 1058;    ///< wParam action, lParam flag (actions.h)
constexpr std::uint32_t WM_RV_DESTROYPENDING = 1088;  ///< the host is about to destroy the window
constexpr std::uint32_t WM_RV_PREBALANCINGSTATE =
    1123;  ///< wParam wanted state: 0 configuration, 1 pre-, 2 re-balancing
constexpr std::uint32_t WM_RV_QUERYPROGRESS = 1152;  ///< lParam a CPreBalProgress to fill (prebalprogress.h)
/// Somebody has written to the store: what the page shows is to be read anew. A running procedure has its
/// configuration in hand, and reads it anew at its end anyway. Answer 1 if it was read, else 0.
constexpr std::uint32_t WM_RV_STORECHANGED = 1153;
constexpr std::uint32_t WM_RV_QUERYCONFIGURATION =
    1154;  ///< lParam a CShownConfiguration to fill (shownconfiguration.h)
constexpr std::uint32_t WM_RV_LANGUAGECHANGED =
    1155;  ///< every text is to be shown in the language in use now
constexpr std::uint32_t WM_RV_QUERYREADINGS =
    1156;  ///< lParam a CArrivedReadings to fill (arrivedreadings.h)

// Module to host.
constexpr std::uint32_t WM_RV_HELPORMENU = 1065;  ///< wParam page (pages.h), lParam 0 or 1
constexpr std::uint32_t WM_RV_SETMENU = 1075;     ///< wParam menu number (menus.h), -1 for none
constexpr std::uint32_t WM_RV_SOFTKEYENABLE =
    1122;  ///< wParam mask (softkeymask.h), lParam values of the masked bits
constexpr std::uint32_t WM_RV_BALANCINGACTIVITY = 1124;  ///< wParam 0 configuration, 1 pre-, 2 re-balancing
constexpr std::uint32_t WM_RV_RESULTSAVED = 1151;  ///< a result was to be saved: wParam 1 it is, 0 it isn't
