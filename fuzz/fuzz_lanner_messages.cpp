// Each decoder of the Lanner family on its own. The input's first byte chooses it, by its bit 7 with planes
// swapped; the rest is its data.
#include "fuzz/decodemessage.h"
#include "platform/window/messagebox.h"
#include "rvlib/rvprt/lanner/balconfiguration.h"
#include "rvlib/rvprt/lanner/moduleconfiguration.h"
#include "rvlib/rvprt/lanner/modulediagnosisdata.h"
#include "rvlib/rvprt/lanner/moduleidentification.h"
#include "rvlib/rvprt/lanner/modulestateresponse.h"
#include "rvlib/rvprt/lanner/set.h"

namespace {

/// What a set promises besides: planes exist under their own IDs only.
void DecodeSet(std::span<const std::uint8_t> Input) {
    DecodeMessage<Lanner::CSet>(Input);
    const std::vector<std::uint8_t> Data(Input.begin(), Input.end());
    Lanner::CSet Set("fuzz");
    std::uint32_t nUsed = 0;
    if (Set.Decode(Data.data(), static_cast<std::uint32_t>(Data.size()), &nUsed) == 0) {
        return;
    }
    Require(nUsed == Data.size());
    const bool bSwap = Set.GetSetParams() != nullptr && Set.GetSetParams()->Swap != 0;
    Require(Set.GetPlane1() == nullptr || Set.GetPlane1()->ID == (bSwap ? 1 : 0));
    Require(Set.GetPlane2() == nullptr || Set.GetPlane2()->ID == (bSwap ? 0 : 1));
    TakeShownMessages();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    OpenAllTopics();
    if (nSize == 0) {
        return 0;
    }
    const std::span Data(pData + 1, nSize - 1);
    const std::uint32_t Swap = pData[0] >> 7U;
    switch ((pData[0] & 0x7FU) % 8) {
        case 0:
            DecodeMessage<Lanner::CModuleStateResponse>(Data, Swap);
            break;
        case 1:
            DecodeSet(Data);
            break;
        case 2:
            DecodeMessage<Lanner::CSetParams>(Data);
            break;
        case 3:
            DecodeMessage<Lanner::CPlane>(Data);
            break;
        case 4:
            DecodeMessage<Lanner::CBalConfiguration>(Data, Swap);
            break;
        case 5:
            DecodeMessage<Lanner::CModuleConfiguration>(Data);
            break;
        case 6:
            DecodeMessage<Lanner::CModuleIdentification>(Data);
            break;
        default:
            DecodeMessage<Lanner::CModuleDiagnosisData>(Data);
            break;
    }
    return 0;
}
