#pragma once
#include <string>

/// Description of a font. Plain value: it is resolved when a device context draws with it.
class CFont {
public:
    static constexpr int NORMAL = 400;
    static constexpr int SEMI_BOLD = 600;
    static constexpr int BOLD = 700;

    CFont() = default;
    /// Height is the cell height in pixels (ascent plus descent); Weight 100 to 900. Escapement is the angle
    /// of the base line in tenths of a degree, counter-clockwise.
    CFont(std::string FaceName, int Height, int Weight = NORMAL, int Escapement = 0)
        : m_FaceName(std::move(FaceName)), m_Height(Height), m_Weight(Weight), m_Escapement(Escapement) {}

    std::string m_FaceName = "Arial";
    int m_Height = 12;
    int m_Weight = NORMAL;
    int m_Escapement = 0;

    friend bool operator==(const CFont&, const CFont&) = default;
};

/// The font of dialogs and controls unless they are given another.
inline CFont GetDefaultGuiFont() {
    return {"Arial", 14};
}
