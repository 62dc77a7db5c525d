#include "rvdlm/m_rtr/rtr_trim/prebalancing/procedurechoice.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "platform/rvldb/gettext.h"
#include "platform/window/messagebox.h"
#include "rvdlm/m_rtr/rtr_trim/log.h"
#include "rvdlm/m_rtr/rtr_trim/methods/screwcompensation.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/singleplanebalancing.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/twoplanebalancing.h"

using PreBalDB::CPreBalDatabase;
using PreBalDB::CScrewCompensationTableEntry;
using RtrTrim::g_pLog;

namespace {

/// What keeps screws from being used, as a text for the operator; empty if nothing does.
std::string FindFault(const CScrewCompensationTableEntry& rScrews) {
    const Base::CWDArray<PreBalDB::CScrew> Table = rScrews.GetScrewTable();
    const bool bWeights = std::all_of(Table.begin(), Table.end(), [](const PreBalDB::CScrew& rScrew) {
        return std::isfinite(rScrew.GetWeight()) && rScrew.GetWeight() >= 0.0;
    });
    if (Table.IsEmpty() || !bWeights) {
        return GetText(Table.IsEmpty() ? "PB_SCREW_TABLE_EMPTY" : "PB_SCREW_TABLE_BAD_WEIGHT") + " (" +
               rScrews.GetScrewTableName() + ")";
    }
    // The mathematics would find no placement, and the operator would see an empty ring as the correction.
    const std::uint32_t nScrews = CScrewCompensation::GetScrewCount(rScrews.GetNumberOfScrews());
    if (rScrews.GetNumberOfHoles() < nScrews) {
        return GetText("PB_TOO_FEW_HOLES") + " (" + std::to_string(rScrews.GetNumberOfHoles()) + " / " +
               std::to_string(nScrews) + ")";
    }
    return {};
}

}  // namespace

bool CanBalance(CPreBalDatabase::BalancingMode Mode, const PreBalDB::CPreBalBaseTableEntry& rEntry) {
    const bool bTwoPlane = Mode == CPreBalDatabase::eModeTwoPlane;
    std::array<const CScrewCompensationTableEntry*, 2> Screws{};
    if (const auto* pPlanes = rEntry.GetTwoPlane(); bTwoPlane && pPlanes != nullptr) {
        Screws = {pPlanes->GetPlane1ScrewCompensationTableEntry(),
                  pPlanes->GetPlane2ScrewCompensationTableEntry()};
    } else if (const auto* pPlane = rEntry.GetSinglePlane(); !bTwoPlane && pPlane != nullptr) {
        Screws = {pPlane->GetScrewCompensationTableEntry(), nullptr};
    }
    for (const CScrewCompensationTableEntry* pScrews : Screws) {
        const std::string Fault = pScrews != nullptr ? FindFault(*pScrews) : std::string();
        if (!Fault.empty()) {
            RV_ERROR(g_pLog, "nothing is started: %s", Fault.c_str());
            ShowMessageBox(Fault, "Error");
            return false;
        }
    }
    return true;
}

std::unique_ptr<CPreBalancing> MakeProcedure(CPreBalDatabase::BalancingMode Mode,
                                             CPreBalMainWndInterface* pMainWnd,
                                             PreBalDB::CPreBalBaseTableEntry& rEntry,
                                             const std::string& rSetName) {
    switch (Mode) {
        case CPreBalDatabase::eModePlane1:
            return std::make_unique<CSinglePlaneBalancing>(pMainWnd, 0, rEntry, rSetName);
        case CPreBalDatabase::eModePlane2:
            return std::make_unique<CSinglePlaneBalancing>(pMainWnd, 1, rEntry, rSetName);
        case CPreBalDatabase::eModeTwoPlane:
            return std::make_unique<CTwoPlaneBalancing>(pMainWnd, rEntry, rSetName);
    }
    RV_WARNING(g_pLog, "no valid pointer, creating default: CSinglePlaneBalancing(...)!");
    return std::make_unique<CSinglePlaneBalancing>(pMainWnd, 0, rEntry, rSetName);
}
