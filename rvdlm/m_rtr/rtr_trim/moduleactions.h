#pragma once

/// Actions of message 1058 that mean something to the window or its pages. Those that are keys of a procedure
/// stand in the table of mainwndactions.cpp.
enum ModuleAction : int {
    eActionNextTab = 1,
    eActionStart = 102,  ///< saves the configuration and starts a pre-balancing
    eActionSave = 103,
    eActionRebalance = 4499,
    eActionTerminate = 4501,
    eActionTerminateAlso = 4510,
};
