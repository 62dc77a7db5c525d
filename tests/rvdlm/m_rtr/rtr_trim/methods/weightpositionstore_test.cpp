#include "rvdlm/m_rtr/rtr_trim/methods/weightpositionstore.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <stdexcept>
#include <string>

#include <vector>

#include "platform/system/archive.h"
#include "rvlib/math/vector.h"
#include "tests/support/testinstallation.h"

namespace {

using math::MakeVector;
using Bytes = std::vector<std::uint8_t>;

/// The file's bytes put together by hand, so that the archive isn't its own judge.
class CBytes {
public:
    CBytes& Byte(std::uint8_t Value) {
        m_Bytes.push_back(Value);
        return *this;
    }
    CBytes& Number(std::int64_t Value) { return LittleEndian(static_cast<std::uint64_t>(Value), 4); }
    CBytes& Double(double Value) { return LittleEndian(std::bit_cast<std::uint64_t>(Value), 8); }
    CBytes& Text(const std::string& rText) {
        Byte(static_cast<std::uint8_t>(rText.size()));
        m_Bytes.insert(m_Bytes.end(), rText.begin(), rText.end());
        return *this;
    }
    /// A record as the table of the format has it, with positions told by a number.
    CBytes& Record(bool bValid, int RPM, double First, bool bSinglePlane) {
        return Byte(bValid ? 1 : 0)
            .Number(RPM)
            .Double(First)
            .Double(First + 1)
            .Number(RPM + 1)
            .Double(First + 2)
            .Double(First + 3)
            .Number(-7)
            .Byte(bSinglePlane ? 1 : 0);
    }
    Bytes m_Bytes;

private:
    CBytes& LittleEndian(std::uint64_t Value, int nBytes) {
        for (int i = 0; i < nBytes; ++i) {
            Byte(static_cast<std::uint8_t>(Value >> (8 * i)));
        }
        return *this;
    }
};

CBytes Head31(std::int32_t nEntries) {
    return CBytes().Text("3.1").Number(4000).Number(10).Number(25).Number(nEntries);
}

void Read(CObject& rObject, const Bytes& rBytes) {
    CArchive Archive(CArchive::eLoad, rBytes);
    rObject.Serialize(Archive);
}

Bytes Write(CObject& rObject) {
    CArchive Archive(CArchive::eStore);
    rObject.Serialize(Archive);
    return Archive.GetBytes();
}

class WeightPositionStore : public testing::Test {
protected:
    void PutFile(const Bytes& rBytes) const {
        std::ofstream Out(m_Installation.GetWeightPositions(), std::ios::binary);
        Out.write(reinterpret_cast<const char*>(rBytes.data()), static_cast<std::streamsize>(rBytes.size()));
    }
    Bytes GetFile() const {
        std::ifstream In(m_Installation.GetWeightPositions(), std::ios::binary);
        return Bytes(std::istreambuf_iterator<char>(In), std::istreambuf_iterator<char>());
    }
    bool HasFile() const { return std::filesystem::exists(m_Installation.GetWeightPositions()); }

    CTestInstallation m_Installation;
};

TEST_F(WeightPositionStore, KeyIsTheModuleInSixDigitsAndTheSet) {
    EXPECT_EQ(CWeightPositionStore::MakeKey(5, "WHEEL1"), "000005_WHEEL1");
    EXPECT_EQ(CWeightPositionStore::MakeKey(0, ""), "000000_");
}

TEST_F(WeightPositionStore, LongModuleAddressKeepsAllItsDigits) {
    EXPECT_EQ(CWeightPositionStore::MakeKey(123456789, "A"), "123456789_A");
}

TEST_F(WeightPositionStore, UnknownKeyIsNotValidButSinglePlane) {
    const CWeightPositionStore Store;
    EXPECT_FALSE(Store.Contains("000005_A"));
    EXPECT_FALSE(Store.IsPositionsValid("000005_A"));
    EXPECT_TRUE(Store.IsSinglePlane("000005_A"));
}

TEST_F(WeightPositionStore, GettingAnUnknownKeyThrows) {
    try {
        CWeightPositionStore().Get("000005_A");
        FAIL() << "nothing thrown";
    } catch (const std::out_of_range& rError) {
        EXPECT_STREQ(rError.what(), "invalid map<K, T> key");
    }
}

TEST_F(WeightPositionStore, StartsWithItsDefaults) {
    const CWeightPositionStore Store;
    EXPECT_EQ(Store.m_IncrementRPM, -1);
    EXPECT_EQ(Store.m_Increment, 30);
    EXPECT_EQ(Store.m_IncrementBelow, 30);
    const WeightPos2Plane Record;
    EXPECT_FALSE(Record.m_PositionsValid);
    EXPECT_TRUE(Record.m_SinglePlane);
    EXPECT_EQ(Record.m_RPM, 0);
    EXPECT_EQ(Record.m_PositionsPlane1.RowNo(), 6U);
    EXPECT_EQ(Record.m_PositionsPlane1.ColNo(), 6U);
}

TEST_F(WeightPositionStore, ClassesTellTheirNames) {
    EXPECT_STREQ(CWeightPositionStore().GetRuntimeClass(), "CWeightPositionStore");
    EXPECT_STREQ(WeightPos2Plane().GetRuntimeClass(), "WeightPos2Plane");
}

TEST_F(WeightPositionStore, RecordIs46BytesInTheGivenOrder) {
    WeightPos2Plane Record;
    Record.m_PositionsValid = true;
    Record.m_RPM = 3000;
    Record.m_PositionsPlane1 = MakeVector(30.5, 31.5);
    Record.m_ValuePlane1 = 3001;
    Record.m_PositionsPlane2 = MakeVector(32.5, 33.5);
    Record.m_ValuePlane2 = -7;
    Record.m_SinglePlane = false;
    const Bytes Expected = CBytes().Record(true, 3000, 30.5, false).m_Bytes;
    ASSERT_EQ(Expected.size(), 46U);
    EXPECT_EQ(Write(Record), Expected);

    WeightPos2Plane Copy;
    Read(Copy, Expected);
    EXPECT_TRUE(Copy.m_PositionsValid);
    EXPECT_EQ(Copy.m_RPM, 3000);
    EXPECT_EQ(Copy.m_PositionsPlane1, MakeVector(30.5, 31.5));
    EXPECT_EQ(Copy.m_ValuePlane1, 3001);
    EXPECT_EQ(Copy.m_PositionsPlane2, MakeVector(32.5, 33.5));
    EXPECT_EQ(Copy.m_ValuePlane2, -7);
    EXPECT_FALSE(Copy.m_SinglePlane);
}

TEST_F(WeightPositionStore, RecordNeverGivenPositionsWritesZeros) {
    // Leaves something else in the memory that the record's first matrix is likely to get.
    {
        math::matrix<double> Former;
        for (std::uint32_t i = 0; i < 36; ++i) {
            Former(i / 6, i % 6) = 12345.0;
        }
    }
    WeightPos2Plane Record;
    const Bytes Written = Write(Record);
    const Bytes Expected = CBytes()
                               .Byte(0)
                               .Number(0)
                               .Double(0)
                               .Double(0)
                               .Number(0)
                               .Double(0)
                               .Double(0)
                               .Number(0)
                               .Byte(1)
                               .m_Bytes;
    EXPECT_EQ(Written, Expected);
    WeightPos2Plane Copy;
    Read(Copy, Written);
    EXPECT_EQ(Copy.m_PositionsPlane1, MakeVector(0, 0));
    EXPECT_EQ(Copy.m_PositionsPlane2, MakeVector(0, 0));
}

TEST_F(WeightPositionStore, CopyOfARecordIsItsOwn) {
    WeightPos2Plane Record;
    Record.m_PositionsPlane1 = MakeVector(1, 2);
    WeightPos2Plane Copy = Record;
    Copy.m_PositionsPlane1(0, 0) = 9;
    EXPECT_EQ(Record.m_PositionsPlane1, MakeVector(1, 2));
}

TEST_F(WeightPositionStore, AnyByteButZeroReadsAsTrue) {
    Bytes Record = CBytes().Record(false, 1, 1, false).m_Bytes;
    Record.front() = 0x80;
    Record.back() = 2;
    WeightPos2Plane Read2;
    Read(Read2, Record);
    EXPECT_TRUE(Read2.m_PositionsValid);
    EXPECT_TRUE(Read2.m_SinglePlane);
}

TEST_F(WeightPositionStore, ReadsAndWritesTheCurrentVersion) {
    const Bytes File = Head31(2)
                           .Text("000005_A")
                           .Record(true, 3000, 10, true)
                           .Text("000005_B")
                           .Record(false, 1500, 20, false)
                           .m_Bytes;
    CWeightPositionStore Store;
    Read(Store, File);
    EXPECT_EQ(Store.m_IncrementRPM, 4000);
    EXPECT_EQ(Store.m_Increment, 10);
    EXPECT_EQ(Store.m_IncrementBelow, 25);
    EXPECT_TRUE(Store.IsPositionsValid("000005_A"));
    EXPECT_TRUE(Store.IsSinglePlane("000005_A"));
    EXPECT_FALSE(Store.IsPositionsValid("000005_B"));
    EXPECT_FALSE(Store.IsSinglePlane("000005_B"));
    EXPECT_EQ(Store.Get("000005_B").m_RPM, 1500);
    EXPECT_EQ(Store.Get("000005_B").m_PositionsPlane1, MakeVector(20, 21));
    EXPECT_EQ(Write(Store), File);
}

TEST_F(WeightPositionStore, EntriesAreWrittenInTheOrderOfTheirKeys) {
    CWeightPositionStore Store;
    Read(Store, Head31(2).Text("b").Record(true, 1, 1, true).Text("B").Record(true, 2, 2, true).m_Bytes);
    EXPECT_EQ(Write(Store),
              Head31(2).Text("B").Record(true, 2, 2, true).Text("b").Record(true, 1, 1, true).m_Bytes);
}

TEST_F(WeightPositionStore, OfEqualKeysTheFirstRecordStands) {
    CWeightPositionStore Store;
    Read(Store, Head31(2).Text("A").Record(true, 1, 1, true).Text("A").Record(true, 2, 2, true).m_Bytes);
    EXPECT_EQ(Store.Get("A").m_RPM, 1);
    EXPECT_EQ(Write(Store), Head31(1).Text("A").Record(true, 1, 1, true).m_Bytes);
}

TEST_F(WeightPositionStore, ReadingEmptiesTheMapFirst) {
    CWeightPositionStore Store;
    Read(Store, Head31(1).Text("A").Record(true, 1, 1, true).m_Bytes);
    Read(Store, Head31(0).m_Bytes);
    EXPECT_FALSE(Store.Contains("A"));
}

TEST_F(WeightPositionStore, Version30HasNumbersInPlaceOfKeys) {
    CWeightPositionStore Store;
    Read(Store, CBytes()
                    .Text("3.0")
                    .Number(4000)
                    .Number(10)
                    .Number(25)
                    .Number(1)
                    .Number(7)
                    .Record(true, 1, 1, true)
                    .m_Bytes);
    EXPECT_EQ(Store.m_IncrementBelow, 25);
    EXPECT_TRUE(Store.Contains("000007_"));
    EXPECT_EQ(Store.Get("000007_").m_PositionsPlane2, MakeVector(3, 4));
}

TEST_F(WeightPositionStore, EntryOfVersion30StaysInTheFile) {
    PutFile(CBytes()
                .Text("3.0")
                .Number(4000)
                .Number(10)
                .Number(25)
                .Number(1)
                .Number(7)
                .Record(true, 1, 1, true)
                .m_Bytes);
    CWeightPositionStore::Set("000007_WHEEL", WeightPos2Plane());
    CWeightPositionStore Store;
    Store.Load();
    EXPECT_TRUE(Store.Contains("000007_"));
    EXPECT_TRUE(Store.Contains("000007_WHEEL"));
}

TEST_F(WeightPositionStore, OlderVersionsHaveNoIncrementBelowAndAreWrittenAsTheCurrent) {
    for (const char* pVersion : {"2.0", "", "3.2"}) {
        PutFile(CBytes()
                    .Text(pVersion)
                    .Number(4000)
                    .Number(10)
                    .Number(1)
                    .Number(7)
                    .Record(true, 1, 1, true)
                    .m_Bytes);
        CWeightPositionStore Store;
        Store.m_IncrementBelow = 99;
        Store.Load();
        EXPECT_EQ(Store.m_IncrementBelow, 30);
        EXPECT_TRUE(Store.Contains("000007_"));
        WeightPos2Plane Record;
        Record.m_PositionsPlane1 = MakeVector(5, 6);
        Record.m_ValuePlane1 = 3;
        Record.m_PositionsPlane2 = MakeVector(7, 8);
        Record.m_ValuePlane2 = -7;
        Record.m_RPM = 2;
        CWeightPositionStore::Set("A", Record);
        EXPECT_EQ(GetFile(), CBytes()
                                 .Text("3.1")
                                 .Number(4000)
                                 .Number(10)
                                 .Number(30)
                                 .Number(2)
                                 .Text("000007_")
                                 .Record(true, 1, 1, true)
                                 .Text("A")
                                 .Record(false, 2, 5, true)
                                 .m_Bytes);
    }
}

TEST_F(WeightPositionStore, SetChangesTheFileOnly) {
    CWeightPositionStore Store;
    WeightPos2Plane Record;
    Record.m_PositionsValid = true;
    Record.m_PositionsPlane1 = MakeVector(30, 180);
    CWeightPositionStore::Set("000005_A", Record);
    EXPECT_FALSE(Store.Contains("000005_A"));
    Store.Load();
    ASSERT_TRUE(Store.Contains("000005_A"));
    EXPECT_EQ(Store.Get("000005_A").m_PositionsPlane1, MakeVector(30, 180));
}

TEST_F(WeightPositionStore, SetOverwritesItsEntryAndKeepsTheRest) {
    PutFile(Head31(2).Text("A").Record(true, 1, 1, true).Text("B").Record(true, 2, 2, true).m_Bytes);
    WeightPos2Plane Record;
    Read(Record, CBytes().Record(false, 3, 3, false).m_Bytes);
    CWeightPositionStore::Set("A", Record);
    EXPECT_EQ(GetFile(),
              Head31(2).Text("A").Record(false, 3, 3, false).Text("B").Record(true, 2, 2, true).m_Bytes);
}

TEST_F(WeightPositionStore, SetWithoutAFileWritesTheDefaultHead) {
    WeightPos2Plane Record;
    Read(Record, CBytes().Record(true, 3, 3, true).m_Bytes);
    CWeightPositionStore::Set("A", Record);
    EXPECT_EQ(GetFile(), CBytes()
                             .Text("3.1")
                             .Number(-1)
                             .Number(30)
                             .Number(30)
                             .Number(1)
                             .Text("A")
                             .Record(true, 3, 3, true)
                             .m_Bytes);
}

// Of the planes that a record is of; what lies in the other one doesn't matter.
TEST_F(WeightPositionStore, AnglesAreUsableIfAllOfThemAreOnTheScale) {
    const auto IsUsable = [](double Plane1, double Plane2, bool bSinglePlane) {
        WeightPos2Plane Record;
        Record.m_PositionsPlane1 = MakeVector(10, Plane1);
        Record.m_PositionsPlane2 = MakeVector(Plane2, 20);
        Record.m_SinglePlane = bSinglePlane;
        return Record.HasUsableAngles();
    };
    EXPECT_TRUE(IsUsable(0, 359, false));
    EXPECT_TRUE(IsUsable(0, 359, true));
    for (const double Angle : {-0.5, 359.5, 360.0, std::numeric_limits<double>::quiet_NaN(),
                               std::numeric_limits<double>::infinity()}) {
        EXPECT_FALSE(IsUsable(Angle, 0, false)) << Angle;
        EXPECT_FALSE(IsUsable(Angle, 0, true)) << Angle;
        EXPECT_FALSE(IsUsable(0, Angle, false)) << Angle;
        EXPECT_TRUE(IsUsable(0, Angle, true)) << Angle;
    }
}

TEST_F(WeightPositionStore, LoadWithoutAFileChangesNothing) {
    CWeightPositionStore Store;
    Read(Store, Head31(1).Text("A").Record(true, 1, 1, true).m_Bytes);
    Store.Load();
    EXPECT_TRUE(Store.Contains("A"));
    EXPECT_EQ(Store.m_IncrementRPM, 4000);
}

TEST_F(WeightPositionStore, SaveWritesTheObject) {
    CWeightPositionStore Store;
    Read(Store, Head31(0).m_Bytes);
    ASSERT_FALSE(HasFile());
    Store.Save();
    EXPECT_EQ(GetFile(), Head31(0).m_Bytes);
}

TEST_F(WeightPositionStore, FileThatCanNotBeWrittenLosesTheChangeSilently) {
    std::filesystem::remove_all(m_Installation.GetRoot() / "cnf");
    EXPECT_NO_THROW(CWeightPositionStore::Set("A", WeightPos2Plane()));
    EXPECT_FALSE(HasFile());
}

TEST_F(WeightPositionStore, FileCutAnywhereThrowsAndStaysAsItIs) {
    const Bytes Whole = Head31(1).Text("000005_A").Record(true, 3000, 10, true).m_Bytes;
    for (std::size_t nSize = 0; nSize < Whole.size(); ++nSize) {
        const Bytes Cut(Whole.begin(), Whole.begin() + static_cast<std::ptrdiff_t>(nSize));
        PutFile(Cut);
        CWeightPositionStore Store;
        EXPECT_THROW(Store.Load(), CArchiveException) << nSize;
        EXPECT_FALSE(Store.Contains("000005_A")) << "half a file is none";
        EXPECT_THROW(CWeightPositionStore::Set("B", WeightPos2Plane()), CArchiveException) << nSize;
        EXPECT_EQ(GetFile(), Cut);
    }
}

TEST_F(WeightPositionStore, LoadingADamagedFileChangesNothing) {
    CWeightPositionStore Store;
    PutFile(Head31(1).Text("000005_A").Record(true, 3000, 10, true).m_Bytes);
    Store.Load();
    PutFile(CBytes().Text("3.1").Number(77).m_Bytes);
    EXPECT_THROW(Store.Load(), CArchiveException);
    EXPECT_TRUE(Store.Contains("000005_A"));
    EXPECT_NE(Store.m_IncrementRPM, 77);
}

TEST_F(WeightPositionStore, BeginningAnewKeepsTheDamagedFileAndTheNumbers) {
    const Bytes Damaged = CBytes().Text("3.1").m_Bytes;
    PutFile(Damaged);
    CWeightPositionStore Store;
    Store.m_IncrementRPM = 1500;
    EXPECT_TRUE(Store.BeginAnew("cut"));
    EXPECT_TRUE(std::filesystem::exists(m_Installation.GetWeightPositions().string() + ".damaged"));
    CWeightPositionStore Stored;
    EXPECT_NO_THROW(Stored.Load());
    EXPECT_EQ(Stored.m_IncrementRPM, 1500);
}

TEST_F(WeightPositionStore, WriteProtectedFileIsLeftAlone) {
    PutFile(Head31(1).Text("000005_A").Record(true, 3000, 10, true).m_Bytes);
    const Bytes Before = GetFile();
    std::filesystem::permissions(m_Installation.GetWeightPositions(), std::filesystem::perms::owner_read);
    CWeightPositionStore::Set("B", WeightPos2Plane());
    EXPECT_EQ(GetFile(), Before);
}

TEST_F(WeightPositionStore, HugeCountOfADamagedFileThrowsAtItsEnd) {
    CWeightPositionStore Store;
    EXPECT_THROW(Read(Store, Head31(-1).Text("A").Record(true, 1, 1, true).m_Bytes), CArchiveException);
}

}  // namespace
