#include "platform/rvmdb/configurationmerge.h"

#include <algorithm>
#include <set>

namespace PreBalDB {

namespace {

using ConfigurationFields::CALIBRATION;
using ConfigurationFields::GetRole;
using Role = CProperty::Role;

constexpr const char* IS_CALIBRATED = "configuration.is_calibrated";

const CDirectSQL::CValue* Find(const CFieldValues& rValues, const std::string& rField) {
    const auto Found = rValues.find(rField);
    return Found == rValues.end() ? nullptr : &Found->second;
}

/// A record that a side hasn't got is no change of its fields, it may just not have needed it; nor is a new
/// one of which nothing has been set.
bool HasChanged(const CChange& rChange, const std::string& rField) {
    const CDirectSQL::CValue* const pNow = Find(rChange.m_Now, rField);
    const CDirectSQL::CValue* pBefore = Find(rChange.m_Before, rField);
    if (pBefore == nullptr) {
        pBefore = Find(ConfigurationFields::GetDefaults(), rField);
    }
    return pNow != nullptr && (pBefore == nullptr || *pBefore != *pNow);
}

/// Whether both have the field, with the same value.
bool AreEqual(const CFieldValues& rLeft, const CFieldValues& rRight, const std::string& rField) {
    const CDirectSQL::CValue* const pLeft = Find(rLeft, rField);
    const CDirectSQL::CValue* const pRight = Find(rRight, rField);
    return pLeft != nullptr && pRight != nullptr && *pLeft == *pRight;
}

CFieldValues GetBasis(const CFieldValues& rValues) {
    CFieldValues Basis;
    std::ranges::copy_if(rValues, std::inserter(Basis, Basis.end()),
                         [](const auto& rField) { return GetRole(rField.first) == Role::eBasis; });
    return Basis;
}

class CMerger {
public:
    CMerger(const CChange& rStored, const CChange& rMemory) : m_rStored(rStored), m_rMemory(rMemory) {
        for (const CFieldValues* const pValues : {&rStored.m_Now, &rMemory.m_Now}) {
            for (const auto& [rField, rValue] : *pValues) {
                (GetRole(rField) == Role::eCalibration ? m_Calibration : m_Others).insert(rField);
            }
        }
    }

    CMerged Merge() {
        for (const std::string& rField : m_Others) {
            MergeFields({rField}, rField);
        }
        const Winner Calibration = MergeFields(m_Calibration, CALIBRATION);
        DropOtherMethods();
        CheckBasis(Calibration);
        return std::move(m_Result);
    }

private:
    enum class Winner { eNobody, eStored, eMemory };
    using Fields = std::set<std::string>;

    /// Fields that go together.
    Winner MergeFields(const Fields& rFields, const std::string& rName) {
        const auto HasAnyChanged = [&rFields](const CChange& rChange) {
            return std::ranges::any_of(
                rFields, [&rChange](const std::string& rField) { return HasChanged(rChange, rField); });
        };
        const bool bMemory = HasAnyChanged(m_rMemory);
        const bool bStored = HasAnyChanged(m_rStored);
        const bool bSame = std::ranges::all_of(rFields, [this](const std::string& rField) {
            return AreEqual(m_rStored.m_Now, m_rMemory.m_Now, rField);
        });
        const bool bTakeMemory = bMemory && (!bStored || bSame);
        if (bMemory && bStored && !bSame && IsEverywhere(rFields)) {
            m_Result.m_Conflicts.push_back(rName);
        }
        for (const std::string& rField : rFields) {
            const CDirectSQL::CValue* const pStored = Find(m_rStored.m_Now, rField);
            const CDirectSQL::CValue* const pMemory = Find(m_rMemory.m_Now, rField);
            const CDirectSQL::CValue* const pTaken =
                pStored == nullptr || (bTakeMemory && pMemory != nullptr) ? pMemory : pStored;
            if (pTaken != nullptr) {
                m_Result.m_Values[rField] = *pTaken;
            }
        }
        if (bTakeMemory) {
            return Winner::eMemory;
        }
        return bStored ? Winner::eStored : Winner::eNobody;
    }

    /// Whether both sides have any of the fields: what only one of them has is no conflict.
    bool IsEverywhere(const Fields& rFields) const {
        return std::ranges::any_of(rFields, [this](const std::string& rField) {
            return m_rStored.m_Now.contains(rField) && m_rMemory.m_Now.contains(rField);
        });
    }

    static std::string GetMethod(const CFieldValues& rValues, const CRecordLayout& rLayout) {
        for (const CRecordLayout& rOther : ConfigurationFields::GetLayouts()) {
            if (rOther.m_Part == rLayout.m_Part && rValues.contains(rOther.GetFieldName("plane"))) {
                return rOther.m_Table;
            }
        }
        return {};
    }

    /// A part is balanced with one method; the values of the other go.
    void DropOtherMethods() {
        for (const CRecordLayout& rLayout : ConfigurationFields::GetLayouts()) {
            if (rLayout.m_Part.empty()) {
                continue;
            }
            const std::string Stored = GetMethod(m_rStored.m_Now, rLayout);
            const std::string Memory = GetMethod(m_rMemory.m_Now, rLayout);
            const bool bMemory = Memory != GetMethod(m_rMemory.m_Before, rLayout);
            const bool bStored = Stored != GetMethod(m_rStored.m_Before, rLayout);
            const bool bConflict = bMemory && bStored && Stored != Memory;
            const std::string& rMethod = Stored.empty() || (bMemory && !bConflict) ? Memory : Stored;
            if (rMethod == rLayout.m_Table) {
                continue;
            }
            if (bConflict && Memory == rLayout.m_Table) {
                m_Result.m_Conflicts.push_back(rLayout.GetFieldName("method"));
            }
            for (const std::string& rColumn : rLayout.m_Columns) {
                m_Result.m_Values.erase(rLayout.GetFieldName(rColumn));
            }
        }
    }

    void CheckBasis(Winner Calibration) {
        if (Calibration != Winner::eNobody) {
            const CFieldValues& rMadeWith =
                Calibration == Winner::eMemory ? m_rMemory.m_Now : m_rStored.m_Now;
            if (GetBasis(rMadeWith) != GetBasis(m_Result.m_Values)) {
                m_Result.m_Values[IS_CALIBRATED] = std::int64_t{0};
                m_Result.m_Conflicts.emplace_back(CALIBRATION);
            }
        }
        const bool bWanted =
            std::ranges::any_of(
                m_Calibration, [this](const std::string& rField) { return HasChanged(m_rMemory, rField); }) &&
            m_rMemory.m_Now.at(IS_CALIBRATED) == CDirectSQL::CValue(std::int64_t{1});
        m_Result.m_bCalibrationLost =
            bWanted && std::ranges::find(m_Result.m_Conflicts, CALIBRATION) != m_Result.m_Conflicts.end();
    }

    const CChange& m_rStored;
    const CChange& m_rMemory;
    Fields m_Calibration;
    Fields m_Others;
    CMerged m_Result;
};

}  // namespace

CMerged MergeConfigurations(const CChange& rStored, const CChange& rMemory) {
    return CMerger(rStored, rMemory).Merge();
}

}  // namespace PreBalDB
