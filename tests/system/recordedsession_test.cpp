// A recorded session of each family: played back at its own instants it gives the same report, byte for byte,
// and makes the module ask the same questions at the same instants. Set ROTOR_TRIM_RECORD to make the
// recordings anew after a change that is meant.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "tests/support/linerecording.h"
#include "tests/support/testpaths.h"
#include "tests/support/textfiles.h"
#include "tests/system/wholerun.h"

namespace {

using Procedure = COptions::Procedure;

struct CSessionCase {
    const char* m_pName;
    CRotorFile::Modules m_Modules;
    const char* m_pMode;
    bool m_bSwap;
};

class RecordedSession : public testing::TestWithParam<CSessionCase> {
protected:
    static CRotorFile MakeRotor() {
        CRotorFile Rotor = CRotorFile::GetBuiltIn(GetParam().m_Modules);
        Rotor.m_bSwap = GetParam().m_bSwap;
        Rotor.m_RampRpmPerS = 30000.0;
        return Rotor;
    }
    static std::string GetFile(const char* pExtension) {
        return TestData("system/recordings/").string() + GetParam().m_pName + pExtension;
    }
    /// A whole run; gives the report.
    template <typename Wrap>
    static std::string Run(Wrap WrapLink) {
        CWholeRun Run(MakeRotor());
        Run.m_Options.m_Mode = GetParam().m_pMode;
        Run.m_Options.m_bShowPage = false;
        Run.m_Options.m_WrapLink = WrapLink;
        Run.Run(Procedure::ePrebalance);
        // Which of two things that happen at the same moment comes first isn't on the line: a reading at the
        // edge of an average counts with the one, and not with the other.
        for (const char* const pOther : {"version", "measurements", "quality", "prediction", "explanation"}) {
            Run.m_Report.erase(pOther);
        }
        return Run.m_Report.dump(1) + "\n";
    }
    static std::string Record(CLineRecording& rRecording) {
        return Run([&rRecording](std::unique_ptr<IFByteLink> pLink) {
            return MakeRecordingLink(std::move(pLink), rRecording);
        });
    }
    void SetUp() override {
        if (std::getenv("ROTOR_TRIM_RECORD") != nullptr) {
            CLineRecording Recording;
            std::ofstream(GetFile(".json")) << Record(Recording);
            std::ofstream(GetFile(".line")) << Recording.ToText();
        }
        m_Stored = CLineRecording::FromText(ReadTestFile(GetFile(".line")));
        ASSERT_GT(m_Stored.m_Pieces.size(), 300U);
    }

    CLineRecording m_Stored;
};

}  // namespace

TEST_P(RecordedSession, PlayedBackGivesTheSameReportAndTheSameQuestions) {
    CLineRecording Sent;
    const std::string Report =
        Run([&](const std::unique_ptr<IFByteLink>&) { return MakeReplayLink(m_Stored, Sent); });
    EXPECT_EQ(Report, ReadTestFile(GetFile(".json")));
    CLineRecording Expected = m_Stored;
    std::erase_if(Expected.m_Pieces, [](const CLineRecording::CPiece& rPiece) { return rPiece.m_bReceived; });
    EXPECT_EQ(Sent.ToText(), Expected.ToText());
}

// The simulator of today still says what it said when the session was recorded.
TEST_P(RecordedSession, IsStillWhatGoesOverTheLine) {
    CLineRecording Recording;
    EXPECT_EQ(Record(Recording), ReadTestFile(GetFile(".json")));
    EXPECT_EQ(Recording.ToText(), m_Stored.ToText());
}

INSTANTIATE_TEST_SUITE_P(WholeRun, RecordedSession,
                         testing::Values(CSessionCase{"kestrel", CRotorFile::eKestrel, "", false},
                                         CSessionCase{"lanner", CRotorFile::eLanner, "plane2", true}),
                         [](const auto& rInfo) { return rInfo.param.m_pName; });
