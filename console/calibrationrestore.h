#pragma once
#include <string>

#include "archive/runrecord.h"

/// Puts the calibration that a former run has left back into its configuration in the store.
class CCalibrationRestore {
public:
    /// rRun must outlive this.
    explicit CCalibrationRestore(const CRunRecord& rRun) : m_rRun(rRun) {}

    /// Why that can't be, a sentence: the run has left none, its configuration is gone, or what the
    /// calibration rests on is another one now. Empty if it can.
    std::string FindObstacle() const;
    /// Writes it; the store's revisions see to it that a console at work loses nothing. Why it failed, empty
    /// if it is done.
    std::string Restore() const;

private:
    bool IsConfigurationThere() const;

    const CRunRecord& m_rRun;
};
