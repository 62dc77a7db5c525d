// Each decoder of the Kestrel family on its own. The input's first byte chooses it, the rest is its data.
#include "fuzz/decodemessage.h"
#include "rvlib/rvprt/kestrel/moduleidentification.h"
#include "rvlib/rvprt/kestrel/modulestateresponse.h"
#include "rvlib/rvprt/kestrel/set.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    OpenAllTopics();
    if (nSize == 0) {
        return 0;
    }
    const std::span Data(pData + 1, nSize - 1);
    switch (pData[0] % 3) {
        case 0:
            DecodeMessage<Kestrel::CModuleStateResponse>(Data);
            break;
        case 1:
            DecodeMessage<Kestrel::CSet>(Data);
            break;
        default:
            DecodeMessage<Kestrel::CModuleIdentification>(Data);
            break;
    }
    return 0;
}
