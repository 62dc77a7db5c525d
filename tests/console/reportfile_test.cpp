#include "console/reportfile.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "platform/rvldb/gettext.h"
#include "tests/support/jsonschema.h"
#include "tests/support/runrecords.h"
#include "tests/support/tempdirectory.h"

namespace {

std::string ReadFile(const std::string& rPath) {
    std::ifstream In(rPath, std::ios::binary);
    return {std::istreambuf_iterator<char>(In), {}};
}

CReportInput MakeInput(const CRunRecord& rRecord) {
    CReportInput Input;
    Input.m_Runs.push_back({rRecord, {}, {}});
    return Input;
}

}  // namespace

TEST(ReportFile, TheEndOfTheNameTellsTheKind) {
    EXPECT_EQ(ReportFile::GetKind("a/b.json"), ReportFile::Kind::eJson);
    EXPECT_EQ(ReportFile::GetKind("b.HTML"), ReportFile::Kind::eHtml);
    EXPECT_EQ(ReportFile::GetKind("b.x.pdf"), ReportFile::Kind::ePdf);
    for (const char* pName : {"", "pdf", ".pdf", "b.htm", "b.txt", "b.json/", "b."}) {
        EXPECT_FALSE(ReportFile::GetKind(pName)) << pName;
    }
}

TEST(ReportFile, EachKindIsWritten) {
    const CTempDirectory Directory;
    const CReportInput Input = MakeInput(RunRecords::MakeWeights());
    ASSERT_TRUE(ReportFile::Write(Directory.At("r.json"), Input));
    EXPECT_EQ(CheckReport(nlohmann::json::parse(ReadFile(Directory.At("r.json")))), "");
    ASSERT_TRUE(ReportFile::Write(Directory.At("r.html"), Input));
    EXPECT_EQ(ReadFile(Directory.At("r.html")).substr(0, 15), "<!DOCTYPE html>");
    ASSERT_TRUE(ReportFile::Write(Directory.At("r.pdf"), Input));
    EXPECT_EQ(ReadFile(Directory.At("r.pdf")).substr(0, 5), "%PDF-");
}

TEST(ReportFile, BeforeARunThereIsAReportThatSaysSo) {
    const CTempDirectory Directory;
    for (const char* pName : {"r.json", "r.html", "r.pdf"}) {
        EXPECT_TRUE(ReportFile::Write(Directory.At(pName), CReportInput())) << pName;
    }
    EXPECT_NE(ReadFile(Directory.At("r.html")).find("No run has begun."), std::string::npos);
}

TEST(ReportFile, FilesThatCantBeWrittenAreTold) {
    for (const char* pName : {"/nonexistent-directory/r.json", "/nonexistent-directory/r.html",
                              "/nonexistent-directory/r.pdf", "/tmp/r.doc"}) {
        EXPECT_FALSE(ReportFile::Write(pName, MakeInput(RunRecords::MakeWeights()))) << pName;
    }
}

// Wherever and whenever it is written.
TEST(ReportFile, TheSameRecordGivesTheSameBytes) {
    const CTempDirectory Directory;
    for (const char* pEnd : {".json", ".html", ".pdf"}) {
        CReportInput Input = MakeInput(RunRecords::MakeWeights());
        Input.m_bFixedDate = true;
        ASSERT_TRUE(ReportFile::Write(Directory.At(std::string("a") + pEnd), Input));
        Input.m_Runs[0].m_Record.m_Started += std::chrono::days(100);
        Input.m_Runs[0].m_Record.m_Ended += std::chrono::days(101);
        ASSERT_TRUE(ReportFile::Write(Directory.At(std::string("b") + pEnd), Input));
        EXPECT_EQ(ReadFile(Directory.At(std::string("a") + pEnd)),
                  ReadFile(Directory.At(std::string("b") + pEnd)))
            << pEnd;
    }
}
