// A compiled help file. Its reader unpacks it in a process of its own, since the library that does so trusts
// what it reads: whatever a file does there, it is read or found damaged here. An input that begins with "S"
// is instead what such a process has sent after it was led astray.
#include <cstdint>
#include <cstdio>
#include <span>
#include <string>

#include "fuzz/fuzzing.h"
#include "platform/help/compiledhelp.h"
#include "platform/system/files.h"
#include "platform/system/temporarydirectory.h"

namespace {

void Look(const CCompiledHelp& rHelp) {
    const std::vector<std::string> Pages = rHelp.GetPages();
    Require(rHelp.GetState() == CCompiledHelp::State::eRead || Pages.empty());
    for (const std::string& rPage : Pages) {
        Require(rHelp.Find(rPage) != nullptr);
    }
    rHelp.FindByEnding(".hhc");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    if (nSize > 0 && pData[0] == 'S') {
        const std::vector<char> Sent(pData + 1, pData + nSize);
        Look(CCompiledHelp(std::span<const char>(Sent)));
        return 0;
    }
    static const CTemporaryDirectory s_Directory;
    const std::string File = (s_Directory.GetPath() / "help.chm").string();
    Require(Files::WriteAll(File, {pData, pData + nSize}));
    constexpr int LIMIT = 500;
    Look(CCompiledHelp(File, LIMIT));
    return 0;
}
