#pragma once
#include <string>
#include <vector>

#include "console/options.h"
#include "simulator/rotorfile.h"
#include "tests/support/chance.h"

/// A kind of machine and of balancing, and a rotor for it.
struct CRunKind {
    /// A kind and a rotor by lot, within what balancing is for: a test run that shows an effect, enough
    /// capacity, planes that feel each other less than themselves.
    static CRunKind Draw(CChance& rChance);

    /// Family, planes and means: "kestrel-pair, two planes, weights + screws".
    std::string GetName() const;
    /// Family, planes and means go in; the module's library and all else stay.
    void Choose(COptions& rOptions) const;
    bool IsTwoPlane() const { return m_Mode == "two-plane"; }
    bool HasScrews(std::size_t Column) const { return m_Methods.at(Column) == "screws"; }
    /// The planes of the machine that are balanced, from 0.
    std::vector<std::size_t> GetPlanes() const;
    /// Positions are only right with an order of weights that doesn't turn with the scale.
    bool NeedsConsistentOrder() const;
    /// A scatter that a smoothed reading keeps, and the rounding to whole counts.
    double GetReadingError() const;

    CRotorFile m_Rotor;
    std::string m_Mode;
    std::vector<std::string> m_Methods;  ///< one for each balanced plane
    int m_nScrews = 2;
    bool m_bStartTurning = false;
};
