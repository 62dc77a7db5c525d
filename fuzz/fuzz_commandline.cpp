// The command line: any arguments, one a line of the input, are taken or refused with one line that says why;
// of the program itself, and of its commands, which aren't carried out.
#include <cstdint>
#include <string>
#include <vector>

#include "console/command.h"
#include "console/options.h"
#include "fuzz/fuzzing.h"

namespace {

std::vector<std::string> Split(const std::uint8_t* pData, std::size_t nSize) {
    std::vector<std::string> Arguments{"run"};
    Arguments.emplace_back();
    for (std::size_t i = 0; i < nSize; ++i) {
        if (pData[i] == '\n') {
            Arguments.emplace_back();
        } else if (pData[i] != 0) {
            Arguments.back() += static_cast<char>(pData[i]);
        }
    }
    return Arguments;
}

/// One line, and not an empty one.
void RequireLine(const std::string& rText) {
    Require(!rText.empty() && rText.find('\n') == std::string::npos);
}

/// These become another program.
bool IsCarriedOut(const std::string& rCommand) {
    return rCommand != "simulator" && rCommand != "nc";
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    const std::vector<std::string> Arguments = Split(pData, nSize);
    std::vector<const char*> Pointers;
    for (const std::string& rArgument : Arguments) {
        Pointers.push_back(rArgument.c_str());
    }
    const int nArguments = static_cast<int>(Pointers.size());
    Pointers.push_back(nullptr);
    for (const CCommand& rCommand : GetCommands()) {
        if (Arguments[1] == rCommand.m_pName && IsCarriedOut(Arguments[1])) {
            std::string Text;
            CCommandFrame::ms_OnParsed = [&Text](const std::string& rText) { Text = rText; };
            const int Status = rCommand.m_pRun(nArguments - 1, Pointers.data() + 1);
            Require(Status == 0 || Status == 3);
            if (Status == 3) {
                RequireLine(Text);
            }
            return 0;
        }
    }
    CCommandLineEnd End;
    const auto Options = ParseCommandLine(nArguments, Pointers.data(), End);
    if (!Options && End.m_ExitCode != 0) {
        Require(End.m_ExitCode == 3);
        RequireLine(End.m_Text);
    }
    return 0;
}
