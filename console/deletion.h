#pragma once
#include <string>

class CConsoleSession;
struct CShownConfiguration;

/// Deletes the configuration, or the screw table, that was shown. Returns why it is still there; empty if it
/// is gone, and the page reads anew what it shows.
std::string DeleteShown(CConsoleSession& rSession, const CShownConfiguration& rShown, bool bTable);
