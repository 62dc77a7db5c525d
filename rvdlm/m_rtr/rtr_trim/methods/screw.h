#pragma once
#include <cstdint>
#include <string>

/// A screw in a hole of the rotor. The kinds of screws that there are come as PreBalDB::CScrew.
struct CScrew {
    std::uint16_t m_Hole = 0;  ///< counted from 1; 0 is not placed
    double m_Weight = 0.0;     ///< grams
    std::string m_Name;        ///< of the kind of screw; may be empty

    friend bool operator==(const CScrew&, const CScrew&) = default;
};
