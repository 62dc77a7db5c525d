// What somebody does who has never seen the console: configurations and a screw table of their own, by
// softkeys and keyboard in the real window, balanced with, and found again after a restart.
#include <set>

#include "tests/system/pagesfixture.h"

namespace {

class NewcomerTest : public CPagesTestBase {
protected:
    NewcomerTest() { m_Run.m_Rotor.m_Planes.front().m_Holes = 18; }

    /// Types where the focus is.
    void Type(const QString& rText) {
        ASSERT_NE(QApplication::focusWidget(), nullptr);
        QTest::keyClicks(QApplication::focusWidget(), rText);
        m_Loop.Advance(300);
        ASSERT_NE(QApplication::focusWidget(), nullptr);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        m_Loop.Advance(300);
    }
    /// Does what each step asks for until the verdict stands, and finishes.
    void Balance() {
        PressKey("Pre-balance");
        for (int nTry = 0; nTry < 80 && FindButton("Finish") == nullptr; ++nTry) {
            const std::string State = GetState();
            ASSERT_FALSE(State.empty());
            if (State.ends_with("SpindleStop")) {
                Press("Stop spindle");
                m_Loop.Advance(3000);
            } else if (State.find("RPMStart") != std::string::npos) {
                Press("Start spindle");
                m_Loop.Advance(3500);
                if (FindButton("Next") != nullptr && State == GetState()) {
                    Press("Next");
                }
            } else if (State.find("Weights") != std::string::npos) {
                Press("Fit as shown");
                Press("Next");
            } else {
                m_Loop.Advance(1000);
                if (FindButton("Next") != nullptr) {
                    Press("Next");
                }
            }
        }
        ASSERT_NE(FindButton("Finish"), nullptr) << GetState();
        m_Loop.Advance(6000);  // until the final measurement is complete
        Press("Finish");
        Press("Stop spindle");
        m_Loop.Advance(3000);
    }
    /// The names that the up-down control steps through, with those that are calibrated.
    std::set<std::pair<std::string, bool>> GetConfigurations() {
        GoToName();
        for (int nStep = 0; nStep < 5; ++nStep) {
            PressKey("Value +");
        }
        std::set<std::pair<std::string, bool>> Found;
        for (int nStep = 0; nStep < 5; ++nStep) {
            Found.emplace(GetShown().m_Name, GetShown().m_bCalibrated);
            PressKey("Value −");
        }
        Found.emplace(GetShown().m_Name, GetShown().m_bCalibrated);
        return Found;
    }
};

}  // namespace

TEST_F(NewcomerTest, BalancesWithTwoConfigurationsOfTheirOwnAndFindsBothAfterARestart) {
    OpenInFront();
    TypeName("Default", "Wheel 400");
    EXPECT_EQ(GetShown().m_Name, "Wheel 400");
    SelectItem("PB_011");
    EXPECT_FALSE(IsKeyEnabled("Next page"));
    PressKey("Value +");
    ASSERT_TRUE(IsKeyEnabled("Next page")) << "screws have a table";

    PressKey("Next page");
    TypeName("Default", "Wheel screws", false);  // straight on into the table: an empty one
    PressKey("Cell on");
    for (const char* const pWeight : {"0.5", "1", "1.5", "2", "2.5", "3"}) {
        Type(QString("S%1").arg(pWeight));
        Type(pWeight);
    }
    PressKey("Next page");

    SelectItem("PB_009");
    for (int nStep = 12; nStep < 18; ++nStep) {
        PressKey("Value +");
    }
    GoToName();
    SelectItem("PB_008");
    PressKey("Value +");
    Balance();
    EXPECT_TRUE(GetShown().m_bCalibrated);
    const double WithScrews = std::abs(m_pSession->GetSimulator()->GetRotor().GetResidual(0));
    EXPECT_LT(WithScrews, m_Run.m_Rotor.m_Planes.front().m_Unbalance.m_Amount / 2);
    {
        PreBalDB::CPreBalDatabase Database(GetShown().m_Machine);
        const PreBalDB::CScrewCompensationTableEntry* const pScrews =
            Database.ReadConfiguration("Wheel 400").CreateSinglePlane().GetScrewCompensationTableEntry();
        ASSERT_NE(pScrews, nullptr);
        EXPECT_EQ(pScrews->GetNumberOfHoles(), 18U);
        EXPECT_EQ(pScrews->GetScrewTableName(), "Wheel screws");
        EXPECT_EQ(pScrews->GetScrewTable().GetSize(), 6U);
    }

    TypeName("Wheel 400", "Wheel 400 weights");
    EXPECT_TRUE(GetShown().m_bCalibrated) << "with the old one's calibration";
    SelectItem("PB_011");
    PressKey("Value −");
    EXPECT_FALSE(IsKeyEnabled("Re-balance")) << "other means, no calibration";
    m_pSession->GetMachine()->Request({{"screws", {{"plane", 1}, {"fitted", nlohmann::json::array()}}}},
                                      [](const nlohmann::json&) {});
    Balance();
    EXPECT_LT(std::abs(m_pSession->GetSimulator()->GetRotor().GetResidual(0)), 0.1);

    const std::set<std::pair<std::string, bool>> Expected = {
        {"Default", false}, {"Wheel 400", true}, {"Wheel 400 weights", true}};
    EXPECT_EQ(GetConfigurations(), Expected);
    Close();
    OpenInFront();
    EXPECT_EQ(GetConfigurations(), Expected);
}
