#include "archive/runstore.h"

#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>

#include "archive/runschema.h"
#include "archive/setuptext.h"
#include "tests/platform/rvmdb/databasefixture.h"
#include "tests/support/archivedrun.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class RunStoreTest : public CStoreTest {};
class RunStoreFileTest : public CStoreFileTest {};

std::vector<std::int64_t> GetIds(const std::vector<CRunSummary>& rSummaries) {
    std::vector<std::int64_t> Ids;
    for (const CRunSummary& rSummary : rSummaries) {
        Ids.push_back(rSummary.m_Id);
    }
    return Ids;
}

void ExpectSame(const CRunRecord& rLeft, const CRunRecord& rRight) {
    EXPECT_EQ(rLeft.m_Started, rRight.m_Started);
    EXPECT_EQ(rLeft.m_Ended, rRight.m_Ended);
    EXPECT_EQ(rLeft.m_Version, rRight.m_Version);
    EXPECT_EQ(rLeft.m_Machine, rRight.m_Machine);
    EXPECT_EQ(rLeft.m_Rotor, rRight.m_Rotor);
    EXPECT_EQ(rLeft.m_Driver, rRight.m_Driver);
    EXPECT_EQ(rLeft.m_bRebalance, rRight.m_bRebalance);
    EXPECT_EQ(rLeft.m_Family, rRight.m_Family);
    EXPECT_EQ(rLeft.m_Addresses, rRight.m_Addresses);
    EXPECT_EQ(SetupToText(rLeft.m_Setup), SetupToText(rRight.m_Setup));
    EXPECT_EQ(rLeft.m_Setup.m_Planes, rRight.m_Setup.m_Planes);
    EXPECT_EQ(rLeft.m_Setup.m_Iso, rRight.m_Setup.m_Iso);
    EXPECT_EQ(rLeft.m_Setup.m_InvA, rRight.m_Setup.m_InvA);
    EXPECT_EQ(rLeft.m_Measurements, rRight.m_Measurements);
    EXPECT_EQ(rLeft.m_Prediction, rRight.m_Prediction);
    EXPECT_EQ(rLeft.m_Warnings, rRight.m_Warnings);
    EXPECT_EQ(rLeft.m_State, rRight.m_State);
    EXPECT_EQ(rLeft.m_Result, rRight.m_Result);
    EXPECT_EQ(rLeft.m_bSaved, rRight.m_bSaved);
    ASSERT_EQ(rLeft.m_Calibration.has_value(), rRight.m_Calibration.has_value());
    if (rLeft.m_Calibration) {
        EXPECT_EQ(rLeft.m_Calibration->m_Rpm, rRight.m_Calibration->m_Rpm);
        EXPECT_EQ(rLeft.m_Calibration->m_InvA, rRight.m_Calibration->m_InvA);
        EXPECT_EQ(rLeft.m_Calibration->m_UA, rRight.m_Calibration->m_UA);
        EXPECT_EQ(rLeft.m_Calibration->m_ReferenceWeight, rRight.m_Calibration->m_ReferenceWeight);
    }
}

/// The record at its stations: begun, each measurement, ended.
std::vector<CRunRecord> MakeStations(const CRunRecord& rWhole) {
    CRunRecord Part = rWhole;
    Part.m_Measurements.clear();
    Part.m_Warnings.clear();
    Part.m_Prediction = {};
    Part.m_Calibration.reset();
    Part.m_State = CRunRecord::State::eRunning;
    Part.m_Result = "Inactive";
    Part.m_bSaved = false;
    std::vector<CRunRecord> Stations = {Part};
    for (const CRunMeasurement& rMeasurement : rWhole.m_Measurements) {
        Stations.push_back(Stations.back());
        Stations.back().m_Measurements.push_back(rMeasurement);
    }
    Stations.push_back(Stations.back());
    Stations.back().m_Warnings = rWhole.m_Warnings;
    Stations.push_back(Stations.back());
    Stations.back().m_Prediction = rWhole.m_Prediction;
    Stations.push_back(rWhole);
    return Stations;
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(Stores, RunStoreTest, testing::ValuesIn(GetStoresForTests()), GetStoreName);

TEST_P(RunStoreTest, EveryFieldComesBack) {
    const CRunRecord Record = MakeArchivedRun();
    CRunStore(m_Connection).Write(Record, "a", {});
    CRunStore Store(m_Connection);
    const std::optional<CRunRecord> Loaded = Store.Load(1);
    ASSERT_TRUE(Loaded.has_value());
    EXPECT_EQ(Loaded->m_Id, 1);
    ExpectSame(*Loaded, Record);
}

TEST_P(RunStoreTest, WrittenPieceByPieceItIsTheSameAndNoPieceStandsTwice) {
    const CRunRecord Record = MakeArchivedRun();
    CRunStore Store(m_Connection);
    CRunStore::CProgress Written;
    for (const CRunRecord& rStation : MakeStations(Record)) {
        Written = Store.Write(rStation, "a", Written);
        CRunRecord Expected = rStation;
        if (rStation.m_State == CRunRecord::State::eRunning) {
            Expected.m_Ended = rStation.m_Started;
        }
        ExpectSame(*Store.Load(Written.m_Id), Expected);
        Written = Store.Write(rStation, "a", Written);
    }
    ExpectSame(*Store.Load(Written.m_Id), Record);
    EXPECT_THAT(GetIds(Store.List({})), ElementsAre(1));
}

TEST_P(RunStoreTest, AWriterThatDoesNotKnowHowFarItGotGoesOn) {
    const std::vector<CRunRecord> Stations = MakeStations(MakeArchivedRun());
    CRunStore Store(m_Connection);
    EXPECT_EQ(Store.FindProgress("a").m_Id, 0);
    CRunStore::CProgress Written;
    for (const CRunRecord& rStation : Stations) {
        Written = Store.Write(rStation, "a", Written);
        const CRunStore::CProgress Found = Store.FindProgress("a");
        EXPECT_EQ(Found.m_Id, Written.m_Id);
        EXPECT_EQ(Found.m_nMeasurements, Written.m_nMeasurements);
        EXPECT_EQ(Found.m_nWarnings, Written.m_nWarnings);
        EXPECT_EQ(Found.m_bPrediction, Written.m_bPrediction);
        EXPECT_EQ(Found.m_bEnded, Written.m_bEnded);
    }
}

TEST_P(RunStoreTest, ListsTheNewestFirstAndWhatWasAskedFor) {
    CRunStore Store(m_Connection);
    const auto Add = [&](const char* pMachine, const char* pRotor, int Day, CRunRecord::State State,
                         const char* pResult) {
        CRunRecord Record = MakeArchivedRun();
        Record.m_Machine = pMachine;
        Record.m_Rotor = pRotor;
        Record.m_Started = std::chrono::sys_days(std::chrono::days(20000 + Day));
        Record.m_State = State;
        Record.m_Result = pResult;
        Store.Write(Record, pMachine + std::to_string(Day), {});
    };
    using State = CRunRecord::State;
    Add("A", "r1", 1, State::eFinished, "SetupSuccess");
    Add("A", "r2", 3, State::eFinished, "SetupOverTarget");
    Add("B", "r1", 2, State::eFailed, "Failure");
    Add("B", "", 5, State::eBrokenOff, "Setup");
    Add("B", "r2", 4, State::eRunning, "Inactive");
    const auto List = [&](CRunFilter Filter) { return GetIds(Store.List(Filter)); };
    EXPECT_THAT(List({}), ElementsAre(4, 5, 2, 3, 1));
    EXPECT_THAT(List({.m_nLimit = 2}), ElementsAre(4, 5));
    EXPECT_THAT(List({.m_Machine = "A"}), ElementsAre(2, 1));
    EXPECT_THAT(List({.m_Machine = "B", .m_Rotor = "r1"}), ElementsAre(3));
    EXPECT_THAT(List({.m_Rotor = "r%"}), IsEmpty());
    EXPECT_THAT(List({.m_Configuration = "Scheibe äöü", .m_nLimit = 1}), ElementsAre(4));
    const auto Day = [](int Number) { return std::chrono::sys_days(std::chrono::days(20000 + Number)); };
    EXPECT_THAT(List({.m_Since = Day(2), .m_Until = Day(4)}), ElementsAre(2, 3)) << "until is left out";
    using Result = CRunFilter::Result;
    EXPECT_THAT(List({.m_Result = Result::eWithin}), ElementsAre(1));
    EXPECT_THAT(List({.m_Result = Result::eOver}), ElementsAre(2));
    EXPECT_THAT(List({.m_Result = Result::eFailed}), ElementsAre(3));
    EXPECT_THAT(List({.m_Result = Result::eBrokenOff}), ElementsAre(4));
    EXPECT_THAT(List({.m_Result = Result::eInterrupted}), ElementsAre(5));
    EXPECT_THAT(Store.GetMachines(), ElementsAre("A", "B"));
    EXPECT_THAT(Store.GetRotors(), ElementsAre("r1", "r2"));
}

TEST_P(RunStoreTest, ALineOfTheListTellsBeforeAndAfter) {
    const CRunRecord Record = MakeArchivedRun();
    CRunStore Store(m_Connection);
    Store.Write(Record, "a", {});
    const CRunSummary Line = Store.List({}).at(0);
    EXPECT_EQ(Line.m_Machine, Record.m_Machine);
    EXPECT_EQ(Line.m_Rotor, Record.m_Rotor);
    EXPECT_EQ(Line.m_Mode, "two-plane");
    EXPECT_EQ(Line.m_Started, Record.m_Started);
    EXPECT_TRUE(Line.m_bRebalance);
    EXPECT_TRUE(Line.m_bSaved);
    EXPECT_THAT(Line.m_Before, ElementsAre(50.0, 50.0));  // of (30, 40)
    EXPECT_THAT(Line.m_After, ElementsAre(25.0, 25.0));
}

TEST_P(RunStoreTest, ANumberThatWasRemovedDoesNotComeBack) {
    CRunStore Store(m_Connection);
    Store.Write(MakeArchivedRun(), "a", {});
    Store.Write(MakeArchivedRun(), "b", {});
    Store.Remove(std::vector<std::int64_t>{2, 77});
    EXPECT_FALSE(Store.Load(2).has_value());
    EXPECT_EQ(Store.Write(MakeArchivedRun(), "c", {}).m_Id, 3);
    EXPECT_THAT(GetIds(Store.List({})), ElementsAre(3, 1));
    PreBalDB::CDirectSQL Connection(m_Connection);
    for (const char* const pTable :
         {"run_setup", "run_measurement", "run_plane", "run_warning", "run_prediction", "run_calibration"}) {
        EXPECT_TRUE(Connection.Query(std::string("SELECT 1 FROM ") + pTable + " WHERE run = 2").empty())
            << pTable;
    }
}

TEST_P(RunStoreTest, WithoutItsReadingsARunKeepsWhatWasComputedOfThem) {
    CRunRecord Record = MakeArchivedRun();
    CRunStore Store(m_Connection);
    Store.Write(Record, "a", {});
    Store.WritePicture(1, "final", std::vector<unsigned char>{1, 2});
    Store.RemoveReadings(std::vector<std::int64_t>{1});
    for (CRunMeasurement& rMeasurement : Record.m_Measurements) {
        rMeasurement.m_Planes[0]->m_Readings.clear();
        rMeasurement.m_Planes[1]->m_Readings.clear();
    }
    ExpectSame(*Store.Load(1), Record);
    EXPECT_THAT(Store.GetPictures(1), IsEmpty());
}

TEST_P(RunStoreTest, PicturesStandByTheirNames) {
    CRunStore Store(m_Connection);
    Store.Write(MakeArchivedRun(), "a", {});
    const std::vector<unsigned char> Png = {0x89, 'P', 'N', 'G', 0, 255};
    Store.WritePicture(1, "final", std::vector<unsigned char>{1});
    Store.WritePicture(1, "final", Png);
    EXPECT_THAT(Store.GetPictures(1), ElementsAre("final"));
    EXPECT_EQ(Store.LoadPicture(1, "final"), Png);
    EXPECT_FALSE(Store.LoadPicture(1, "first").has_value());
}

TEST_P(RunStoreTest, AStoreOfConfigurationsGetsAnArchiveAndStaysOne) {
    Open()->WriteConfiguration();
    CRunStore(m_Connection).Write(MakeArchivedRun(), "a", {});
    EXPECT_NE(Open(), nullptr);
    EXPECT_THAT(GetIds(CRunStore(m_Connection).List({})), ElementsAre(1));
}

TEST_P(RunStoreTest, AnArchiveOfANewerVersionIsLeftAsItIs) {
    CRunStore(m_Connection).Write(MakeArchivedRun(), "a", {});
    PreBalDB::CDirectSQL(m_Connection).Execute("UPDATE run_version SET version = 2");
    try {
        CRunStore Store(m_Connection);
        FAIL() << "a newer archive was taken";
    } catch (const PreBalDB::CDatabaseError& rError) {
        EXPECT_THAT(rError.what(), HasSubstr("version 2 of the archive"));
        EXPECT_THAT(rError.what(), HasSubstr("update the program"));
    }
    EXPECT_NE(Open(), nullptr) << "configurations can be worked with all the same";
}

TEST_P(RunStoreTest, TextFromOutsideIsJustText) {
    CRunRecord Record = MakeArchivedRun();
    Record.m_Rotor = std::string(10000, '"') + "<script>'; --";
    Record.m_Setup.m_Configuration = std::string("a\0b", 3) + "\xFF";
    CRunStore Store(m_Connection);
    Store.Write(Record, "a", {});
    EXPECT_EQ(Store.Load(1)->m_Rotor, Record.m_Rotor);
    EXPECT_EQ(Store.List({.m_Rotor = Record.m_Rotor}).size(), 1U);
    EXPECT_EQ(Store.List({}).at(0).m_Configuration, "ab\xEF\xBF\xBD");
}

TEST_F(RunStoreFileTest, WhatFailsHalfWayLeavesTheRunAsItWasAndIsWrittenLater) {
    const std::vector<CRunRecord> Stations = MakeStations(MakeArchivedRun());
    CRunStore Store(m_Connection);
    Store.Write(Stations.front(), "before", {});
    PreBalDB::CDirectSQL Faults(m_Connection);
    int nRun = 0;
    for (const char* const pWhere :
         {"INSERT ON run", "INSERT ON run_setup", "INSERT ON run_measurement", "INSERT ON run_plane",
          "INSERT ON run_warning", "INSERT ON run_prediction", "UPDATE ON run",
          "INSERT ON run_calibration"}) {
        const std::string Mark = std::to_string(++nRun);
        CRunStore::CProgress Written;
        const bool bFirst =
            std::string(pWhere) == "INSERT ON run" || std::string(pWhere) == "INSERT ON run_setup";
        if (!bFirst) {
            Written = Store.Write(Stations.front(), Mark, Written);
        }
        const std::size_t nRuns = Store.List({.m_nLimit = 0}).size();
        Faults.Execute(std::string("CREATE TRIGGER fault AFTER ") + pWhere +
                       " BEGIN SELECT RAISE(ABORT, 'disk full'); END");
        EXPECT_THROW(Store.Write(Stations.back(), Mark, Written), PreBalDB::CSqlError) << pWhere;
        Faults.Execute("DROP TRIGGER fault");
        EXPECT_EQ(Store.List({.m_nLimit = 0}).size(), nRuns) << pWhere;
        const CRunStore::CProgress Found = Store.FindProgress(Mark);
        EXPECT_EQ(Found.m_Id, Written.m_Id) << pWhere;
        EXPECT_EQ(Found.m_nMeasurements, 0U) << pWhere;
        EXPECT_FALSE(Found.m_bEnded) << pWhere;
        Written = Store.Write(Stations.back(), Mark, Found);
        ExpectSame(*Store.Load(Written.m_Id), Stations.back());
    }
}

TEST_F(RunStoreFileTest, KilledAtAnyMomentEveryRunIsListedWithWholeMeasurements) {
    const std::vector<CRunRecord> Stations = MakeStations(MakeArchivedRun());
    { const CRunStore Made(m_Connection); }
    std::size_t nBegun = 0;
    for (int Try = 0; Try < 25; ++Try) {
        int Pipe[2] = {};
        ASSERT_EQ(::pipe(Pipe), 0);
        const pid_t Child = ::fork();
        ASSERT_GE(Child, 0);
        if (Child == 0) {
            CRunStore Store(m_Connection);
            for (int Run = 0; true; ++Run) {
                CRunStore::CProgress Written;
                const std::string Mark = std::to_string(Try) + "-" + std::to_string(Run);
                for (const CRunRecord& rStation : Stations) {
                    const bool bBegins = Written.m_Id == 0;
                    Written = Store.Write(rStation, Mark, Written);
                    if (bBegins && ::write(Pipe[1], "x", 1) != 1) {
                        ::_exit(1);
                    }
                }
            }
        }
        ::close(Pipe[1]);
        ::usleep(static_cast<useconds_t>(2000 + Try * 1777));
        ::kill(Child, SIGKILL);
        ::waitpid(Child, nullptr, 0);
        char Byte = 0;
        while (::read(Pipe[0], &Byte, 1) == 1) {
            ++nBegun;
        }
        ::close(Pipe[0]);
        CRunStore Store(m_Connection);
        const std::vector<CRunSummary> List = Store.List({.m_nLimit = 0});
        ASSERT_GE(List.size(), nBegun) << "a run whose beginning was told is there";
        ASSERT_LE(List.size(), nBegun + static_cast<std::size_t>(Try) + 1);
        for (const CRunSummary& rLine : List) {
            const std::optional<CRunRecord> Run = Store.Load(rLine.m_Id);
            ASSERT_TRUE(Run.has_value());
            EXPECT_EQ(Run->m_Rotor, Stations.back().m_Rotor);
            for (std::size_t i = 0; i < Run->m_Measurements.size(); ++i) {
                EXPECT_EQ(Run->m_Measurements[i], Stations.back().m_Measurements[i]);
            }
            if (Run->m_State != CRunRecord::State::eRunning) {
                ExpectSame(*Run, Stations.back());
            }
        }
    }
    EXPECT_GT(nBegun, 0U);
}

TEST_F(RunStoreFileTest, ALongRunWithAPictureTakesLessThan60kB) {
    CRunRecord Record = MakeArchivedRun();
    std::vector<CArchivedReading> Readings;
    for (std::uint32_t i = 0; i < 300; ++i) {  // of 15 s, the longest that the panel offers
        Readings.push_back({i * 50 + i % 3, static_cast<std::int16_t>(3000 + i * 37 % 200 - 100),
                            static_cast<std::int16_t>(-500 + i * 91 % 200 - 100)});
    }
    Record.m_Measurements.resize(4, Record.m_Measurements[0]);
    for (CRunMeasurement& rMeasurement : Record.m_Measurements) {
        rMeasurement.m_Planes[0]->m_Readings = rMeasurement.m_Planes[1]->m_Readings = Readings;
    }
    CRunStore Store(m_Connection);
    Store.Write(Record, "0", {});
    const auto Before = std::filesystem::file_size(m_Path);
    constexpr int RUNS = 20;
    for (int i = 1; i <= RUNS; ++i) {
        Store.WritePicture(Store.Write(Record, std::to_string(i), {}).m_Id, "final",
                           std::vector<unsigned char>(30000, 7));
    }
    const auto PerRun = (std::filesystem::file_size(m_Path) - Before) / RUNS;
    RecordProperty("bytes_per_run", std::to_string(PerRun));
    EXPECT_LT(PerRun, 60U * 1024U);
}
