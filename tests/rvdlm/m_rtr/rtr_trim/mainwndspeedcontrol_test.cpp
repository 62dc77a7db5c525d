// The speed settings, and the file of the weight positions.
#include <gmock/gmock.h>
#include <sys/resource.h>

#include <csignal>
#include <filesystem>

#include "platform/system/archive.h"
#include "tests/rvdlm/m_rtr/rtr_trim/mainwndfixture.h"
#include "tests/support/textfiles.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

class CMainWndSpeedControlTest : public CMainWndFixture {
protected:
    void WriteSettings(const std::string& rContents) {
        WriteTestFile(m_Installation.GetRoot() / "cnf" / "speedctrl.ini", rContents);
    }
    /// Where a damaged file is kept; Suffix "" for the first one, "2" and so on.
    std::filesystem::path GetKept(const std::string& rSuffix = "") const {
        return m_Installation.GetWeightPositions().string() + ".damaged" + rSuffix;
    }
    std::vector<int> GetNumbers() const {
        const CWeightPositionStore& rStore = m_pWnd->GetWeightPositionStore();
        return {rStore.m_IncrementRPM, rStore.m_Increment, rStore.m_IncrementBelow};
    }
    /// A file with one record, of module 5 and set 2, at 2000 rpm.
    static void StoreRecord(std::int32_t RPM = 2000) {
        WeightPos2Plane Record;
        Record.m_RPM = RPM;
        CWeightPositionStore::Set("000005_2", Record);
    }
    /// A file that ends in the middle of its first record.
    std::string StoreCutFile() {
        StoreRecord();
        const std::string Whole = ReadTestFile(m_Installation.GetWeightPositions());
        const std::string Cut = Whole.substr(0, Whole.size() - 10);
        WriteTestFile(m_Installation.GetWeightPositions(), Cut);
        return Cut;
    }
};

TEST_F(CMainWndSpeedControlTest, WithoutAFileTheDefaultsHold) {
    Create();
    Init();
    EXPECT_THAT(GetNumbers(), ElementsAre(-1, 10, 30));
}

TEST_F(CMainWndSpeedControlTest, TheFileGivesTheThreeNumbers) {
    WriteSettings("[Configuration]\nRPM=1200\nINCREMENT=20\nINCREMENT_BELOW=40\n");
    Create();
    Init();
    EXPECT_THAT(GetNumbers(), ElementsAre(1200, 20, 40));
}

TEST_F(CMainWndSpeedControlTest, KeysThatAreMissingHaveTheirDefaults) {
    WriteSettings("[Configuration]\nINCREMENT=20\n[Other]\nRPM=5\n");
    Create();
    Init();
    EXPECT_THAT(GetNumbers(), ElementsAre(-1, 20, 30));
}

// The layout by hand: version "3.1", three numbers, no entry.
TEST_F(CMainWndSpeedControlTest, AMissingFileOfWeightPositionsComesIntoBeing) {
    WriteSettings("[Configuration]\nRPM=258\n");
    Create();
    Init();
    const std::string Expected(
        "\x03"
        "3.1"
        "\x02\x01\0\0"
        "\x0A\0\0\0"
        "\x1E\0\0\0"
        "\0\0\0\0",
        20);
    EXPECT_EQ(ReadTestFile(m_Installation.GetWeightPositions()), Expected);
}

// The settings of today win over those that the file was written with.
TEST_F(CMainWndSpeedControlTest, RecordsStayAndNumbersAreRenewed) {
    StoreRecord();
    WriteSettings("[Configuration]\nRPM=1200\nINCREMENT=20\nINCREMENT_BELOW=40\n");
    Create();
    Init();
    EXPECT_TRUE(m_pWnd->GetWeightPositionStore().Contains("000005_2"));
    CWeightPositionStore Stored;
    Stored.Load();
    EXPECT_TRUE(Stored.Contains("000005_2"));
    EXPECT_EQ(Stored.m_IncrementRPM, 1200);
    EXPECT_EQ(Stored.m_Increment, 20);
    EXPECT_EQ(Stored.m_IncrementBelow, 40);
}

class CSpeedIncrementTest : public CMainWndSpeedControlTest {
protected:
    int GetIncrement(std::int32_t LastRPM, const std::string& rSettings) {
        StoreRecord(LastRPM);
        WriteSettings(rSettings);
        Open();
        Act(102);
        SetSetText("2");
        return m_pWnd->GetSpeedIncrement();
    }
    void SetSetText(const std::string& rText) {
        const_cast<CPreBalancing*>(m_pWnd->GetSequence())->SetSetText(rText);
    }
    const std::string m_Settings = "[Configuration]\nRPM=1500\nINCREMENT=11\nINCREMENT_BELOW=44\n";
};

TEST_F(CSpeedIncrementTest, AboveTheLimitItIsTheIncrement) {
    EXPECT_EQ(GetIncrement(1501, m_Settings), 11);
}

TEST_F(CSpeedIncrementTest, AtTheLimitItIsTheIncrementBelow) {
    EXPECT_EQ(GetIncrement(1500, m_Settings), 44);
}

TEST_F(CSpeedIncrementTest, WithoutALimitItIsThirty) {
    EXPECT_EQ(GetIncrement(1501, "[Configuration]\nRPM=-1\nINCREMENT=11\nINCREMENT_BELOW=44\n"), 30);
}

TEST_F(CSpeedIncrementTest, WithoutARecordItIsThirty) {
    EXPECT_EQ(GetIncrement(1501, m_Settings), 11);
    SetSetText("3");
    EXPECT_EQ(m_pWnd->GetSpeedIncrement(), 30);
}

TEST_F(CSpeedIncrementTest, WithoutAProcedureItIsThirty) {
    EXPECT_EQ(GetIncrement(1501, m_Settings), 11);
    Act(4501);
    EXPECT_EQ(m_pWnd->GetSpeedIncrement(), 30);
}

TEST_F(CMainWndSpeedControlTest, ADamagedFileIsKeptAndReplaced) {
    const std::string Cut = StoreCutFile();
    Create();
    EXPECT_EQ(Init(), 1);
    EXPECT_EQ(ReadTestFile(GetKept()), Cut);
    EXPECT_THAT(m_Log.GetTexts("Error"), ElementsAre(HasSubstr("vorwuchttemp.txt is damaged")));
    EXPECT_FALSE(m_pWnd->GetWeightPositionStore().Contains("000005_2"));
    EXPECT_THAT(GetNumbers(), ElementsAre(-1, 10, 30));
    CWeightPositionStore Stored;
    EXPECT_NO_THROW(Stored.Load());
    EXPECT_THAT(m_Module.m_Calls, ElementsAre("identification"));
}

TEST_F(CMainWndSpeedControlTest, EachDamagedFileIsKept) {
    const std::string First = StoreCutFile();
    Create();
    Init();
    WriteTestFile(m_Installation.GetWeightPositions(), "\x03");
    Init();
    EXPECT_EQ(ReadTestFile(GetKept()), First);
    EXPECT_EQ(ReadTestFile(GetKept("2")), "\x03");
    EXPECT_FALSE(std::filesystem::exists(GetKept("3")));
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
    WriteSettings("[Configuration]\nRPM=1500\nINCREMENT=11\nINCREMENT_BELOW=44\n");
    Create(Makers);
    Init();
    Identify();
    ReportSet(MakeSet());
    const std::string Cut = StoreCutFile();
    Forget();
    EXPECT_EQ(Act(102), 0);
    EXPECT_EQ(ReadTestFile(GetKept()), Cut);
    EXPECT_EQ(m_Log.GetTexts("Error").size(), 2U);
    EXPECT_THAT(GetNumbers(), ElementsAre(1500, 11, 44));
    EXPECT_EQ(Act(4501), 1);
    EXPECT_EQ(Act(102), 1);
    EXPECT_THAT(GetSequenceCalls(), ElementsAre("StartPreBalancing 65535 1 1"));
}

/// Files can't grow beyond a size meanwhile, whoever the user is.
class CFileSizeLimit {
public:
    explicit CFileSizeLimit(rlim_t nBytes) : m_pFormerHandler(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &m_Former);
        const rlimit Limit{nBytes, m_Former.rlim_max};
        setrlimit(RLIMIT_FSIZE, &Limit);
    }
    ~CFileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &m_Former);
        std::signal(SIGXFSZ, m_pFormerHandler);
    }
    CFileSizeLimit(const CFileSizeLimit&) = delete;
    CFileSizeLimit& operator=(const CFileSizeLimit&) = delete;

private:
    void (*m_pFormerHandler)(int);
    rlimit m_Former{};
};

// There is room for a new store of 20 bytes, but not for the copy of the damaged file: nobody may write over
// it.
TEST_F(CMainWndSpeedControlTest, ADamagedFileThatCannotBeKeptStays) {
    const std::string Cut = StoreCutFile();
    ASSERT_GT(Cut.size(), 40U);
    Create();
    {
        const CFileSizeLimit Limit(40);
        EXPECT_EQ(Init(), 1);
    }
    EXPECT_EQ(ReadTestFile(m_Installation.GetWeightPositions()), Cut);
    EXPECT_FALSE(std::filesystem::exists(GetKept()));
    EXPECT_THAT(m_Log.GetTexts("Error"), testing::Each(HasSubstr("can't be kept under another name")));
    EXPECT_THAT(GetNumbers(), ElementsAre(-1, 10, 30));
}

}  // namespace
