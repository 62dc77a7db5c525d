#pragma once
#include "rvlib/rvgui/proptree/proptreeitem.h"

namespace PropTree {

/// A label with a text that can't be edited; without a text the heading of a group.
class CPropTreeItemStatic : public CPropTreeItem {
public:
    explicit CPropTreeItemStatic(std::string Label = std::string(), std::string Value = std::string())
        : CPropTreeItem(std::move(Label)), m_Value(std::move(Value)) {}

    void SetItemValue(const std::string& rText) {
        m_Value = rText;
        Redraw();
    }
    const std::string& GetItemValue() const { return m_Value; }
    std::string GetValueText() const override { return m_Value; }

private:
    std::string m_Value;
};

}  // namespace PropTree
