// The speed settings and the weight positions in a run of the window.
#include <gmock/gmock.h>

#include "tests/rvdlm/m_rtr/rtr_trim/mainwndfixture.h"
#include "tests/support/textfiles.h"

using testing::ElementsAre;

namespace {

class CMainWndSpeedControlTest : public CMainWndFixture {
protected:
    void WriteSettings() {
        WriteTestFile(m_Installation.GetRoot() / "cnf" / "speedctrl.ini",
                      "[Configuration]\nRPM=1500\nINCREMENT=11\nINCREMENT_BELOW=44\n");
    }
};

TEST_F(CMainWndSpeedControlTest, TheIncrementIsThatOfModuleAndSetOfTheRun) {
    WeightPos2Plane Record;
    Record.m_RPM = 1501;
    CWeightPositionStore::Set("000005_2", Record);
    WriteSettings();
    Open();
    EXPECT_EQ(m_pWnd->GetSpeedIncrement(), 30) << "without a procedure";
    Act(102);
    auto* const pSequence = const_cast<CPreBalancing*>(m_pWnd->GetSequence());
    pSequence->SetSetText("2");
    EXPECT_EQ(m_pWnd->GetSpeedIncrement(), 11);
    pSequence->SetSetText("3");
    EXPECT_EQ(m_pWnd->GetSpeedIncrement(), 30);
}

// Found by a procedure in the middle of a run: the message ends there, the next one finds a sound file.
TEST_F(CMainWndSpeedControlTest, AFileDamagedInARunIsKeptAndTheHostLives) {
    class CLoadingSequence : public CFakeSequence {
    public:
        CLoadingSequence(CFakeSequenceRecord& rRecord, CPreBalMainWndInterface* pMainWnd,
                         PreBalDB::CPreBalBaseTableEntry& rEntry)
            : CFakeSequence(rRecord, pMainWnd, rEntry, "") {}
        int StartPreBalancing(std::uint16_t wRPM, int NotLocked, int InvalidRPM) override {
            m_pMainWnd->GetWeightPositionStore().Load();
            return CFakeSequence::StartPreBalancing(wRPM, NotLocked, InvalidRPM);
        }
    };
    CMainWndMakers Makers = FakeMakers();
    Makers.m_MakeProcedure = [this](PreBalDB::CPreBalDatabase::BalancingMode,
                                    CPreBalMainWndInterface* pMainWnd,
                                    PreBalDB::CPreBalBaseTableEntry& rEntry, const std::string&) {
        return std::make_unique<CLoadingSequence>(m_Sequence, pMainWnd, rEntry);
    };
    WriteSettings();
    Create(Makers);
    Init();
    Identify();
    ReportSet(MakeSet());
    const std::string Cut = "\x03";
    WriteTestFile(m_Installation.GetWeightPositions(), Cut);
    Forget();
    EXPECT_EQ(Act(102), 0);
    EXPECT_EQ(ReadTestFile(m_Installation.GetWeightPositions().string() + ".damaged"), Cut);
    EXPECT_EQ(m_Log.GetTexts("Error").size(), 2U);
    EXPECT_EQ(m_pWnd->GetWeightPositionStore().m_Increment, 11);
    EXPECT_EQ(Act(4501), 1);
    EXPECT_EQ(Act(102), 1);
    EXPECT_THAT(GetSequenceCalls(), ElementsAre("StartPreBalancing 65535 1 1"));
}

}  // namespace
