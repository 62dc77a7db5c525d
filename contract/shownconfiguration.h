#pragma once
#include <string>

/// The configuration that the module has in hand, for the host: its head line, its report, its service
/// functions. Filled by the module's window on message WM_RV_QUERYCONFIGURATION with a pointer to this in
/// lParam; the message answers 1 when there is one, else 0 with the record unchanged.
struct CShownConfiguration {
    std::string m_Machine;     ///< key of its database
    std::string m_Name;        ///< as it is stored, also while another name is being typed
    std::string m_ScrewTable;  ///< the one on the page of screw tables; empty before there is one
    bool m_bCalibrated = false;
};
