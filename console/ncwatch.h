#pragma once
#include <functional>
#include <optional>
#include <string>

#include "console/rundriver.h"

/// Watches a procedure that the NC starts, drives and ends, and touches nothing itself.
class CNcWatch : public CRunDriver {
public:
    explicit CNcWatch(std::function<CSituation()> Look) : CRunDriver(std::move(Look)) {}

    /// Why nobody drives any more; empty while somebody does. Asked at each look.
    std::function<std::string()> GetDriverLoss;

private:
    void OnLook(const CSituation& rSituation) override;
    /// The NC has gone on from what was last seen.
    void Accept(const CSituation& rDone);

    std::optional<CSituation> m_Last;  ///< of a procedure that runs
};
