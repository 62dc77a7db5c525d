// The speed settings, and the file of the weight positions.
#include "rvdlm/m_rtr/rtr_trim/speedcontrol.h"

#include <gmock/gmock.h>
#include <sys/resource.h>

#include <csignal>
#include <filesystem>

#include "platform/system/archive.h"
#include "tests/support/logcapture.h"
#include "tests/support/testinstallation.h"
#include "tests/support/textfiles.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

class SpeedControl : public testing::Test {
protected:
    void WriteSettings(const std::string& rContents) {
        WriteTestFile(m_Installation.GetRoot() / "cnf" / "speedctrl.ini", rContents);
    }
    /// Where a damaged file is kept; Suffix "" for the first one, "2" and so on.
    std::filesystem::path GetKept(const std::string& rSuffix = "") const {
        return m_Installation.GetWeightPositions().string() + ".damaged" + rSuffix;
    }
    std::vector<int> GetNumbers() const {
        const CWeightPositionStore& rStore = m_SpeedControl.GetStore();
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

    CTestInstallation m_Installation;
    CLogCapture m_Log;
    CSpeedControl m_SpeedControl;
};

TEST_F(SpeedControl, WithoutAFileTheDefaultsHold) {
    m_SpeedControl.Read();
    EXPECT_THAT(GetNumbers(), ElementsAre(-1, 10, 30));
}

TEST_F(SpeedControl, TheFileGivesTheThreeNumbers) {
    WriteSettings("[Configuration]\nRPM=1200\nINCREMENT=20\nINCREMENT_BELOW=40\n");
    m_SpeedControl.Read();
    EXPECT_THAT(GetNumbers(), ElementsAre(1200, 20, 40));
}

TEST_F(SpeedControl, KeysThatAreMissingHaveTheirDefaults) {
    WriteSettings("[Configuration]\nINCREMENT=20\n[Other]\nRPM=5\n");
    m_SpeedControl.Read();
    EXPECT_THAT(GetNumbers(), ElementsAre(-1, 20, 30));
}

// The layout by hand: version "3.1", three numbers, no entry.
TEST_F(SpeedControl, AMissingFileOfWeightPositionsComesIntoBeing) {
    WriteSettings("[Configuration]\nRPM=258\n");
    m_SpeedControl.Read();
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
TEST_F(SpeedControl, RecordsStayAndNumbersAreRenewed) {
    StoreRecord();
    WriteSettings("[Configuration]\nRPM=1200\nINCREMENT=20\nINCREMENT_BELOW=40\n");
    m_SpeedControl.Read();
    EXPECT_TRUE(m_SpeedControl.GetStore().Contains("000005_2"));
    CWeightPositionStore Stored;
    Stored.Load();
    EXPECT_TRUE(Stored.Contains("000005_2"));
    EXPECT_EQ(Stored.m_IncrementRPM, 1200);
    EXPECT_EQ(Stored.m_Increment, 20);
    EXPECT_EQ(Stored.m_IncrementBelow, 40);
}

class SpeedIncrement : public SpeedControl {
protected:
    int GetIncrement(std::int32_t LastRPM, const std::string& rSettings, const std::string& rSetText = "2") {
        StoreRecord(LastRPM);
        WriteSettings(rSettings);
        m_SpeedControl.Read();
        return m_SpeedControl.GetIncrement(5, rSetText);
    }
    const std::string m_Settings = "[Configuration]\nRPM=1500\nINCREMENT=11\nINCREMENT_BELOW=44\n";
};

TEST_F(SpeedIncrement, AboveTheLimitItIsTheIncrement) {
    EXPECT_EQ(GetIncrement(1501, m_Settings), 11);
}

TEST_F(SpeedIncrement, AtTheLimitItIsTheIncrementBelow) {
    EXPECT_EQ(GetIncrement(1500, m_Settings), 44);
}

TEST_F(SpeedIncrement, WithoutALimitItIsThirty) {
    EXPECT_EQ(GetIncrement(1501, "[Configuration]\nRPM=-1\nINCREMENT=11\nINCREMENT_BELOW=44\n"), 30);
}

TEST_F(SpeedIncrement, ALimitOfZeroIsOne) {
    EXPECT_EQ(GetIncrement(1, "[Configuration]\nRPM=0\nINCREMENT=11\nINCREMENT_BELOW=44\n"), 11);
}

TEST_F(SpeedIncrement, WithoutARecordItIsThirty) {
    EXPECT_EQ(GetIncrement(1501, m_Settings, "3"), 30);
    EXPECT_EQ(m_SpeedControl.GetIncrement(6, "2"), 30) << "another module's";
}

TEST_F(SpeedControl, ADamagedFileIsKeptAndReplaced) {
    const std::string Cut = StoreCutFile();
    m_SpeedControl.Read();
    EXPECT_EQ(ReadTestFile(GetKept()), Cut);
    EXPECT_THAT(m_Log.GetTexts("Error"), ElementsAre(HasSubstr("vorwuchttemp.txt is damaged")));
    EXPECT_FALSE(m_SpeedControl.GetStore().Contains("000005_2"));
    EXPECT_THAT(GetNumbers(), ElementsAre(-1, 10, 30));
    CWeightPositionStore Stored;
    EXPECT_NO_THROW(Stored.Load());
}

TEST_F(SpeedControl, EachDamagedFileIsKept) {
    const std::string First = StoreCutFile();
    m_SpeedControl.Read();
    WriteTestFile(m_Installation.GetWeightPositions(), "\x03");
    m_SpeedControl.Read();
    EXPECT_EQ(ReadTestFile(GetKept()), First);
    EXPECT_EQ(ReadTestFile(GetKept("2")), "\x03");
    EXPECT_FALSE(std::filesystem::exists(GetKept("3")));
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
TEST_F(SpeedControl, ADamagedFileThatCannotBeKeptStays) {
    const std::string Cut = StoreCutFile();
    ASSERT_GT(Cut.size(), 40U);
    {
        const CFileSizeLimit Limit(40);
        m_SpeedControl.Read();
    }
    EXPECT_EQ(ReadTestFile(m_Installation.GetWeightPositions()), Cut);
    EXPECT_FALSE(std::filesystem::exists(GetKept()));
    EXPECT_THAT(m_Log.GetTexts("Error"), testing::Each(HasSubstr("can't be kept under another name")));
    EXPECT_THAT(GetNumbers(), ElementsAre(-1, 10, 30));
}

TEST_F(SpeedControl, LoadingAloneWritesNothing) {
    EXPECT_TRUE(m_SpeedControl.Load());
    EXPECT_FALSE(std::filesystem::exists(m_Installation.GetWeightPositions()));
}

TEST_F(SpeedControl, LoadingADamagedFileSetsItAside) {
    const std::string Cut = StoreCutFile();
    EXPECT_TRUE(m_SpeedControl.Load());
    EXPECT_EQ(ReadTestFile(GetKept()), Cut);
}

TEST_F(SpeedControl, AnOperationThatGoesWellIsCarriedOutOnceAndSaysNothing) {
    int nCalls = 0;
    EXPECT_TRUE(m_SpeedControl.Guarded("OnTest", [&] { ++nCalls; }));
    EXPECT_EQ(nCalls, 1);
    EXPECT_THAT(m_Log.GetRecords(), IsEmpty());
}

TEST_F(SpeedControl, AnExceptionOfAnOperationIsLoggedAndNoFileSetAside) {
    StoreRecord();
    EXPECT_FALSE(m_SpeedControl.Guarded("OnTest", [] { throw std::runtime_error("out of order"); }));
    EXPECT_THAT(m_Log.GetTexts("Error"), ElementsAre("OnTest failed: out of order"));
    EXPECT_FALSE(std::filesystem::exists(GetKept()));
}

// The new file has the numbers of today, whatever was read before.
TEST_F(SpeedControl, AnOperationThatComesUponADamagedFileSetsItAside) {
    const std::string Cut = StoreCutFile();
    WriteSettings("[Configuration]\nRPM=1500\nINCREMENT=11\nINCREMENT_BELOW=44\n");
    EXPECT_FALSE(m_SpeedControl.Guarded("OnTest", [] { CWeightPositionStore().Load(); }));
    EXPECT_EQ(ReadTestFile(GetKept()), Cut);
    EXPECT_EQ(m_Log.GetTexts("Error").size(), 2U);
    CWeightPositionStore Stored;
    Stored.Load();
    EXPECT_EQ(Stored.m_IncrementRPM, 1500);
}

}  // namespace
