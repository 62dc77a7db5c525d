#include "console/servicebundle.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QProcess>
#include <fstream>
#include <iterator>

#include "tests/support/tempdirectory.h"

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;

namespace {

class ServiceBundleTest : public testing::Test {
protected:
    ServiceBundleTest() {
        Write("log/rotor_trim.log", "a line of the log\n");
        Write("cnf/mcon.xdb", "<Corvane/>");
        Write("cnf/prebal.db", "the store");
        Write("cnf/prebal.db-wal", "written last");
        Write("cnf/code.json", R"({"hash": "c0ffee"})");
        Write("cnf/opcua/own/key.pem", "PRIVATE KEY");
        Write(
            "cnf/opc.json",
            R"({"server": "opc.tcp://nc:4840", "user": "console", "password": "hunter2", "later_field": "pin1234"})");
        Write("reports/run.json", R"({"procedure": "prebalance"})");
        m_Sources = {GetRoot(), GetRoot() / "cnf" / "prebal.db", {GetRoot() / "reports" / "run.json"}};
    }
    fs::path GetRoot() const { return m_Directory.GetPath() / "root"; }
    void Write(const std::string& rName, const std::string& rText) const {
        fs::create_directories((GetRoot() / rName).parent_path());
        std::ofstream(GetRoot() / rName) << rText;
    }
    /// Every file in the bundle, with its name, one behind the other.
    std::string Unpack() const {
        const fs::path To = m_Directory.GetPath() / "unpacked";
        fs::create_directories(To);
        EXPECT_EQ(QProcess::execute("tar", {"-xzf", QString::fromStdString(GetFile().string()), "-C",
                                            QString::fromStdString(To.string())}),
                  0);
        std::string All;
        for (const auto& rEntry : fs::recursive_directory_iterator(To)) {
            if (rEntry.is_regular_file()) {
                std::ifstream In(rEntry.path());
                All += "[" + fs::relative(rEntry.path(), To).string() + "]" +
                       std::string(std::istreambuf_iterator<char>(In), {}) + "\n";
            }
        }
        return All;
    }
    fs::path GetFile() const { return m_Directory.GetPath() / "out" / "service.tar.gz"; }

    CTempDirectory m_Directory;
    CServiceSources m_Sources;
};

}  // namespace

TEST_F(ServiceBundleTest, HasLogSettingsStoreAndReports) {
    ASSERT_EQ(MakeServiceBundle(m_Sources, GetFile()), "");
    const std::string All = Unpack();
    EXPECT_THAT(All, HasSubstr("[service/log/rotor_trim.log]a line of the log"));
    EXPECT_THAT(All, HasSubstr("[service/cnf/mcon.xdb]<Corvane/>"));
    EXPECT_THAT(All, HasSubstr("[service/store/prebal.db]the store"));
    EXPECT_THAT(All, HasSubstr("[service/store/prebal.db-wal]written last"));
    EXPECT_THAT(All, HasSubstr("run.json]{\"procedure\""));
    EXPECT_THAT(All, HasSubstr("opc.tcp://nc:4840"));
    EXPECT_THAT(All, HasSubstr("[service/about.txt]console "));
}

TEST_F(ServiceBundleTest, HasNoSecret) {
    ASSERT_EQ(MakeServiceBundle(m_Sources, GetFile()), "");
    const std::string All = Unpack();
    for (const char* const pSecret :
         {"hunter2", "pin1234", "PRIVATE KEY", "c0ffee", "code.json", "key.pem"}) {
        EXPECT_THAT(All, Not(HasSubstr(pSecret)));
    }
}

TEST_F(ServiceBundleTest, WhatIsMissingIsLeftOut) {
    m_Sources.m_Store.clear();
    m_Sources.m_Reports = {"/nowhere/run.json"};
    fs::remove_all(GetRoot());
    EXPECT_EQ(MakeServiceBundle(m_Sources, GetFile()), "");
    EXPECT_THAT(Unpack(), HasSubstr("about.txt"));
}

TEST_F(ServiceBundleTest, AFileThatCannotBeMadeIsToldAndLeavesNothing) {
    std::ofstream(m_Directory.GetPath() / "out") << "a file where a directory should be";
    EXPECT_NE(MakeServiceBundle(m_Sources, GetFile()), "");
    EXPECT_FALSE(fs::exists(GetFile()));
    fs::remove(m_Directory.GetPath() / "out");
    fs::create_directories(GetFile());  // a directory of that name
    EXPECT_NE(MakeServiceBundle(m_Sources, GetFile()), "");
    EXPECT_FALSE(fs::exists(GetFile().string() + ".part"));
}
