// What a procedure writes to the log's file: the lines of each state in a block of their own.
#include <sstream>

#include "platform/rvlog/log.h"
#include "tests/rvdlm/m_rtr/rtr_trim/prebalancing/sequencefixture.h"
#include "tests/support/textfiles.h"

namespace {

using S = CSinglePlaneBalancing;
using testing::ElementsAre;

class SequenceLogTest : public SequenceTest {
protected:
    SequenceLogTest() { CLogComponent::OpenFile(m_Installation.GetRoot().string()); }

    /// The lines written so far that hold a text, each with its indentation.
    std::vector<std::string> GetLinesWith(const std::string& rText) const {
        // An error is on the disk at once, with all before it.
        RV_ERROR(CLogComponent::Find("rtr_Trim"), "so far");
        std::vector<std::string> Found;
        std::istringstream Lines(ReadTestFile((m_Installation.GetRoot() / "rotor_trim.log").string()));
        for (std::string Line; std::getline(Lines, Line);) {
            if (Line.find(rText) != std::string::npos) {
                Found.push_back(Line.substr(Line.find(": ") + 2));
            }
        }
        return Found;
    }

    CLogCapture m_AllTopics{true};
};

TEST_F(SequenceLogTest, AStatesBlockIsClosedWhenTheNextOneOpens) {
    Reach(S::eTestUnbalanceSpindleStop);
    EXPECT_THAT(GetLinesWith("eNeutralPosRemoveWeights"),
                testing::IsSupersetOf({"eNeutralPosRemoveWeights", "  eNeutralPosRemoveWeights Step(1/11)"}));
    EXPECT_THAT(GetLinesWith("eNeutralPosMeasurement"),
                testing::IsSupersetOf({"eNeutralPosMeasurement", "  eNeutralPosMeasurement Step(3/11)"}));
    EXPECT_THAT(
        GetLinesWith("eTestUnbalanceSpindleStop"),
        testing::IsSupersetOf({"eTestUnbalanceSpindleStop", "  eTestUnbalanceSpindleStop Step(4/11)"}));
}

TEST_F(SequenceLogTest, TheLastBlockIsClosedWithTheProcedure) {
    Reach(S::eNeutralPosRPMStart);
    CLogComponent* const pLog = CLogComponent::Find("rtr_Trim");
    RV_ERROR(pLog, "in the run");
    m_pSequence.reset();
    RV_ERROR(pLog, "behind it");
    EXPECT_THAT(GetLinesWith("in the run"), ElementsAre("  in the run"));
    EXPECT_THAT(GetLinesWith("behind it"), ElementsAre("behind it"));
}

}  // namespace
