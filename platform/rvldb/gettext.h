#pragma once
#include <string>
#include <vector>

/// The text of a key in the language in use, UTF-8; the key itself if no language has it.
std::string GetText(const std::string& rKey);

/// Chooses a language by its code ("en", "de", also "de_AT"). False, and no change, if it isn't there.
/// Before the first call the language is that of the environment, English if that isn't there.
bool SetLanguage(const std::string& rCode);
/// Code of the language in use.
std::string GetLanguage();
std::vector<std::string> GetLanguages();
