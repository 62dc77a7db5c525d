// That each topic that the program asks for is a page of the compiled help, in every language.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "contract/helptopics.h"
#include "platform/help/compiledhelp.h"
#include "platform/rvldb/gettext.h"
#include "platform/rvmdb/configurationfields.h"
#include "tests/support/testpaths.h"

namespace {

/// Those of the pages' rows, as their descriptors have them.
std::set<std::string> GetHelpKeys() {
    std::set<std::string> Keys;
    for (const PreBalDB::CRecordLayout& rLayout : PreBalDB::ConfigurationFields::GetLayouts()) {
        for (const PreBalDB::CProperty* const pProperty : rLayout.m_Properties) {
            for (const PreBalDB::CProperty::CItem& rItem : {pProperty->m_Item, pProperty->m_TimeItem}) {
                Keys.insert(rItem.m_pHelpKey);
            }
        }
    }
    Keys.erase("");
    return Keys;
}

std::set<std::string> GetTopics() {
    std::set<std::string> Topics(HelpTopics::PAGES.begin(), HelpTopics::PAGES.end());
    Topics.insert(HelpTopics::PROPERTIES.begin(), HelpTopics::PROPERTIES.end());
    Topics.insert(HelpTopics::INSTRUCTIONS.begin(), HelpTopics::INSTRUCTIONS.end());
    Topics.insert(HelpTopics::WARNINGS.begin(), HelpTopics::WARNINGS.end());
    for (const HelpTopics::CStep& rStep : HelpTopics::STEPS) {
        Topics.insert(rStep.m_pTopic);
    }
    Topics.erase("");
    return Topics;
}

class TopicPagesTest : public testing::Test {
protected:
    ~TopicPagesTest() override { SetLanguage(m_Former); }
    const std::string m_Former = GetLanguage();
};

TEST(HelpKeys, OfAllRowsAreTopics) {
    const std::set<std::string> Topics(HelpTopics::PROPERTIES.begin(), HelpTopics::PROPERTIES.end());
    EXPECT_THAT(Topics, testing::IsSupersetOf(GetHelpKeys()));
    EXPECT_EQ(GetHelpKeys().size(), Topics.size() - 1) << "and one is that of the heading";
}

TEST_F(TopicPagesTest, AllTopicsHaveOneAndAllPagesAreTopicsInEachLanguage) {
    ASSERT_GE(GetLanguages().size(), 2U);
    for (const std::string& rLanguage : GetLanguages()) {
        ASSERT_TRUE(SetLanguage(rLanguage));
        const CCompiledHelp Help(TestProgram("help/" + GetText("ONLINE_HELP_PREFIX") + "_Falconet.chm"));
        std::set<std::string> Pages;
        for (const std::string& rPage : Help.GetPages()) {
            Pages.insert(rPage.substr(0, rPage.rfind('.')));
        }
        EXPECT_EQ(Pages, GetTopics()) << rLanguage;
    }
}

}  // namespace
