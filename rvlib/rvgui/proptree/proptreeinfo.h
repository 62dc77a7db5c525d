#pragma once
#include "platform/window/static.h"

namespace PropTree {

class CPropTree;

/// The pane below the rows: label of the item with the focus, its text and the limits of its value.
class CPropTreeInfo : public CStatic {
public:
    explicit CPropTreeInfo(const CPropTree& rTree) : m_rTree(rTree) {}

protected:
    LRESULT WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) override;

private:
    void Paint();

    const CPropTree& m_rTree;
};

}  // namespace PropTree
