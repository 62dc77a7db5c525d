#pragma once
#include <string>

/// Text as it stands in HTML and SVG, between tags and in attributes. What is no UTF-8 must have been
/// replaced before.
std::string EscapeMarkup(const std::string& rText);
