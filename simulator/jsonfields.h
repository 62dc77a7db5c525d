#pragma once
#include <cstdint>
#include <nlohmann/json.hpp>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

/// Says which value of a JSON text can't be used, by its path, and what would be right:
/// `planes[0].unbalance.amount must be a number from 0 to 1000000, not "much"`.
class CJsonError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A text as JSON. Throws CJsonError for a text that is none, for a number that is too large, and for a field
/// that stands twice in an object: one of the two values would be lost without a word.
nlohmann::json ParseJson(std::string_view Text, bool bComments);

/// The fields of one JSON object, read strictly: an unknown field, a wrong type or a value out of range
/// throws CJsonError. Rotor files and requests of the control link are read through this one class, so that
/// both refuse with the same words.
class CJsonFields {
public:
    using Names = std::span<const std::string_view>;

    /// rPath is how messages call the object; empty for the outermost one. Known are all the fields that the
    /// object may have. The value must outlive this object.
    CJsonFields(const nlohmann::json& rValue, std::string Path, Names Known);

    /// The same with the names in braces.
    template <std::size_t N>
    CJsonFields(const nlohmann::json& rValue, std::string Path, const std::string_view (&Known)[N])
        : CJsonFields(rValue, std::move(Path), Names(Known)) {}

    bool Has(std::string_view Name) const;
    /// Throws if the field is missing.
    void Require(std::string_view Name) const;

    /// A missing field gives the default in each of these.
    double GetNumber(std::string_view Name, double Default, double Min, double Max) const;
    std::int64_t GetInteger(std::string_view Name, std::int64_t Default, std::int64_t Min,
                            std::int64_t Max) const;
    std::uint64_t GetUnsigned(std::string_view Name, std::uint64_t Default) const;
    bool GetBool(std::string_view Name, bool bDefault) const;
    /// Throws if the text has more than nMax bytes.
    std::string GetText(std::string_view Name, const std::string& rDefault, std::size_t nMax) const;
    /// The index of the text among the choices.
    std::size_t GetChoice(std::string_view Name, std::size_t nDefault, Names Choices) const;
    /// Null if the field is missing. Throws unless it is an array of a size from nMin to nMax.
    const nlohmann::json* GetArray(std::string_view Name, std::size_t nMin, std::size_t nMax) const;
    /// Null if the field is missing. What it must be is checked by whoever reads it.
    const nlohmann::json* Get(std::string_view Name) const;

    /// Path of a field: "planes[0].unbalance".
    std::string GetPath(std::string_view Name) const;

    /// The same checks for a value that is no field, an element of an array.
    static double ToNumber(const nlohmann::json& rValue, const std::string& rPath, double Min, double Max);
    static std::int64_t ToInteger(const nlohmann::json& rValue, const std::string& rPath, std::int64_t Min,
                                  std::int64_t Max);
    static std::size_t ToChoice(const nlohmann::json& rValue, const std::string& rPath, Names Choices);
    static const nlohmann::json& ToArray(const nlohmann::json& rValue, const std::string& rPath,
                                         std::size_t nMin, std::size_t nMax);
    /// "planes[0]"
    static std::string ElementPath(const std::string& rPath, std::size_t nIndex);
    /// Throws: `PATH must be WANTED, not VALUE`.
    [[noreturn]] static void Refuse(const std::string& rPath, const std::string& rWanted,
                                    const nlohmann::json& rValue);

private:
    const nlohmann::json& m_rValue;
    std::string m_Path;
};
