#include "rvdlm/m_rtr/rtr_trim/config/balancingbase.h"

#include "rvdlm/m_rtr/rtr_trim/config/directionitem.h"
#include "rvdlm/m_rtr/rtr_trim/config/propertyitems.h"
#include "rvdlm/m_rtr/rtr_trim/log.h"
#include "rvdlm/m_rtr/rtr_trim/nc/linkeditem.h"
#include "rvlib/rvgui/numbertext.h"
#include "rvlib/rvprt/kestrel/set.h"

using namespace PreBalDB;
using PropTree::CPropTreeItem;
using PropTree::CPropTreeItemStatic;
using RtrTrim::g_pLog;

namespace {

constexpr int FIGURE_DIGITS = 6;

}  // namespace

void CBalancingBase::LinkRotation(CPreBalRotationDirectionInterface* pTarget) {
    m_pRotationFromNC.reset();
    m_pRotationFromNC = LinkSetting<CPreBalInterfaceFromNcRotationDirection>(
        "CBaseParamsTree::CPreBalInterfaceFromNcRotationDirection", pTarget);
}

void CBalancingBase::ShowRotation(const CProperty& rProperty, CTypeBase::Direction Stored,
                                  CPropTreeItem* pParent) {
    if (m_pRotation == nullptr) {
        m_pRotation = m_rTree.Insert(PropertyItems::MakeChoice(rProperty), pParent);
    }
    m_pRotation->SetItemValue(Stored);
    if (m_pRotationFromNC == nullptr) {
        return;
    }
    double Value = 0.0;
    if (m_pRotationFromNC->GetValueFromNC(Value) == 0) {
        RV_ERROR(g_pLog, "Opc: SetItemValue failed!");
    } else if (const auto Direction = DirectionItem::FromNumber(Value)) {
        m_pRotation->SetItemValue(*Direction);
    } else {
        RV_ERROR(g_pLog, "the NC's direction of rotation is refused: %g is neither 0 nor 1", Value);
    }
}

void CBalancingBase::TakeRotationFromNC(double Value) {
    if (m_pRotation == nullptr) {
        return;
    }
    const auto Direction = DirectionItem::FromNumber(Value);
    if (!Direction) {
        RV_ERROR(g_pLog, "the NC's direction of rotation is refused: %g is neither 0 nor 1", Value);
    } else if (*Direction != m_pRotation->GetItemValue()) {
        m_pRotation->SetItemValue(*Direction);
        m_rTree.SendNotify(PropTree::CPropTree::eItemChanged, m_pRotation);
    }
}

void CBalancingBase::LogRotationFailure() {
    RV_ERROR(g_pLog, "OPC Item read failed!");
}

CPropTreeItem* CBalancingBase::GetRotation(CPlaneBalancingTableEntry& rEntry) const {
    const auto Direction =
        m_pRotation != nullptr ? DirectionItem::FromNumber(m_pRotation->GetItemValue()) : std::nullopt;
    if (!Direction) {
        RV_ASSERT_FAIL(g_pLog, "inconsistent");
        return m_pRotation;
    }
    rEntry.SetRotationDirection(*Direction);
    return nullptr;
}

bool CBalancingBase::IsRotation(CTypeBase::Direction Stored) const {
    return m_pRotation->GetItemValue() == Stored;
}

CPropTreeItemStatic& CBalancingBase::NextText(const CProperty::CItem& rLine, int nPlane,
                                              CPropTreeItem* pParent) {
    if (m_nNextText == m_Texts.size()) {
        m_Texts.push_back(m_rTree.Insert(PropertyItems::MakeText(rLine, nPlane), pParent));
    }
    return *m_Texts[m_nNextText++];
}

void CBalancingBase::ShowText(const CProperty& rProperty, const std::string& rValue, CPropTreeItem* pParent) {
    NextText(rProperty.m_Item, rProperty.m_nPlane, pParent).SetItemValue(rValue);
}

void CBalancingBase::ShowSensor(const CProperty& rProperty, std::uint8_t Adaption, CPropTreeItem* pParent) {
    ShowText(rProperty, Kestrel::CSet::SensorAdaptionToString(Adaption), pParent);
}

void CBalancingBase::ShowSpeedInput(const CProperty& rProperty, CTypeBase::AffectedPlane Input,
                                    CPropTreeItem* pParent) {
    // The second input reads 1, too. That is meant.
    const bool bKnown = Input == CTypeBase::ePlane1 || Input == CTypeBase::ePlane2;
    ShowText(rProperty, bKnown ? GetText("PB_PLANE_TEXT") + " 1" : "unknown plane", pParent);
}

void CBalancingBase::ShowMatrix(const CProperty& rProperty, const math::matrix<double>& rMatrix,
                                CPropTreeItem* pParent) {
    for (std::uint32_t i = 0; i < rMatrix.RowNo(); ++i) {
        for (std::uint32_t j = 0; j < rMatrix.ColNo(); ++j) {
            CPropTreeItemStatic& rItem = NextText(rProperty.m_Item, 0, pParent);
            rItem.SetLabelText(std::string(rProperty.m_Item.m_pTextKey) + "(" + std::to_string(i) + ", " +
                               std::to_string(j) + ")");
            rItem.SetItemValue(Gui::WriteFraction(rMatrix(i, j), FIGURE_DIGITS));
        }
    }
}

void CBalancingBase::ShowVector(const CProperty& rProperty, const math::matrix<double>& rVector, int nFirst,
                                CPropTreeItem* pParent) {
    for (std::uint32_t i = 0; i < rVector.RowNo(); ++i) {
        CPropTreeItemStatic& rItem = NextText(rProperty.m_Item, 0, pParent);
        rItem.SetLabelText(std::string(rProperty.m_Item.m_pTextKey) + "(" +
                           std::to_string(nFirst + static_cast<int>(i)) + ")");
        rItem.SetItemValue(Gui::WriteFraction(rVector(i, 0), FIGURE_DIGITS));
    }
}

void CBalancingBase::DeleteCommonItems() {
    PropertyItems::DeleteLater(m_rTree, m_pRotation);
    for (CPropTreeItemStatic* pText : m_Texts) {
        PropertyItems::DeleteLater(m_rTree, pText);
    }
    m_Texts.clear();
}
