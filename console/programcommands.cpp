#include "console/programcommands.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <string>
#include <system_error>
#include <vector>

#include "console/command.h"
#include "platform/system/files.h"

namespace {

int Become(const char* pProgram, int argc, const char* const* argv) {
    const std::string Path = Files::GetBesideProgram(pProgram);
    // What its help is to call it.
    std::string Name = GetCommandName() + " " + argv[0];
    std::vector<char*> Arguments{Name.data()};
    for (int i = 1; i < argc; ++i) {
        Arguments.push_back(const_cast<char*>(argv[i]));  // the system's own signature: it changes none
    }
    Arguments.push_back(nullptr);
    ::execv(Path.c_str(), Arguments.data());
    std::fprintf(stderr, "%s can't be started: %s\n", Path.c_str(),
                 std::generic_category().message(errno).c_str());
    return 3;
}

}  // namespace

int RunSimulatorProgram(int argc, const char* const* argv) {
    return Become("simulator", argc, argv);
}

int RunNcProgram(int argc, const char* const* argv) {
    return Become("nc-simulator", argc, argv);
}
