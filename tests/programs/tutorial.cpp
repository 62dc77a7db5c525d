// Writes the tutorial from the training's own situations: their texts, and a picture of the window where each
// of them counts, played under virtual time. `tutorial --docs docs` renews docs/tutorial.md and its pictures.
#include <QApplication>
#include <QImage>
#include <QStyleFactory>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <string_view>

#include "console/mainwindow.h"
#include "console/operatorrules.h"
#include "console/trainingsetup.h"
#include "console/trainingview.h"
#include "platform/rvldb/gettext.h"
#include "platform/system/temporarydirectory.h"
#include "platform/system/virtualeventloop.h"

namespace {

namespace fs = std::filesystem;
using Moment = std::function<bool(const CSituation&)>;

constexpr std::uint32_t LONGEST = 600000;  // ms of a run

/// When there is something to see: the slip, the warning, the lost lock, else the verdict. Null: before the
/// run, in the configuration.
Moment ChooseMoment(const CTrainingSituation& rSituation) {
    if (rSituation.m_Setting != CTrainingSituation::Setting::eRotor) {
        return nullptr;
    }
    if (rSituation.m_Slip != CTrainingSituation::Slip::eNone) {
        return [](const CSituation& rNow) { return rNow.m_Progress.m_State == "eTestUnbalanceSetWeights"; };
    }
    if (rSituation.m_Warning != 0) {
        return [Warning = rSituation.m_Warning](const CSituation& rNow) {
            return rNow.m_Progress.m_WarningMode == Warning;
        };
    }
    if (rSituation.m_bLosesLock) {
        return [](const CSituation& rNow) { return IsVerdict(rNow.m_Notification.GetStep()); };
    }
    return IsMeasuredVerdict;
}

void PlayTo(const Moment& rMoment, CVirtualEventLoop& rLoop, CConsoleSession& rSession,
            CTrainingLesson& rLesson) {
    const bool bAgain = rLesson.GetSituation().m_Goal == CTrainingSituation::Goal::eRebalanced;
    rSession.StartProcedure(bAgain ? Actions::eRebalance : Actions::eStart);
    COperator Operator(rSession, rSession.GetMachine(), rSession.GetWorkingSpeed());
    const std::array<CHoleRing, 2> Rings = rSession.GetHoleRings();
    Operator.SetHoleRings(Rings);
    bool bReached = false;
    Operator.IsHeld = [&] { return bReached = bReached || rMoment(rSession.Look()); };
    Operator.Start();
    rLoop.RunUntil([&] { return bReached; }, LONGEST);
    Operator.Stop();
    if (rLesson.GetSituation().m_Slip != CTrainingSituation::Slip::eNone) {
        for (const CFitting& rFitting : rLesson.Fit(FindFittings(rSession.Look(), Rings))) {
            rSession.GetMachine()->Request(MakeRequest(rFitting), [](const nlohmann::json&) {});
        }
    }
    rLoop.Advance(1500);
}

/// The toolkit's own events, its layouts among them, wait until somebody sends them under virtual time.
void Settle(CVirtualEventLoop& rLoop) {
    constexpr int ROUNDS = 5;  // a place found by a layout may ask for another
    constexpr std::uint32_t BETWEEN = 20;
    for (int i = 0; i < ROUNDS; ++i) {
        QApplication::sendPostedEvents();
        rLoop.Advance(BETWEEN);
    }
}

bool TakePicture(const CTrainingSituation& rSituation, std::size_t Place, const fs::path& rFile) {
    COptions Options;
    Options.m_bTraining = true;
    const CTrainingSetup Setup(rSituation, Options);
    CVirtualEventLoop Loop;
    CConsoleSession Session(Setup.GetOptions(), &Setup.GetRotor(), Setup.GetDatabaseFile());
    Setup.Begin(Session);
    CTrainingLesson Lesson(rSituation, Session);
    const CTemporaryDirectory Directory;
    CTrainingTicks Ticks(fs::path(Directory.GetPath()) / "training.json");
    CMainWindow Window(Session);
    Window.Train(*new CTrainingView(Lesson, Ticks, Place, &Window));
    Window.resize(1100, 660);
    Window.show();
    Settle(Loop);
    Loop.Advance(3000);
    if (const Moment Wanted = ChooseMoment(rSituation)) {
        PlayTo(Wanted, Loop, Session, Lesson);
    }
    Settle(Loop);
    constexpr int SMALLEST = 0;  // the format keeps all; this says how hard it is packed
    const bool bSaved = Window.grab()
                            .toImage()
                            .convertToFormat(QImage::Format_RGB888)
                            .save(QString::fromStdString(rFile.string()), "PNG", SMALLEST);
    Window.BreakOff();
    return bSaved;
}

int Write(const fs::path& rDocs) {
    fs::create_directories(rDocs / "tutorial");
    std::ofstream Out(rDocs / "tutorial.md");
    Out << "# Tutorial\n\n"
           "Twelve situations that an operator meets, to be mastered in the window: `./run --training`. Each "
           "begins on a simulated\nmachine with a configuration of its own, so that nobody's real ones are "
           "touched; choose one below the page, do what it says,\nand the line tells what happened: by the "
           "page's verdict, and by what the simulated rotor really has left. What is mastered\ngets a tick, "
           "which `training.json` in the configuration directory keeps. `./run --demo` plays a whole run by "
           "itself before,\nand explains it.\n\n"
           "At the drawn machine weights are dragged to their places, or turned by the arrow keys (with "
           "Shift "
           "by ten degrees); *Fit as\nshown* puts them where the page shows them. A screw is chosen, then a "
           "hole is pressed; pressed again, it comes out. Nothing can\nbe fitted while the spindle turns. "
           "*Truth* shows what is really left, *Faults* disturbs the machine.\n\n"
           "Written by `build/release/bin/tutorial --docs docs` from the training itself.\n";
    std::size_t Place = 0;
    for (const CTrainingSituation& rSituation : GetTrainingSituations()) {
        const std::string Picture = std::string("tutorial/") + rSituation.m_pId + ".png";
        const std::string Title = GetText(rSituation.m_pTitleKey);
        Out << "\n## " << Place + 1 << ". " << Title << "\n\n"
            << GetText(rSituation.m_pTaskKey) << "\n\n![" << Title << "](" << Picture << ")\n\n"
            << GetText(rSituation.m_pLessonKey) << "\n";
        if (!TakePicture(rSituation, Place++, rDocs / Picture)) {
            std::fprintf(stderr, "%s can't be written.\n", Picture.c_str());
            return 1;
        }
    }
    return Out.flush() ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3 || std::string_view(argv[1]) != "--docs") {
        std::fprintf(stderr, "usage: tutorial --docs DIRECTORY\n");
        return 3;
    }
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication App(argc, argv);
    QApplication::setStyle(QStyleFactory::create("fusion"));
    try {
        return Write(argv[2]);
    } catch (const std::exception& rError) {
        std::fprintf(stderr, "%s\n", rError.what());
        return 1;
    }
}
