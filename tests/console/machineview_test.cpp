// The drawn machine with real presses, over a simulator in this process.
#include "console/machineview.h"

#include <gmock/gmock.h>

#include <QAbstractButton>
#include <QComboBox>
#include <QLabel>
#include <QTest>
#include <memory>

#include "console/rotorview.h"
#include "platform/rvcom/bytelink.h"
#include "platform/rvldb/gettext.h"
#include "platform/system/virtualeventloop.h"
#include "simulator/simulator.h"

namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class MachineViewTest : public testing::Test {
protected:
    ~MachineViewTest() override { m_pView.reset(); }

    void Open(const CRotorFile& rRotor, const CMachineMeans& rMeans, QSize Size = {300, 320}) {
        CLinkPair Pair = MakeLinkPair();
        std::string Error;
        m_pSimulator = CSimulator::Create(rRotor, std::move(Pair.m_pFirst), {}, Error);
        ASSERT_NE(m_pSimulator, nullptr) << Error;
        m_pView = std::make_unique<CMachineView>(*m_pSimulator, 3000U, nullptr);
        m_pView->OnSay = [this](const std::string& rText) { m_Said.push_back(rText); };
        m_pView->Show(rMeans);
        m_pView->resize(Size);
        m_pView->setAttribute(Qt::WA_DontShowOnScreen);
        m_pView->show();
        m_pView->activateWindow();
        m_Loop.Advance(300);
    }
    void OpenWithWeights() { Open(CRotorFile::GetBuiltIn(), Weights()); }
    void OpenWithScrews() {
        CRotorFile Rotor;
        Rotor.m_Planes[0].m_Holes = 24;
        Rotor.m_Planes[0].m_Scale = CRotorFile::eCounterClockwise;
        CMachineMeans Means;
        Means[0] = {true, true, {{"M6x8", 1.5}, {"M6x12", 2.5}}};
        Open(Rotor, Means);
    }
    static CMachineMeans Weights() {
        CMachineMeans Means;
        Means[0].m_bUsed = true;
        return Means;
    }
    CRotorView& Rotor(std::size_t Plane = 0) {
        for (QWidget* pWidget : m_pView->findChildren<QWidget*>()) {
            auto* const pRotor = dynamic_cast<CRotorView*>(pWidget);
            if (pRotor != nullptr && pRotor->GetShown().m_Plane == Plane) {
                return *pRotor;
            }
        }
        throw std::logic_error("no rotor");
    }
    QAbstractButton& Key(const QString& rText) {
        for (QAbstractButton* pKey : m_pView->findChildren<QAbstractButton*>()) {
            if (pKey->accessibleName() == rText) {
                return *pKey;
            }
        }
        throw std::logic_error("no key " + rText.toStdString());
    }
    void Press(const QString& rText) {
        QTest::mouseClick(&Key(rText), Qt::LeftButton);
        m_Loop.Advance(100);
    }
    static QPoint AtAngle(const CRotorView& rRotor, double Angle) {
        const CRotorGeometry Geometry = rRotor.GetGeometry();
        return Geometry.GetPoint(Angle, Geometry.GetMiddle()).toPoint();
    }
    void Drag(CRotorView& rRotor, std::size_t Slot, const QPoint& rTo) {
        QTest::mousePress(&rRotor, Qt::LeftButton, {}, rRotor.GetWeightPlace(Slot).toPoint());
        QTest::mouseMove(&rRotor, rTo);
        QTest::mouseRelease(&rRotor, Qt::LeftButton, {}, rTo);
        m_Loop.Advance(100);
    }
    void Key(CRotorView& rRotor, Qt::Key Pressed, Qt::KeyboardModifiers Modifiers = Qt::NoModifier) {
        QTest::keyClick(&rRotor, Pressed, Modifiers);
        m_Loop.Advance(100);
    }
    const CRotor& Real() const { return m_pSimulator->GetRotor(); }
    std::string GetStateLine() const {
        std::string Lines;
        for (const QLabel* pLabel : m_pView->findChildren<QLabel*>()) {
            Lines += pLabel->isVisibleTo(m_pView.get()) ? pLabel->text().toStdString() + "\n" : "";
        }
        return Lines;
    }

    CVirtualEventLoop m_Loop;
    std::unique_ptr<CSimulator> m_pSimulator;
    std::unique_ptr<CMachineView> m_pView;
    std::vector<std::string> m_Said;
};

}  // namespace

TEST_F(MachineViewTest, AWeightIsDraggedFromTheHubToItsPlaceInWholeDegrees) {
    OpenWithWeights();
    EXPECT_THAT(Real().GetWeights(0), IsEmpty());
    const QPoint To = AtAngle(Rotor(), 90);
    Drag(Rotor(), 0, To);
    EXPECT_THAT(Real().GetWeights(0), ElementsAre(testing::AllOf(testing::Ge(88), testing::Le(92))));
    EXPECT_EQ(Real().GetWeights(0)[0], Rotor().GetGeometry().GetAngle(To));
    EXPECT_GT(To.x(), Rotor().GetGeometry().GetCenter().x()) << "clockwise from the top, as the scale counts";
}

TEST_F(MachineViewTest, AWeightThatIsDraggedOffTheRotorIsTakenOff) {
    OpenWithWeights();
    m_pSimulator->Carry({{"weights", {{"plane", 1}, {"angles", {30, 180}}}}});
    m_Loop.Advance(300);
    Drag(Rotor(), 0, Rotor().GetGeometry().GetCenter().toPoint());
    EXPECT_THAT(Real().GetWeights(0), ElementsAre(180));
    Drag(Rotor(), 0, AtAngle(Rotor(), 0));
    EXPECT_THAT(Real().GetWeights(0), SizeIs(2)) << "and lies there to be put back";
}

TEST_F(MachineViewTest, APressWithoutAMoveLeavesAWeightWhereItIs) {
    OpenWithWeights();
    m_pSimulator->Carry({{"weights", {{"plane", 1}, {"angles", {30, 180}}}}});
    m_Loop.Advance(300);
    const QPoint Place = Rotor().GetWeightPlace(0).toPoint() + QPoint(4, 4);
    QTest::mousePress(&Rotor(), Qt::LeftButton, {}, Place);
    QTest::mouseRelease(&Rotor(), Qt::LeftButton, {}, Place);
    m_Loop.Advance(300);
    EXPECT_THAT(Real().GetWeights(0), ElementsAre(30, 180));
}

TEST_F(MachineViewTest, ArrowKeysTurnTheWeightThatHasTheFocus) {
    OpenWithWeights();
    m_pSimulator->Carry({{"weights", {{"plane", 1}, {"angles", {0, 180}}}}});
    m_Loop.Advance(300);
    Rotor().setFocus(Qt::TabFocusReason);
    Key(Rotor(), Qt::Key_Left);
    EXPECT_THAT(Real().GetWeights(0), ElementsAre(359, 180));
    Key(Rotor(), Qt::Key_Right, Qt::ShiftModifier);
    EXPECT_THAT(Real().GetWeights(0), ElementsAre(9, 180));
    Key(Rotor(), Qt::Key_Tab);
    Key(Rotor(), Qt::Key_Up);
    EXPECT_THAT(Real().GetWeights(0), ElementsAre(9, 181));
    Key(Rotor(), Qt::Key_Delete);
    EXPECT_THAT(Real().GetWeights(0), ElementsAre(9));
}

TEST_F(MachineViewTest, QuickKeysLoseNoStep) {
    OpenWithWeights();
    m_pSimulator->Carry({{"weights", {{"plane", 1}, {"angles", {0, 180}}}}});
    m_Loop.Advance(300);
    for (int i = 0; i < 5; ++i) {
        QTest::keyClick(&Rotor(), Qt::Key_Up);
    }
    m_Loop.Advance(100);
    EXPECT_THAT(Real().GetWeights(0), ElementsAre(5, 180));
}

TEST_F(MachineViewTest, NothingIsFittedWhileItTurnsAndTheViewSaysWhy) {
    OpenWithWeights();
    m_pSimulator->Carry({{"weights", {{"plane", 1}, {"angles", {30, 180}}}}});
    Press("Start spindle");
    m_Loop.Advance(5000);
    m_pView->GetFittings = [] { return std::vector<CFitting>{{0, 0, {10, 20}, false, {}}}; };
    Drag(Rotor(), 0, AtAngle(Rotor(), 90));
    Key(Rotor(), Qt::Key_Up);
    Press("Fit as shown");
    EXPECT_THAT(Real().GetWeights(0), ElementsAre(30, 180));
    ASSERT_THAT(m_Said, SizeIs(3));
    EXPECT_THAT(m_Said, testing::Each("Stop the spindle first: 3000 rpm"));
    EXPECT_THAT(GetStateLine(), HasSubstr("Stop the spindle first: 3000 rpm"));
    m_Loop.Advance(6000);
    EXPECT_THAT(GetStateLine(), HasSubstr("3000 rpm, locked")) << "said for a while";
    Press("Stop spindle");
    m_Loop.Advance(1000);
    Press("Fit as shown");
    EXPECT_THAT(Real().GetWeights(0), ElementsAre(30, 180)) << "it still runs out";
    m_Loop.Advance(2000);
    Press("Fit as shown");
    EXPECT_THAT(Real().GetWeights(0), ElementsAre(10, 20));
}

// Somebody else commands the speed between two looks of the view.
TEST_F(MachineViewTest, ASpindleThatWasStartedElsewhereASoonAgoCountsAtOnce) {
    OpenWithWeights();
    m_pView->GetFittings = [] { return std::vector<CFitting>{{0, 0, {10, 20}, false, {}}}; };
    m_pSimulator->Carry({{"speed", 3000}});
    QTest::mouseClick(&Key("Fit as shown"), Qt::LeftButton);
    m_Loop.Advance(10);
    EXPECT_THAT(Real().GetWeights(0), IsEmpty());
    EXPECT_THAT(m_Said, SizeIs(1));
}

TEST_F(MachineViewTest, AsShownWithoutAnythingShownFitsNothing) {
    OpenWithWeights();
    Press("Fit as shown");
    EXPECT_THAT(Real().GetWeights(0), IsEmpty());
    EXPECT_THAT(m_Said, ElementsAre("The page asks for nothing to be fitted now."));
}

TEST_F(MachineViewTest, TheRampAndTheLockAreShown) {
    OpenWithWeights();
    EXPECT_THAT(GetStateLine(), HasSubstr("0 rpm, standing"));
    Press("Start spindle");
    m_Loop.Advance(1000);
    EXPECT_THAT(GetStateLine(), HasSubstr("→ 3000 rpm, not locked"));
    m_Loop.Advance(3000);
    EXPECT_THAT(GetStateLine(), HasSubstr("3000 rpm, locked"));
}

TEST_F(MachineViewTest, AScrewIsPutIntoAHoleAndTakenOutAgain) {
    OpenWithScrews();
    m_pView->findChild<QComboBox*>()->setCurrentIndex(1);
    const CRotorGeometry Geometry = Rotor().GetGeometry();
    const QPoint Hole7 = Geometry.GetPoint(Geometry.GetHoleAngle(7), Geometry.GetMiddle()).toPoint();
    EXPECT_LT(Hole7.x(), Geometry.GetCenter().x()) << "hole 7 of 24 counter-clockwise is at nine o'clock";
    QTest::mouseClick(&Rotor(), Qt::LeftButton, {}, Hole7);
    m_Loop.Advance(300);
    ASSERT_THAT(Real().GetScrews(0), SizeIs(1));
    EXPECT_EQ(Real().GetScrews(0)[0].m_Hole, 7);
    EXPECT_EQ(Real().GetScrews(0)[0].m_Grams, 2.5);
    QTest::mouseClick(&Rotor(), Qt::LeftButton, {}, Hole7);
    m_Loop.Advance(300);
    EXPECT_THAT(Real().GetScrews(0), IsEmpty());
}

TEST_F(MachineViewTest, ScrewsNeedAStandingSpindleToo) {
    OpenWithScrews();
    Press("Start spindle");
    m_Loop.Advance(500);
    QTest::mouseClick(&Rotor(), Qt::LeftButton, {}, AtAngle(Rotor(), 0));
    m_Loop.Advance(300);
    EXPECT_THAT(Real().GetScrews(0), IsEmpty());
    EXPECT_THAT(m_Said, testing::Contains(HasSubstr("Stop the spindle first")));
}

TEST_F(MachineViewTest, ScrewsCanBePutByKeysAlone) {
    OpenWithScrews();
    Rotor().setFocus();
    Key(Rotor(), Qt::Key_Right);
    Key(Rotor(), Qt::Key_Right);
    Key(Rotor(), Qt::Key_Space);
    ASSERT_THAT(Real().GetScrews(0), SizeIs(1));
    EXPECT_EQ(Real().GetScrews(0)[0].m_Hole, 3);
}

TEST_F(MachineViewTest, ThePlanesAreShownOneAtATimeWhereTheyHaveNoRoom) {
    CRotorFile Rotor2 = CRotorFile::GetBuiltIn(CRotorFile::eKestrelPair);
    Open(Rotor2, Weights());
    EXPECT_TRUE(Rotor(0).isVisible());
    EXPECT_FALSE(Rotor(1).isVisible());
    Press("Plane 2");
    EXPECT_FALSE(Rotor(0).isVisible());
    EXPECT_TRUE(Rotor(1).isVisible());
    const QPoint To = AtAngle(Rotor(1), 45);
    Drag(Rotor(1), 0, To);
    EXPECT_THAT(Real().GetWeights(1), SizeIs(1));
    EXPECT_THAT(Real().GetWeights(0), IsEmpty());
    m_pView->resize(500, 1000);
    m_Loop.Advance(10);
    EXPECT_TRUE(Rotor(0).isVisible() && Rotor(1).isVisible());
}

TEST_F(MachineViewTest, TheTruthIsUnderTheCovers) {
    OpenWithWeights();
    EXPECT_THAT(GetStateLine(), testing::Not(HasSubstr("True unbalance")));
    Press("Truth");
    EXPECT_THAT(GetStateLine(), HasSubstr("0.8000"));
    EXPECT_TRUE(Rotor().GetShown().m_bResidual);
}

TEST_F(MachineViewTest, FaultsAreSwitchedOnAndNoiseOffAgain) {
    OpenWithWeights();
    Press("Faults");
    m_pSimulator->Carry({{"speed", 3000}});
    m_Loop.Advance(5000);
    Press("Out of lock for 5 s");
    EXPECT_FALSE(m_pSimulator->GetSpindle().IsInLock());
    m_Loop.Advance(5000);
    EXPECT_TRUE(m_pSimulator->GetSpindle().IsInLock());
    for (const char* const pFault :
         {"Lose 20 frames", "Cut the line for 5 s", "Module silent for 5 s", "Noise"}) {
        Press(pFault);
        EXPECT_THAT(m_Said, IsEmpty()) << pFault;
    }
    EXPECT_TRUE(Key("Noise").isChecked());
    Press("Noise");
    EXPECT_FALSE(Key("Noise").isChecked());
    EXPECT_THAT(m_Said, IsEmpty());
}

TEST_F(MachineViewTest, EverythingThatCanBePressedHasANameAndIsLargeEnough) {
    OpenWithScrews();
    for (const QAbstractButton* pKey : m_pView->findChildren<QAbstractButton*>()) {
        EXPECT_FALSE(pKey->accessibleName().isEmpty());
    }
    EXPECT_GE(Key("Fit as shown").height(), 45);
    EXPECT_GE(Key("Start spindle").height(), 45);
    EXPECT_GE(Key("Stop spindle").height(), 45);
    EXPECT_GE(m_pView->findChild<QComboBox*>()->height(), 45);
    EXPECT_EQ(Rotor().accessibleName(), "Plane 1");
}

TEST_F(MachineViewTest, NothingIsCutOffBesideASmallPage) {
    OpenWithScrews();
    EXPECT_LE(m_pView->minimumSizeHint().height(), 340);
    EXPECT_LE(m_pView->minimumSizeHint().width(), 300);
    if (const char* const pFile = std::getenv("ROTOR_TRIM_MACHINE_PICTURE")) {
        m_pSimulator->Carry({{"screws", {{"plane", 1}, {"fitted", {{{"hole", 4}, {"grams", 2.5}}}}}}});
        m_Loop.Advance(300);
        m_pView->grab().save(QString(pFile) + "-screws.png");
        Open(CRotorFile::GetBuiltIn(CRotorFile::eKestrelPair), Weights());
        m_pSimulator->Carry({{"weights", {{"plane", 1}, {"angles", {37, 180}}}}});
        Press("Truth");
        m_pView->grab().save(QString(pFile) + "-weights.png");
        Press("Faults");
        m_pView->grab().save(QString(pFile) + "-faults.png");
        m_pView->resize(500, 900);
        Press("Faults");
        Press("Start spindle");
        m_Loop.Advance(1000);
        m_pView->grab().save(QString(pFile) + "-large.png");
    }
}
