#pragma once
#include <string>
#include <utility>

namespace PreBalDB {

/// One kind of screw: a name and its weight in grams.
class CScrew {
public:
    CScrew() = default;
    CScrew(std::string Name, double Weight) : m_Name(std::move(Name)), m_Weight(Weight) {}
    const std::string& GetScrewName() const { return m_Name; }
    double GetWeight() const { return m_Weight; }
    /// Shortest decimal form that reads back as the same weight.
    std::string GetWeightAsString() const;
    friend bool operator==(const CScrew&, const CScrew&) = default;

private:
    std::string m_Name;
    double m_Weight = 0.0;
};

}  // namespace PreBalDB
