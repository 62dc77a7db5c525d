#pragma once
#include <string>

namespace PropTree {

/// Shows the help that belongs to what the operator looks at.
class CDynamicHelpIF {
public:
    virtual ~CDynamicHelpIF() = default;
    /// The topic is that of a help page, for example "_PB001". The page is shown after a short while, so that
    /// a quick walk through many items navigates once.
    virtual void SetHelpTopic(const std::string& rTopic) = 0;
};

}  // namespace PropTree
