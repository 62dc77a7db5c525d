#pragma once
#include <string>
#include <vector>

#include "console/options.h"
#include "platform/rvmdb/prebaldatabase.h"
#include "simulator/rotorfile.h"

/// Sets a configuration up for the rotor of a machine: rotation and scale sense, both as seen from the end of
/// the plane that is balanced, means, and with screws the number of holes.
///
/// A configuration that nobody has set yet (every value that an operator or an NC can set is the one of a new
/// entry, and there is no calibration) is set up. Any other counts as it stands: where it differs from rotor
/// file and options that is told, and it is set up again only if the options ask for that (m_bCommission).
/// Methods and the number of screws are the options'; what they leave out stays as configured. A rotor file
/// has no screw table.
class CCommission {
public:
    struct COutcome {
        bool m_bWritten = false;     ///< the store has it now; a calibration of other values is cleared
        std::string m_Disagreement;  ///< a line for a person, in what the two differ; empty if in nothing
    };

    CCommission(const COptions& rOptions, const CRotorFile& rRotor,
                PreBalDB::CPreBalDatabase::BalancingMode Mode)
        : m_rOptions(rOptions), m_rRotor(rRotor), m_Mode(Mode) {}

    /// Throws std::runtime_error if it can't be written, and of that CSessionError if the options ask for
    /// other means than somebody has set; the store is unchanged then.
    COutcome SetUp(const std::string& rMachine, const std::string& rConfiguration) const;

    /// Whether all that an operator or an NC can set is as in a new entry, and there is no calibration.
    static bool IsNew(const PreBalDB::CPreBalBaseTableEntry& rEntry);

private:
    void Apply(PreBalDB::CPreBalBaseTableEntry& rEntry) const;
    void ApplySinglePlane(PreBalDB::CPreBalBaseTableEntry& rEntry) const;
    void ApplyTwoPlane(PreBalDB::CPreBalBaseTableEntry& rEntry) const;
    void ApplyScrews(PreBalDB::CScrewCompensationTableEntry& rScrews,
                     const CRotorFile::CRotorPlane& rPlane) const;
    /// Plane of the procedure, from 0.
    bool UsesScrews(std::size_t Plane, PreBalDB::CCompensationTableEntry::CompensationMethod Used) const;
    void RefuseOtherMeans(const std::string& rConfiguration, const std::vector<std::string>& rFields) const;

    const COptions& m_rOptions;
    const CRotorFile& m_rRotor;
    PreBalDB::CPreBalDatabase::BalancingMode m_Mode;
};
