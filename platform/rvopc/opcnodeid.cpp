#include "platform/rvopc/opcnodeid.h"

#include <algorithm>
#include <charconv>
#include <cstdint>

namespace {

template <typename T>
bool IsNumber(std::string_view Text) {
    T Number{};
    const auto [pEnd, Error] = std::from_chars(Text.data(), Text.data() + Text.size(), Number);
    return Error == std::errc() && pEnd == Text.data() + Text.size();
}

bool IsGuid(std::string_view Text) {
    constexpr std::string_view FORM = "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx";
    const auto Fits = [](char Character, char Expected) {
        constexpr std::string_view DIGITS = "0123456789abcdefABCDEF";
        return Expected == '-' ? Character == '-' : DIGITS.find(Character) != std::string_view::npos;
    };
    return std::ranges::equal(Text, FORM, Fits);
}

/// Padding may be left out; where it is, there is the right number of it.
bool IsBase64(std::string_view Text) {
    constexpr std::string_view DIGITS = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    constexpr std::size_t GROUP = 4;
    if (Text.size() % GROUP == 0) {
        for (int nPadding = 0; nPadding < 2 && Text.ends_with('='); ++nPadding) {
            Text.remove_suffix(1);
        }
    }
    return Text.find_first_not_of(DIGITS) == std::string_view::npos;
}

/// Takes "Key...;" off the front and tells what is between; without the key it tells nothing and takes
/// nothing.
std::string_view TakeNamespace(std::string_view Key, std::string_view& rText) {
    const std::size_t End = rText.find(';');
    if (!rText.starts_with(Key) || End == std::string_view::npos) {
        return {};
    }
    const std::string_view Namespace = rText.substr(Key.size(), End - Key.size());
    if (!Namespace.empty()) {
        rText.remove_prefix(End + 1);
    }
    return Namespace;
}

}  // namespace

bool IsOpcNodeId(std::string_view Text) {
    const std::string_view Index = TakeNamespace("ns=", Text);
    if (Index.empty()) {
        TakeNamespace("nsu=", Text);
    } else if (!IsNumber<std::uint16_t>(Index)) {
        return false;
    }
    constexpr std::size_t KIND_LENGTH = 2;
    if (Text.size() <= KIND_LENGTH || Text[1] != '=') {
        return false;
    }
    const std::string_view Identifier = Text.substr(KIND_LENGTH);
    switch (Text.front()) {
        case 's':
            return true;
        case 'i':
            return IsNumber<std::uint32_t>(Identifier);
        case 'g':
            return IsGuid(Identifier);
        case 'b':
            return IsBase64(Identifier);
        default:
            return false;
    }
}
