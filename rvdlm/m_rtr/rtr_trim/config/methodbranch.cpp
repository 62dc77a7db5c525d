#include "rvdlm/m_rtr/rtr_trim/config/methodbranch.h"

#include "rvdlm/m_rtr/rtr_trim/config/propertyitems.h"
#include "rvdlm/m_rtr/rtr_trim/config/screwcompensationtree.h"
#include "rvdlm/m_rtr/rtr_trim/config/weightcompensationtree.h"
#include "rvdlm/m_rtr/rtr_trim/log.h"

using PreBalDB::CCompensationTableEntry;
using PropTree::CPropTreeItem;
using RtrTrim::g_pLog;

namespace {

constexpr bool IsMethod(int Method) {
    return Method == CCompensationTableEntry::eWeights || Method == CCompensationTableEntry::eScrews;
}

}  // namespace

void CMethodBranch::SetConfig(int Method, const CParts& rParts, CPropTreeItem* pParent, int nPlane,
                              const Base::CStringArray& rNames) {
    if (m_pMethod == nullptr) {
        m_pMethod = m_rTree.Insert(PropertyItems::MakeChoice(PropertyItems::Find<CWeight>("method"), nPlane),
                                   pParent);
        m_pMethod->Expand();
    }
    if (IsMethod(Method)) {
        m_pMethod->SetItemValue(Method);
    } else {
        RV_ASSERT_FAIL(g_pLog, "impossible");
    }
    Fill(Method, rParts, rNames);
}

template <typename T>
T& CMethodBranch::Provide() {
    auto* pCompensation = dynamic_cast<T*>(m_pCompensation.get());
    if (pCompensation == nullptr) {
        DropCompensation();
        auto pNew = std::make_unique<T>(m_rTree, m_Plane);
        pCompensation = pNew.get();
        m_pCompensation = std::move(pNew);
    }
    pCompensation->SetPlane(m_Plane);
    return *pCompensation;
}

void CMethodBranch::Fill(int Method, const CParts& rParts, const Base::CStringArray& rNames) {
    switch (Method) {
        case CCompensationTableEntry::eWeights:
            Provide<CWeightCompensationTree>().SetConfig(rParts.m_pWeight, m_Plane, m_pMethod);
            RV_ASSERT_AS(g_pLog, m_pMethod->GetCurSel() == 0, "m_pCompensationMethod->GetCurSel() == 0",
                         "inconsistent", false);
            break;
        case CCompensationTableEntry::eScrews:
            Provide<CScrewCompensationTree>().SetConfig(rParts.m_pScrew, m_Plane, m_pMethod, rNames);
            RV_ASSERT_AS(g_pLog, m_pMethod->GetCurSel() == 1, "m_pCompensationMethod->GetCurSel() == 1",
                         "inconsistent", false);
            break;
        case CCompensationTableEntry::eNotImplemented:
            RV_ASSERT_FAIL(g_pLog, "not implemented");
            break;
        default:
            RV_ASSERT_FAIL(g_pLog, "impossible");
            break;
    }
}

CPropTreeItem* CMethodBranch::GetConfig(const std::function<CWeight&()>& rWeight,
                                        const std::function<CScrew&()>& rScrew) const {
    if (const auto* const pWeights = dynamic_cast<const CWeightCompensationTree*>(m_pCompensation.get())) {
        return pWeights->GetConfig(rWeight());
    }
    if (const auto* const pScrews = dynamic_cast<const CScrewCompensationTree*>(m_pCompensation.get())) {
        return pScrews->GetConfig(rScrew());
    }
    RV_ASSERT_FAIL(g_pLog, m_pCompensation == nullptr ? "no compensation" : "not implemented");
    return m_pMethod;
}

void CMethodBranch::SetPlane(AffectedPlane Plane) {
    m_Plane = Plane;
    if (m_pCompensation != nullptr) {
        m_pCompensation->SetPlane(Plane);
    }
}

void CMethodBranch::DropCompensation() {
    if (m_pCompensation != nullptr) {
        m_pCompensation->DeleteItems();
        m_pCompensation.reset();
    }
}

void CMethodBranch::DeleteItems() {
    DropCompensation();
    PropertyItems::DeleteLater(m_rTree, m_pMethod);
}

bool CMethodBranch::IsMethodChanged() const {
    if (!IsMethod(m_pMethod->GetItemValue())) {
        RV_ASSERT_FAIL(g_pLog, "impossible");
        return false;
    }
    return m_pMethod->GetItemValue() != m_pCompensation->GetCompensationMethod();
}

void CMethodBranch::Rebuild(const CParts& rParts, const Base::CStringArray& rNames) {
    DropCompensation();
    Fill(m_pMethod->GetItemValue(), rParts, rNames);
}

bool CMethodBranch::StaysCalibrated(const CParts& rParts) const {
    if (rParts.m_pWeight != nullptr &&
        m_pCompensation->GetCompensationMethod() == CCompensationTableEntry::eWeights) {
        return rParts.m_pWeight->GetScalingDirection() == m_pCompensation->GetScalingDirection();
    }
    return rParts.m_pScrew != nullptr &&
           m_pCompensation->GetCompensationMethod() == CCompensationTableEntry::eScrews &&
           rParts.m_pScrew->GetScalingDirection() == m_pCompensation->GetScalingDirection();
}

bool CMethodBranch::HasScrewCompensation() const {
    if (m_pMethod == nullptr) {
        RV_ASSERT_FAIL(g_pLog, "impossible");
        return false;
    }
    return m_pMethod->GetItemValue() == CCompensationTableEntry::eScrews;
}
