#include "archive/archivedrun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/runrecords.h"
#include "tests/support/tempdirectory.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ArchivedRunTest : public testing::Test {
protected:
    /// Begun so many minutes after a moment; its number in the archive.
    std::int64_t Keep(const std::string& rRotor, int nMinute,
                      const std::function<void(CRunRecord&)>& rChange = {}) {
        CRunRecord Record = RunRecords::MakeWeights();
        Record.m_Rotor = rRotor;
        Record.m_Started = MOMENT + std::chrono::minutes(nMinute);
        if (rChange) {
            rChange(Record);
        }
        return m_Store.Write(Record, std::to_string(++m_nKept), {}).m_Id;
    }
    CArchivedRun Load(std::int64_t Id) { return CArchivedRun::Load(m_Store, Id).value_or(CArchivedRun()); }
    static std::vector<long> GetMinutes(const std::vector<CReportTrendPoint>& rTrend) {
        std::vector<long> Minutes;
        for (const CReportTrendPoint& rPoint : rTrend) {
            Minutes.push_back(
                std::chrono::duration_cast<std::chrono::minutes>(rPoint.m_Date - MOMENT).count());
        }
        return Minutes;
    }
    static std::vector<std::int64_t> GetIds(const std::vector<CRunRecord>& rRuns) {
        std::vector<std::int64_t> Ids;
        for (const CRunRecord& rRun : rRuns) {
            Ids.push_back(rRun.m_Id);
        }
        return Ids;
    }

    static constexpr std::chrono::sys_seconds MOMENT{std::chrono::seconds(1790000000)};
    CTempDirectory m_Directory;
    CRunStore m_Store{"sqlite:" + m_Directory.At("prebal.db")};
    int m_nKept = 0;
};

}  // namespace

TEST_F(ArchivedRunTest, OneThatIsNotThereIsNothing) {
    EXPECT_FALSE(CArchivedRun::Load(m_Store, 7).has_value());
}

TEST_F(ArchivedRunTest, ItsTrendIsThatOfItsRotorUpToItself) {
    Keep("A", 1);
    Keep("B", 2);
    const std::int64_t Id = Keep("A", 3);
    Keep("A", 4);
    EXPECT_THAT(GetMinutes(Load(Id).m_Trend), ElementsAre(1, 3));
}

TEST_F(ArchivedRunTest, WithoutARotorsNameItIsThatOfItsMachine) {
    Keep("", 1, [](CRunRecord& rRun) { rRun.m_Machine = "other"; });
    Keep("A", 2);
    const std::int64_t Id = Keep("", 3);
    EXPECT_THAT(GetMinutes(Load(Id).m_Trend), ElementsAre(2, 3));
}

TEST_F(ArchivedRunTest, RunsThatCameToNoVerdictAreInNoTrend) {
    Keep("A", 1, [](CRunRecord& rRun) { rRun.m_State = CRunRecord::State::eBrokenOff; });
    const std::int64_t Id = Keep("A", 2, [](CRunRecord& rRun) { rRun.m_Result = "SetupOverTarget"; });
    const std::vector<CReportTrendPoint> Trend = Load(Id).m_Trend;
    ASSERT_EQ(Trend.size(), 1U);
    EXPECT_FALSE(Trend[0].m_bWithin);
    const CRunRecord Record = *m_Store.Load(Id);
    EXPECT_EQ(Trend[0].m_Before, Record.GetReading(Measurement::eFirst));
    EXPECT_EQ(Trend[0].m_After, Record.GetReading(Measurement::eFinal));
}

TEST_F(ArchivedRunTest, OfRunsInTheSameSecondTheNumberTellsWhichCameFirst) {
    Keep("A", 1);
    const std::int64_t Id = Keep("A", 1);
    Keep("A", 1);
    EXPECT_EQ(Load(Id).m_Trend.size(), 2U);
    EXPECT_THAT(GetIds(Load(Id).m_Earlier), ElementsAre(1));
}

TEST_F(ArchivedRunTest, EarlierOnesAreOfTheSameMachineAndConfigurationTheNewestFirst) {
    Keep("A", 1);
    Keep("B", 2);
    Keep("A", 3, [](CRunRecord& rRun) { rRun.m_Setup.m_Configuration = "other"; });
    Keep("A", 4, [](CRunRecord& rRun) { rRun.m_Machine = "other"; });
    const std::int64_t Id = Keep("A", 5);
    EXPECT_THAT(GetIds(Load(Id).m_Earlier), ElementsAre(2, 1));
    EXPECT_THAT(Load(1).m_Earlier, IsEmpty());
}

TEST_F(ArchivedRunTest, ARunThatIsNotWrittenYetHasAllBeforeIt) {
    Keep("A", 1);
    Keep("A", 2);
    CRunRecord Record = RunRecords::MakeWeights();
    Record.m_Rotor = "A";
    Record.m_Started = MOMENT + std::chrono::minutes(2);
    EXPECT_THAT(GetMinutes(CArchivedRun::LoadTrend(m_Store, Record)), ElementsAre(1, 2));
}
