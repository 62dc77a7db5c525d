// A property tree under any sequence of mouse, keys, softkeys, insertions, deletions and refusals.
#include "fuzz/toolkit.h"
#include "tests/sequences/treesequence.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    PlaySequence<CTreeSequence>({pData, nSize});
    return 0;
}
