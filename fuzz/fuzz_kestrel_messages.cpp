// Each decoder of the Kestrel family on its own. The input's first byte chooses it, the rest is its data.
#include <cstdint>
#include <vector>

#include "fuzz/fuzzing.h"
#include "rvlib/rvprt/kestrel/moduleidentification.h"
#include "rvlib/rvprt/kestrel/modulestateresponse.h"
#include "rvlib/rvprt/kestrel/set.h"

namespace {

template <class Message>
void Decode(const std::vector<std::uint8_t>& rData) {
    Message Decoded("fuzz");
    std::uint32_t nUsed = 0;
    const auto nSize = static_cast<std::uint32_t>(rData.size());
    const int nDecoded = Decoded.Decode(rData.data(), nSize, &nUsed);
    Require(nUsed <= nSize && (nDecoded != 0) == (nUsed != 0));
    Decoded.Log();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    OpenAllTopics();
    if (nSize == 0) {
        return 0;
    }
    // A buffer of its own, so that a read beyond the data is found.
    const std::vector<std::uint8_t> Data(pData + 1, pData + nSize);
    switch (pData[0] % 3) {
        case 0:
            Decode<Kestrel::CModuleStateResponse>(Data);
            break;
        case 1:
            Decode<Kestrel::CSet>(Data);
            break;
        default:
            Decode<Kestrel::CModuleIdentification>(Data);
            break;
    }
    return 0;
}
