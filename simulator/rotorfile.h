#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// A rotor on its spindle as a JSON file describes it. Missing fields take the values of the built-in rotor;
/// `//` comments are allowed. An unknown field, one that stands twice, a wrong type or an impossible value
/// is an error that names it by its path and says what would be right.
///
/// A file with one plane for a single-plane machine, two for a two-plane one. The number of planes is that of
/// the first list given among planes, influence, scale and holes, else what the modules measure; all lists
/// that are given must agree with it.
class CRotorFile {
public:
    enum Modules { eKestrel = 0, eKestrelPair = 1, eLanner = 2 };
    enum Sense { eClockwise = 0, eCounterClockwise = 1 };

    struct CUnbalance {
        double m_Amount = 0.8;      ///< in balance weights, or in grams with screws
        double m_AngleDeg = 123.0;  ///< counter-clockwise, seen from plane 1's end
    };
    struct CRotorPlane {
        CUnbalance m_Unbalance;
        Sense m_Scale =
            eClockwise;    ///< of the angle scale and the hole numbers, seen from this plane's own end
        int m_Holes = 12;  ///< equally spaced, for screws
    };
    struct CInfluence {
        double m_Amplitude = 150.0;  ///< counts per unit of amount
        double m_PhaseDeg = 40.0;
    };

    Modules m_Modules = eKestrel;
    Sense m_Rotation = eClockwise;  ///< seen from plane 1's end
    double m_SpeedRpm = 3000.0;     ///< the speed at which this rotor is balanced
    double m_RampRpmPerS = 1500.0;
    std::vector<CRotorPlane> m_Planes{1};  ///< one or two
    /// By sensor, then by weight plane; as many of each as planes. The off-diagonal default is no coupling.
    std::vector<std::vector<CInfluence>> m_Influence{{CInfluence{}}};
    /// The Lanner module's first sensor sits at plane 2, and its second at plane 1: "swap" in the file.
    bool m_bSwap = false;
    double m_NoiseCounts = 1.5;  ///< standard deviation of each of X and Y
    std::uint64_t m_Seed = 1;
    /// Between two readings that a module reports by itself.
    std::uint32_t m_ReportPeriodMs = 50;

    /// The rotor without any file. For two-plane modules it has two such planes without coupling.
    static CRotorFile GetBuiltIn(Modules Family = eKestrel);
    /// Reads a file. Nothing on failure, with rError telling file, field and what would be right. A given
    /// family counts in place of the file's "modules".
    static std::optional<CRotorFile> Read(const std::string& rPath, std::string& rError,
                                          std::optional<Modules> Family = std::nullopt);
    /// The same from text.
    static std::optional<CRotorFile> Parse(const std::string& rText, std::string& rError,
                                           std::optional<Modules> Family = std::nullopt);
    /// "kestrel", "kestrel-pair" or "lanner", as in the file; nothing for another text.
    static std::optional<Modules> ModulesFromString(const std::string& rText);
};
