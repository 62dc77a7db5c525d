// The file of weight positions: any bytes are read in full or refused by CArchiveException, and what was read
// is written and read again without a change.
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "platform/system/archive.h"
#include "rvdlm/m_rtr/rtr_trim/methods/weightpositionstore.h"

namespace {

std::vector<std::uint8_t> Write(CWeightPositionStore& rStore) {
    CArchive Archive(CArchive::eStore);
    rStore.Serialize(Archive);
    return Archive.GetBytes();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    CWeightPositionStore Store;
    try {
        CArchive Archive(CArchive::eLoad, std::vector<std::uint8_t>(pData, pData + nSize));
        Store.Serialize(Archive);
    } catch (const CArchiveException&) {
        Write(Store);  // what was read so far is still in order
        return 0;
    }
    const std::vector<std::uint8_t> First = Write(Store);
    CWeightPositionStore Again;
    CArchive Archive(CArchive::eLoad, First);
    Again.Serialize(Archive);
    if (Archive.GetRemaining() != 0 || Write(Again) != First) {
        std::abort();
    }
    return 0;
}
