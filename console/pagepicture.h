#pragma once
#include <string>

class CConsoleSession;

/// Saves a picture of the page as it is now, under the moment's name, in rDirectory, which is made if need
/// be. Returns the file; empty if it can't be written.
std::string SavePagePicture(CConsoleSession& rSession, const std::string& rDirectory);
