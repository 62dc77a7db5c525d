// The simulator as a program of its own: frames of the balancing modules on one link, the machine's control
// link on another, until it is interrupted.
#include <CLI/CLI.hpp>
#include <QCoreApplication>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/qt/endsignals.h"
#include "platform/qt/qteventloop.h"
#include "platform/rvcom/bytelink.h"
#include "platform/system/version.h"
#include "simulator/machineserver.h"
#include "simulator/rotorfile.h"
#include "simulator/simulator.h"

namespace {

constexpr int BAD_ARGUMENTS = 3;

struct COptions {
    std::string m_Frames;
    std::string m_Machine;
    std::string m_Rotor;
    std::string m_Modules;
    std::vector<std::uint8_t> m_Addresses;
    std::uint32_t m_Baud = 0;
};

/// One line, as scripts and service staff expect it.
int Fail(std::string Text) {
    for (char& rCharacter : Text) {
        rCharacter = (rCharacter == '\n') ? ' ' : rCharacter;
    }
    std::fprintf(stderr, "simulator: %s\n", Text.c_str());
    return BAD_ARGUMENTS;
}

void Announce(const char* pWhat, const std::string& rLink) {
    std::printf("%s on %s\n", pWhat, rLink.c_str());
    std::fflush(stdout);
}

int RunSimulator(const COptions& rOptions, CEndSignals& rSignals) {
    std::optional<CRotorFile::Modules> Family;
    if (!rOptions.m_Modules.empty()) {
        Family = CRotorFile::ModulesFromString(rOptions.m_Modules);
        if (!Family) {
            return Fail("--modules must be one of kestrel, kestrel-pair, lanner, not \"" +
                        rOptions.m_Modules + "\"");
        }
    }
    std::string Error;
    const auto Rotor = rOptions.m_Rotor.empty()
                           ? CRotorFile::GetBuiltIn(Family.value_or(CRotorFile::eKestrel))
                           : CRotorFile::Read(rOptions.m_Rotor, Error, Family);
    if (!Rotor) {
        return Fail("--rotor " + Error);
    }
    auto pLink = MakeListeningLink(rOptions.m_Frames, Error);
    if (!pLink) {
        return Fail("--frames " + Error);
    }

    CQtEventLoop Loop;
    bool bReady = false;
    int nExit = 0;
    pLink->OnClosed = [&](const std::string& rWhy) {
        // Once it listens, a client that goes is nothing special.
        if (!bReady) {
            nExit = Fail("--frames " + rOptions.m_Frames + " can't be opened: " + rWhy);
            Loop.Quit();
        }
    };
    const auto pSimulator = CSimulator::Create(*Rotor, std::move(pLink), rOptions.m_Addresses, Error);
    if (!pSimulator) {
        return Fail(Error);
    }
    if (const auto Answer = pSimulator->Carry({{"line", {{"baud", rOptions.m_Baud}}}});
        Answer.contains("error")) {
        return Fail("--baud: " + Answer["error"].get<std::string>());
    }
    CMachineServer Server(*pSimulator);
    if (!rOptions.m_Machine.empty() && !Server.Listen(rOptions.m_Machine, Error)) {
        return Fail("--machine " + rOptions.m_Machine + " can't be opened: " + Error);
    }
    rSignals.Watch([&Loop] { Loop.Quit(); });

    pSimulator->Open();
    // A link that can't be opened has queued its complaint by now.
    Loop.Post([&] {
        if (nExit != 0) {
            return;
        }
        bReady = true;
        Announce("frames", pSimulator->GetLink().GetName());
        if (rOptions.m_Machine.empty()) {
            // Nobody can command a speed, so the spindle is brought to the rotor's own.
            pSimulator->Carry({{"speed", Rotor->m_SpeedRpm}});
        } else {
            Announce("machine", Server.GetName());
        }
    });
    Loop.Run();
    return nExit;
}

int Main(int argc, char** argv) {
    CEndSignals Signals;
    QCoreApplication Application(argc, argv);

    COptions Options;
    CLI::App App{"A rotor on a spindle with its balancing modules: frames on one link, control on another"};
    App.add_option(
           "--frames", Options.m_Frames,
           "where the modules' frames go: tcp:HOST:PORT (listens, port 0 takes a free one) or pty:PATH")
        ->required();
    App.add_option(
        "--machine", Options.m_Machine,
        "tcp:HOST:PORT to listen at for the machine's control link; without it the spindle turns at "
        "the rotor's speed");
    App.add_option("--rotor", Options.m_Rotor, "rotor file; without it a built-in rotor");
    App.add_option("--modules", Options.m_Modules,
                   "kestrel, kestrel-pair or lanner in place of the rotor file's");
    App.add_option("--addresses", Options.m_Addresses,
                   "A[,B], the modules' addresses; 5 and 6 without it, 9 for lanner")
        ->delimiter(',');
    App.add_option(
        "--baud", Options.m_Baud,
        "the modules' own rate: on a pseudo terminal set to another one each end takes garbage from "
        "the line; without it they have whatever the other end has");
    App.set_version_flag("--version", std::string("simulator ") + GetProjectVersion(), "The version");
    try {
        App.parse(argc, argv);
    } catch (const CLI::Success& rHelpOrVersion) {
        return App.exit(rHelpOrVersion);
    } catch (const CLI::ParseError& rError) {
        return Fail(std::string(rError.what()) + "; --help tells the options");
    }
    return RunSimulator(Options, Signals);
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return Main(argc, argv);
    } catch (const std::exception& rError) {
        return Fail(rError.what());
    }
}
