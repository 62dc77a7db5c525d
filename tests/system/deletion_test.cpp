// The console deletes configurations and screw tables, after a question.
#include <gmock/gmock.h>

#include "platform/window/messagebox.h"
#include "tests/system/pagesfixture.h"

using testing::ElementsAre;
using testing::HasSubstr;

namespace {

class DeletionTest : public CPagesTestBase {
protected:
    DeletionTest() { TakeShownMessages(); }

    std::vector<std::string> GetStored() {
        const PreBalDB::CPreBalDatabase Database(GetShown().m_Machine);
        const Base::CStringArray Tables = Database.GetScrewTableNames();
        return {Tables.begin(), Tables.end()};
    }
    /// A second configuration, with screws, on the page of their table.
    void OpenScrewTable() {
        OpenInFront();
        SelectItem("PB_011");
        PressKey("Value +");
        PressKey("Next page");
    }
};

}  // namespace

TEST_F(DeletionTest, DefaultIsNeverOffered) {
    OpenInFront();
    EXPECT_FALSE(IsKeyEnabled("Delete configuration"));
}

TEST_F(DeletionTest, AConfigurationGoesOnlyWhenTheQuestionIsAnswered) {
    OpenInFront();
    TypeName("Default", "Wheel");
    PressKey("Delete configuration");
    Press("Keep");
    EXPECT_EQ(GetShown().m_Name, "Wheel");
    PressKey("Delete configuration");
    Press("Delete");
    EXPECT_EQ(GetShown().m_Name, "Default");
    EXPECT_FALSE(IsKeyEnabled("Delete configuration"));
    Close();
    OpenInFront();
    EXPECT_EQ(GetShown().m_Name, "Default");
    GoToName();
    PressKey("Value −");
    EXPECT_EQ(GetShown().m_Name, "Default") << "there is no other one";
    EXPECT_TRUE(TakeShownMessages().empty());
}

TEST_F(DeletionTest, ATableThatAConfigurationUsesStaysAndTheMessageNamesThat) {
    OpenScrewTable();
    EXPECT_FALSE(IsKeyEnabled("Delete table")) << "the default one";
    TypeName("Default", "Brass");
    EXPECT_THAT(GetStored(), ElementsAre("Default", "Brass"));
    PressKey("Next page");
    SelectItem("PB_008");
    PressKey("Value +");
    PressKey("Next page");
    ASSERT_EQ(GetShown().m_ScrewTable, "Brass");
    PressKey("Delete table");
    Press("Delete");
    const std::vector<CShownMessage> Messages = TakeShownMessages();
    ASSERT_EQ(Messages.size(), 1U);
    EXPECT_THAT(Messages.front().m_Text, HasSubstr("Default"));
    EXPECT_THAT(GetStored(), ElementsAre("Default", "Brass"));
}

TEST_F(DeletionTest, ATableThatNobodyUsesGoes) {
    OpenScrewTable();
    TypeName("Default", "Brass");
    ASSERT_EQ(GetShown().m_ScrewTable, "Brass");
    PressKey("Delete table");
    Press("Delete");
    EXPECT_TRUE(TakeShownMessages().empty());
    EXPECT_THAT(GetStored(), ElementsAre("Default"));
    EXPECT_EQ(GetShown().m_ScrewTable, "Default");
}
