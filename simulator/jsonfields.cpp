#include "simulator/jsonfields.h"

#include <algorithm>
#include <limits>
#include <set>
#include <sstream>
#include <vector>

using nlohmann::json;

namespace {

std::string Shorten(std::string Text, std::size_t nMax) {
    if (Text.size() > nMax) {
        Text.resize(nMax);
        Text += "...";
    }
    return Text;
}

/// A value as it is quoted in a message: short, and valid text whatever it holds. Lists and objects aren't
/// written out: writing recurses, and they may be nested as deeply as a peer likes.
std::string Quote(const json& rValue) {
    constexpr std::size_t MAX_QUOTED = 60;
    if (rValue.is_array()) {
        return "an array of " + std::to_string(rValue.size());
    }
    if (rValue.is_object()) {
        return "an object";
    }
    return Shorten(rValue.dump(-1, ' ', true, json::error_handler_t::replace), MAX_QUOTED);
}

/// Why a text is no JSON, without the library's own numbering, and without all that it quotes.
std::string GetReason(const json::exception& rException) {
    constexpr std::size_t MAX_REASON = 200;
    const std::string_view What = rException.what();
    const std::size_t nBegin = What.find("] ");
    return Shorten(std::string(nBegin == std::string_view::npos ? What : What.substr(nBegin + 2)),
                   MAX_REASON);
}

std::string ToText(double Value) {
    std::ostringstream Stream;
    Stream.precision(10);
    Stream << Value;
    return Stream.str();
}

template <typename Items>
std::string Join(const Items& rItems) {
    std::string Text;
    for (std::string_view Item : rItems) {
        Text += (Text.empty() ? "" : ", ") + std::string(Item);
    }
    return Text;
}

std::string Size(std::size_t nMin, std::size_t nMax) {
    if (nMin == nMax) {
        return std::to_string(nMin);
    }
    return std::to_string(nMin) + " to " + std::to_string(nMax);
}

}  // namespace

json ParseJson(std::string_view Text, bool bComments) {
    std::vector<std::set<std::string>> Names;  // of the objects that are open
    const auto Check = [&Names](int /*nDepth*/, json::parse_event_t Event, const json& rParsed) {
        if (Event == json::parse_event_t::object_start) {
            Names.emplace_back();
        } else if (Event == json::parse_event_t::object_end) {
            Names.pop_back();
        } else if (Event == json::parse_event_t::key &&
                   !Names.back().insert(rParsed.get<std::string>()).second) {
            throw CJsonError("field " + Quote(rParsed) + " stands twice in one object");
        }
        return true;
    };
    constexpr bool ALLOW_EXCEPTIONS = true;
    try {
        return json::parse(Text, Check, ALLOW_EXCEPTIONS, bComments);
    } catch (const json::exception& rException) {
        throw CJsonError("not valid JSON: " + GetReason(rException));
    }
}

CJsonFields::CJsonFields(const json& rValue, std::string Path, Names Known)
    : m_rValue(rValue), m_Path(std::move(Path)) {
    if (!rValue.is_object()) {
        Refuse(m_Path.empty() ? "the whole" : m_Path,
               Known.empty() ? "an empty object, {}" : "an object with the fields " + Join(Known), rValue);
    }
    for (const auto& [Name, Value] : rValue.items()) {
        if (std::find(Known.begin(), Known.end(), Name) == Known.end()) {
            throw CJsonError("unknown field " + Quote(GetPath(Name)) +
                             ", known here: " + (Known.empty() ? "none" : Join(Known)));
        }
    }
}

bool CJsonFields::Has(std::string_view Name) const {
    return Get(Name) != nullptr;
}

void CJsonFields::Require(std::string_view Name) const {
    if (!Has(Name)) {
        throw CJsonError(GetPath(Name) + " is missing");
    }
}

double CJsonFields::GetNumber(std::string_view Name, double Default, double Min, double Max) const {
    const json* pValue = Get(Name);
    return (pValue == nullptr) ? Default : ToNumber(*pValue, GetPath(Name), Min, Max);
}

std::int64_t CJsonFields::GetInteger(std::string_view Name, std::int64_t Default, std::int64_t Min,
                                     std::int64_t Max) const {
    const json* pValue = Get(Name);
    return (pValue == nullptr) ? Default : ToInteger(*pValue, GetPath(Name), Min, Max);
}

std::uint64_t CJsonFields::GetUnsigned(std::string_view Name, std::uint64_t Default) const {
    const json* pValue = Get(Name);
    if (pValue == nullptr) {
        return Default;
    }
    if (!pValue->is_number_unsigned()) {
        Refuse(GetPath(Name), "a whole number of 0 or more", *pValue);
    }
    return pValue->get<std::uint64_t>();
}

bool CJsonFields::GetBool(std::string_view Name, bool bDefault) const {
    const json* pValue = Get(Name);
    if (pValue == nullptr) {
        return bDefault;
    }
    if (!pValue->is_boolean()) {
        Refuse(GetPath(Name), "true or false", *pValue);
    }
    return pValue->get<bool>();
}

std::string CJsonFields::GetText(std::string_view Name, const std::string& rDefault, std::size_t nMax) const {
    const json* pValue = Get(Name);
    if (pValue == nullptr) {
        return rDefault;
    }
    if (!pValue->is_string() || pValue->get_ref<const std::string&>().size() > nMax) {
        Refuse(GetPath(Name), "a text of up to " + std::to_string(nMax) + " bytes", *pValue);
    }
    return pValue->get<std::string>();
}

std::size_t CJsonFields::GetChoice(std::string_view Name, std::size_t nDefault, Names Choices) const {
    const json* pValue = Get(Name);
    return (pValue == nullptr) ? nDefault : ToChoice(*pValue, GetPath(Name), Choices);
}

const json* CJsonFields::GetArray(std::string_view Name, std::size_t nMin, std::size_t nMax) const {
    const json* pValue = Get(Name);
    return (pValue == nullptr) ? nullptr : &ToArray(*pValue, GetPath(Name), nMin, nMax);
}

const json* CJsonFields::Get(std::string_view Name) const {
    const auto Found = m_rValue.find(Name);
    return (Found == m_rValue.end()) ? nullptr : &*Found;
}

std::string CJsonFields::GetPath(std::string_view Name) const {
    return m_Path.empty() ? std::string(Name) : m_Path + "." + std::string(Name);
}

double CJsonFields::ToNumber(const json& rValue, const std::string& rPath, double Min, double Max) {
    const double Number =
        rValue.is_number() ? rValue.get<double>() : std::numeric_limits<double>::quiet_NaN();
    if (!(Number >= Min && Number <= Max)) {
        Refuse(rPath, "a number from " + ToText(Min) + " to " + ToText(Max), rValue);
    }
    return Number;
}

std::int64_t CJsonFields::ToInteger(const json& rValue, const std::string& rPath, std::int64_t Min,
                                    std::int64_t Max) {
    constexpr auto LARGEST = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    const bool bWhole = rValue.is_number_integer() &&
                        (!rValue.is_number_unsigned() || rValue.get<std::uint64_t>() <= LARGEST);
    if (!bWhole || rValue.get<std::int64_t>() < Min || rValue.get<std::int64_t>() > Max) {
        Refuse(rPath, "a whole number from " + std::to_string(Min) + " to " + std::to_string(Max), rValue);
    }
    return rValue.get<std::int64_t>();
}

std::size_t CJsonFields::ToChoice(const json& rValue, const std::string& rPath, Names Choices) {
    const auto Found = rValue.is_string()
                           ? std::find(Choices.begin(), Choices.end(), rValue.get_ref<const std::string&>())
                           : Choices.end();
    if (Found == Choices.end()) {
        Refuse(rPath, "one of " + Join(Choices), rValue);
    }
    return static_cast<std::size_t>(Found - Choices.begin());
}

const json& CJsonFields::ToArray(const json& rValue, const std::string& rPath, std::size_t nMin,
                                 std::size_t nMax) {
    if (!rValue.is_array() || rValue.size() < nMin || rValue.size() > nMax) {
        Refuse(rPath, "an array of " + Size(nMin, nMax), rValue);
    }
    return rValue;
}

std::string CJsonFields::ElementPath(const std::string& rPath, std::size_t nIndex) {
    return rPath + "[" + std::to_string(nIndex) + "]";
}

void CJsonFields::Refuse(const std::string& rPath, const std::string& rWanted, const json& rValue) {
    throw CJsonError(rPath + " must be " + rWanted + ", not " + Quote(rValue));
}
