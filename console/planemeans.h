#pragma once
#include <array>
#include <string>
#include <vector>

/// A screw that can be taken out of the drawer.
struct CScrewChoice {
    std::string m_Name;
    double m_Grams = 0.0;

    friend bool operator==(const CScrewChoice&, const CScrewChoice&) = default;
};

/// By what a plane of the machine is balanced, as configured.
struct CPlaneMeans {
    bool m_bUsed = false;  ///< by the configuration's procedures
    bool m_bScrews = false;
    std::vector<CScrewChoice> m_Choices;  ///< of the configuration's screw table

    friend bool operator==(const CPlaneMeans&, const CPlaneMeans&) = default;
};

using CMachineMeans = std::array<CPlaneMeans, 2>;
