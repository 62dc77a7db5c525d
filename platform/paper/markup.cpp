#include "platform/paper/markup.h"

std::string EscapeMarkup(const std::string& rText) {
    std::string Escaped;
    for (const char c : rText) {
        switch (c) {
            case '&':
                Escaped += "&amp;";
                break;
            case '<':
                Escaped += "&lt;";
                break;
            case '>':
                Escaped += "&gt;";
                break;
            case '"':
                Escaped += "&quot;";
                break;
            case '\'':
                Escaped += "&#39;";
                break;
            default:
                Escaped += c;
        }
    }
    return Escaped;
}
