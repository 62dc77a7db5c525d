#pragma once
#include <filesystem>
#include <string>

/// All texts of this program are in this language from now on, those of the toolkit's own dialogs and menus
/// included; windows that are open are told. False, and no change, if there is none of that code.
bool UseLanguage(const std::string& rCode);

/// The language that was chosen last in a window of this installation, by its code; empty if none was, or if
/// the file can't be read.
std::string ReadChosenLanguage(const std::filesystem::path& rConfigDirectory);
/// Keeps the choice. False if it can't be written.
bool WriteChosenLanguage(const std::filesystem::path& rConfigDirectory, const std::string& rCode);

/// What a language calls itself: "Deutsch".
std::string GetNativeName(const std::string& rCode);
/// The one behind the language in use, in the order of the codes; behind the last one the first.
std::string GetNextLanguage();
