// That whatever a run shows has a topic of the help.
#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>

#include "contract/helptopics.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/instructionview.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/singleplanetables.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/twoplanetables.h"

namespace {

template <typename States>
std::set<std::string> CheckStates(const States& rStates) {
    std::set<std::string> Topics;
    for (const Sequence::CState& rState : rStates) {
        const std::string Topic = HelpTopics::FindStep(rState.m_pName);
        EXPECT_EQ(Topic.empty(), rState.m_Role == Sequence::eIdle) << rState.m_pName;
        EXPECT_TRUE(Topic.empty() || Topics.insert(Topic).second)
            << rState.m_pName << ": " << Topic << " twice";
    }
    return Topics;
}

TEST(HelpTopicsOfARun, EachStateOfBothSequencesHasItsOwnAndNoneIsLeftOver) {
    std::set<std::string> Used = CheckStates(SinglePlane::STATES);
    Used.merge(CheckStates(TwoPlane::STATES));
    for (const HelpTopics::CStep& rStep : HelpTopics::STEPS) {
        EXPECT_TRUE(Used.contains(rStep.m_pTopic)) << rStep.m_pTopic << " is the topic of no state";
    }
}

TEST(HelpTopicsOfARun, InstructionsOfOneTextHaveOneTopicAndOthersDoNot) {
    std::map<std::string, std::string> TopicOfText;
    for (std::uint32_t Mode = 0; Mode <= 9; ++Mode) {
        const std::string Topic = HelpTopics::FindInstruction(Mode);
        ASSERT_NE(Topic, "") << Mode;
        const auto [Entry, bNew] = TopicOfText.emplace(CInstructionView::ModeToLanguageString(Mode), Topic);
        EXPECT_EQ(Entry->second, Topic) << Mode;
    }
    std::set<std::string> Topics;
    for (const auto& [rText, rTopic] : TopicOfText) {
        EXPECT_TRUE(Topics.insert(rTopic).second) << rTopic;
    }
}

}  // namespace
