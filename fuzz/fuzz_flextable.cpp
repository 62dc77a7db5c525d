// A flex table under any sequence of clicks, keys, wheel turns, pasted texts and changes by the program.
#include "fuzz/toolkit.h"
#include "tests/sequences/tablesequence.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    PlaySequence<CTableSequence>({pData, nSize});
    return 0;
}
