// Live windows of the module in one process, each in a running measurement with a balancing module that
// reports at 20 Hz: what share of a core they take. For comparison the same modules with nobody at the line.
// An address is one byte, so that every 250th window hears the same module; each has its host, its store and
// its measurement to itself.
//
//     bench_windows [--windows 1000] [--seconds 20]
#include <sys/resource.h>

#include <CLI/CLI.hpp>
#include <QApplication>
#include <algorithm>
#include <cstdio>
#include <ctime>
#include <map>
#include <memory>
#include <vector>

#include "console/hostwindow.h"
#include "console/installation.h"
#include "console/modulelibrary.h"
#include "contract/actions.h"
#include "contract/hostmessages.h"
#include "contract/initflags.h"
#include "contract/prebalprogress.h"
#include "platform/rvcom/linediscipline.h"
#include "platform/rvcom/rvcom.h"
#include "platform/rvmdb/prebaldatabase.h"
#include "platform/system/virtualeventloop.h"
#include "simulator/simulator.h"

namespace {

constexpr int FIRST_ADDRESS = 2;
constexpr int ADDRESSES = 250;

double GetCpuSeconds() {
    timespec Time{};
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &Time);
    return static_cast<double>(Time.tv_sec) + static_cast<double>(Time.tv_nsec) / 1e9;
}

/// A line with a simulated machine at each address. What goes to an address reaches its machine alone, so
/// that the machines don't decode what they needn't.
class CBus : public IFByteLink {
public:
    explicit CBus(int nMachines) : m_Decoder([this](auto Frame) { Route(Frame); }) {
        CRotorFile Rotor = CRotorFile::GetBuiltIn();
        std::string Error;
        for (int i = 0; i < nMachines; ++i) {
            const auto Address = static_cast<std::uint8_t>(FIRST_ADDRESS + i);
            CLinkPair Pair = MakeLinkPair();
            Pair.m_pFirst->OnBytes = [this](auto Bytes) {
                if (OnBytes) {
                    OnBytes(Bytes);
                }
            };
            Pair.m_pFirst->Open();
            auto pMachine = CSimulator::Create(Rotor, std::move(Pair.m_pSecond), {Address}, Error);
            pMachine->Open();
            m_Machines[Address] = {std::move(pMachine), std::move(Pair.m_pFirst)};
        }
    }
    void SetSpeed(double Rpm) {
        for (auto& [Address, rMachine] : m_Machines) {
            rMachine.m_pMachine->Carry({{"speed", Rpm}});
        }
    }

    void Open() override {
        m_bOpen = true;
        IFEventLoop::Current().Post([this] {
            if (OnOpened) {
                OnOpened();
            }
        });
    }
    void Close() override { m_bOpen = false; }
    bool IsOpen() const override { return m_bOpen; }
    bool Write(std::span<const std::uint8_t> Bytes) override {
        m_Decoder.Put(Bytes);
        return true;
    }
    std::string GetName() const override { return "bus"; }

private:
    struct CMachine {
        std::unique_ptr<CSimulator> m_pMachine;
        std::unique_ptr<IFByteLink> m_pLine;
    };
    void Route(std::span<const std::uint8_t> Frame) {
        constexpr std::size_t DESTINATION = 2;
        if (const auto Found = m_Machines.find(Frame[DESTINATION]); Found != m_Machines.end()) {
            Found->second.m_pLine->Write(LineDiscipline::Encode(Frame));
        }
    }

    std::map<std::uint8_t, CMachine> m_Machines;
    LineDiscipline::CDecoder m_Decoder;
    bool m_bOpen = false;
};

struct CWindow {
    CHostWindow m_Host;
    CWnd* m_pModule = nullptr;

    CPreBalProgress GetProgress() const {
        CPreBalProgress Progress;
        m_pModule->SendMessage(WM_RV_QUERYPROGRESS, 0, reinterpret_cast<LPARAM>(&Progress));
        return Progress;
    }
};

/// Processor seconds a second of the machines' time.
double Measure(CVirtualEventLoop& rLoop, int nSeconds) {
    const double Before = GetCpuSeconds();
    rLoop.Advance(static_cast<std::uint32_t>(nSeconds) * 1000);
    return (GetCpuSeconds() - Before) / nSeconds;
}

int Run(int nWindows, int nSeconds) {
    // Three files of the store a window.
    rlimit Files{};
    ::getrlimit(RLIMIT_NOFILE, &Files);
    Files.rlim_cur = Files.rlim_max;
    ::setrlimit(RLIMIT_NOFILE, &Files);
    const CConsoleInstallation Installation("", true);
    PreBalDB::SetDatabaseConnection(Installation.GetDatabaseConnection());
    CVirtualEventLoop Loop;
    CModuleLibrary Library(BENCH_BIN_DIR "/librtr_trim.so");
    auto pBus = std::make_unique<CBus>(std::min(nWindows, ADDRESSES));
    CBus& rBus = *pBus;
    constexpr double SPEED = 3000.0;
    rBus.SetSpeed(SPEED);
    Loop.Advance(10000);
    const double Alone = Measure(Loop, nSeconds);
    rvCOM::SetLink(std::move(pBus));
    Loop.RunPosted();
    std::vector<std::unique_ptr<CWindow>> Windows;
    const double BeforeOpening = GetCpuSeconds();
    for (int i = 0; i < nWindows; ++i) {
        CWindow& rWindow = *Windows.emplace_back(std::make_unique<CWindow>());
        rWindow.m_Host.Open(Library.GetPreferredSize().Size());
        rWindow.m_pModule = Library.GetWindow();
        rWindow.m_pModule->Create(&rWindow.m_Host, rWindow.m_Host.GetClientRect(), 1);
        const CInitFlags Flags(PreBalDB::CPreBalDatabase::eModePlane1, CInitFlags::NO_SLAVE,
                               CInitFlags::KESTREL);
        rWindow.m_pModule->SendMessage(WM_RV_INITWINDOW, FIRST_ADDRESS + i % ADDRESSES, Flags.GetValue());
        Loop.Advance(200);
    }
    Loop.Advance(5000);
    const double Opening = GetCpuSeconds() - BeforeOpening;
    int nMeasuring = 0;
    for (const auto& rWindow : Windows) {
        rWindow->m_pModule->SendMessage(WM_RV_MODULEACTION, Actions::eStart);
        Loop.RunPosted();
    }
    // Step by step to the first measurement, which then goes on until somebody accepts it.
    for (int nPress = 0; nPress < 2; ++nPress) {
        for (const auto& rWindow : Windows) {
            if (!rWindow->GetProgress().m_Measuring.m_bSampling) {
                rWindow->m_pModule->SendMessage(WM_RV_MODULEACTION, Actions::eNext);
            }
        }
        Loop.Advance(5000);
    }
    for (const auto& rWindow : Windows) {
        nMeasuring += rWindow->GetProgress().m_Measuring.m_bSampling ? 1 : 0;
    }
    const double Total = Measure(Loop, nSeconds);
    std::printf("%d windows opened in %.2f s of processor time (%.2f ms each), %d of them measuring\n",
                nWindows, Opening, 1000.0 * Opening / nWindows, nMeasuring);
    std::printf("%d simulated modules at 20 Hz alone: %.3f of a core\n", std::min(nWindows, ADDRESSES),
                Alone);
    std::printf("with the windows: %.3f of a core; limit 1.000\n", Total);
    for (const auto& rWindow : Windows) {
        rWindow->m_pModule->SendMessage(WM_RV_DESTROYPENDING);
        rWindow->m_pModule->DestroyWindow();
        Library.DeleteDllWindow(rWindow->m_pModule);
    }
    rvCOM::SetLink(nullptr);
    return nMeasuring == nWindows && Total <= 1.0 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    int nWindows = 1000;
    int nSeconds = 20;
    CLI::App Line("Live windows in one process");
    Line.add_option("--windows", nWindows)->check(CLI::Range(1, 10000))->capture_default_str();
    Line.add_option("--seconds", nSeconds, "of the machines' time")
        ->check(CLI::Range(1, 3600))
        ->capture_default_str();
    CLI11_PARSE(Line, argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication App(argc, argv);
    return Run(nWindows, nSeconds);
}
