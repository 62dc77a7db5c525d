#pragma once
#include <memory>
#include <string>

#include "platform/system/virtualeventloop.h"
#include "rvlib/rvgui/proptree/proptree.h"
#include "tests/sequences/choices.h"
#include "tests/support/listeningwnd.h"

/// Whatever is done to a property tree in whatever order, and whatever the parent refuses or deletes
/// meanwhile: the tree stays in order.
class CTreeSequence {
public:
    /// rChoices must outlive the sequence.
    explicit CTreeSequence(IFChoices& rChoices);
    ~CTreeSequence();
    CTreeSequence(const CTreeSequence&) = delete;
    CTreeSequence& operator=(const CTreeSequence&) = delete;

    /// One event, of the operator or the program.
    void Step();
    /// What isn't in order; empty if all is.
    std::string Check();
    /// Changes of values by typing and choosing, so far.
    int GetEdits() const { return m_nEdits; }

private:
    std::size_t Pick(std::size_t nCount) { return m_rChoices.Pick(nCount); }
    PropTree::CPropTreeItem* PickItem();
    void Insert();
    void Mouse();
    void Key();
    void Action();
    void Type();
    void Program();
    void SetValue(PropTree::CPropTreeItem& rItem);
    LRESULT Answer(const CWndNotification& rNotification);

    /// Notes the first thing that isn't in order.
    void Expect(bool bHolds, const char* pRule);
    void CheckItems(PropTree::CPropTreeItem& rParent, bool bVisible,
                    std::vector<PropTree::CPropTreeItem*>& rExpected);
    void CheckValue(const PropTree::CPropTreeItem& rItem);
    template <typename Item>
    void CheckRange(const PropTree::CPropTreeItem& rItem);

    IFChoices& m_rChoices;
    CVirtualEventLoop m_Loop;
    CListeningWnd m_Page;
    std::unique_ptr<PropTree::CPropTree> m_pTree;
    int m_nDepth = 0;
    int m_nEdits = 0;
    std::string m_Breach;
};
