#pragma once
#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "platform/rvmdb/directsql.h"

namespace PreBalDB {

/// How a property is kept and edited.
enum class PropertyType : std::uint8_t {
    eFlag,
    eTime,  ///< seconds since 1970, shown as date and time of day
    eWhole,
    eByte,    ///< a whole number of 8 bits
    eReal,    ///< a double
    eChoice,  ///< one of few, as a number from 0; 255 may stand for "unknown"
    eText,
    eMatrix  ///< of doubles, as matrixtext.h writes it
};

/// What a stored value can be at all. What makes sense on a machine is narrower: CProperty::m_Range.
class CStoredLimits {
public:
    static CStoredLimits Whole(std::int64_t Min, std::int64_t Max) { return {eWhole, Min, Max, Max}; }
    /// 255 stands for "unknown".
    static CStoredLimits WholeOrUnknown(std::int64_t Min, std::int64_t Max) {
        return {eWhole, Min, Max, UNKNOWN};
    }
    static CStoredLimits Positive() { return {ePositive, 0, 0, 0}; }
    static CStoredLimits Text() { return {eText, 0, 0, 0}; }
    static CStoredLimits Matrix(std::int64_t nRows, std::int64_t nColumns) {
        return {eMatrix, nRows, nColumns, 0};
    }

    /// What is wrong with the value, empty if nothing is.
    std::string Check(const CDirectSQL::CValue& rValue) const;

private:
    static constexpr std::int64_t UNKNOWN = 255;
    enum Kind : std::uint8_t { eWhole, ePositive, eText, eMatrix };
    CStoredLimits(Kind Value, std::int64_t Min, std::int64_t Max, std::int64_t Also)
        : m_Kind(Value), m_Min(Min), m_Max(Max), m_Also(Also) {}
    std::string CheckMatrix(const std::string& rText) const;

    Kind m_Kind;
    std::int64_t m_Min;  ///< of a matrix its rows
    std::int64_t m_Max;  ///< of a matrix its columns
    std::int64_t m_Also;
};

/// All that is known of a property of a configuration. A row a property, in recordfields.cpp; the tables of a
/// new store, reading and writing, merging, the values of a new entry and the checks all follow from it, and
/// whoever shows or sets properties is to look here too.
struct CProperty {
    enum class Role : std::uint8_t {
        eSetting,
        eBasis,       ///< a calibration holds only for the value that it was made with: a change clears it
        eCalibration  ///< goes with all the others of this role, or not at all
    };
    /// Who may set it, as bits.
    enum Writer : std::uint8_t {
        eNobody = 0,
        eOperator = 1,
        eNc = 2,
        eModule = 4,  ///< it follows from the balancing module's set
        eRun = 8      ///< a balancing run finds it out
    };
    /// Of a number that is edited, in its unit.
    struct CRange {
        double m_Min;
        double m_Max;
        double m_Step;
    };
    struct CChoice {
        const char* m_pWord;  ///< in commands and files
        const char* m_pTextKey;
    };
    /// A line of a page: language key of its label, and its topic of the help. Empty if there is none. The
    /// label of a matrix is its name as it stands, indices follow.
    struct CItem {
        const char* m_pTextKey = "";
        const char* m_pHelpKey = "";
    };

    const char* m_pName = "";    ///< in commands and files that people exchange
    const char* m_pColumn = "";  ///< of the record's table; empty if the record itself tells the value
    PropertyType m_Type = PropertyType::eWhole;
    Role m_Role = Role::eSetting;
    std::uint8_t m_Writers = eNobody;
    CStoredLimits m_Limits = CStoredLimits::Text();
    CDirectSQL::CValue m_Default{};  ///< in a new entry
    std::optional<CRange> m_Range{};
    std::span<const CChoice> m_Choices{};  ///< in the order of their numbers
    const char* m_pUnit = "";              ///< a language key, or the text itself; GetText knows both
    double m_PerUnit = 1.0;                ///< how many of what is stored make one of the unit
    CItem m_Item{};
    CItem m_TimeItem{};  ///< of an eTime: m_Item is its date
    int m_nPlane = 0;    ///< 1 or 2 where a record holds the values of both planes, and in their labels

    /// The column, or the name of a property that has none.
    const char* GetFieldName() const { return IsStored() ? m_pColumn : m_pName; }
    bool IsStored() const { return *m_pColumn != '\0'; }
    /// Whether people set it, or an NC in their place.
    bool IsForPeople() const { return (m_Writers & (eOperator | eNc)) != 0; }
    /// A stored number in its unit, and back: downwards to a whole number.
    double ToUnit(double Stored) const { return Stored / m_PerUnit; }
    double FromUnit(double Shown) const;
};

}  // namespace PreBalDB
