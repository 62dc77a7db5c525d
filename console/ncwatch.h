#pragma once
#include <functional>
#include <optional>
#include <string>

#include "console/rundriver.h"

/// Watches a procedure that somebody else starts, drives and ends, and touches nothing itself.
class CNcWatch : public CRunDriver {
public:
    /// An NC gets stuck; a person at the panel takes the time that it takes.
    enum class Driver { eNc, ePerson };
    explicit CNcWatch(std::function<CSituation()> Look, Driver Who = Driver::eNc)
        : CRunDriver(std::move(Look)), m_Who(Who) {}

    /// Why nobody drives any more; empty while somebody does. Asked at each look.
    std::function<std::string()> GetDriverLoss;

private:
    void OnLook(const CSituation& rSituation) override;
    bool IsImpatient() const override { return m_Who == Driver::eNc; }
    /// Whoever drives has gone on from what was last seen.
    void Accept(const CSituation& rDone);

    Driver m_Who;
    std::optional<CSituation> m_Last;  ///< of a procedure that runs
};
