// docs/wiring.md says what the checks say, word for word: whoever looks up a line of a check finds it there.
#include <gmock/gmock.h>

#include <algorithm>
#include <cctype>
#include <map>
#include <regex>
#include <set>

#include "platform/rvldb/gettext.h"
#include "tests/support/testpaths.h"
#include "tests/support/textfiles.h"

namespace {

struct CRow {
    std::string m_Text;
    std::string m_Advice;
};

std::map<std::string, CRow> ReadRows() {
    const std::string Guide = ReadTestFile(TestData("../docs/wiring.md"));
    const std::regex Row(R"(\| `((?:link|database)-[a-z-]+)` \| (.*) \| (.*) \|)");
    std::map<std::string, CRow> Rows;
    for (std::sregex_iterator Found(Guide.begin(), Guide.end(), Row); Found != std::sregex_iterator();
         ++Found) {
        Rows[(*Found)[1]] = {(*Found)[2], (*Found)[3]};
    }
    return Rows;
}

std::string ToKey(std::string Name) {
    std::ranges::transform(Name, Name.begin(), [](unsigned char Character) {
        return Character == '-' ? '_' : static_cast<char>(std::toupper(Character));
    });
    return "CHECK_" + Name;
}

/// As the guide shows it: what is filled in is left open.
std::string ShowText(const std::string& rKey) {
    return std::regex_replace(GetText(rKey.c_str()), std::regex("%s"), "\xE2\x80\xA6");
}

/// Names of findings in the code, and whether they stand where something is said to be in order.
std::map<std::string, bool> ReadNames() {
    std::map<std::string, bool> Names;
    for (const char* const pFile : {"../console/linkanalysis.cpp", "../console/databasefacts.cpp"}) {
        const std::string Code = ReadTestFile(TestData(pFile));
        const std::regex Name(R"re("((?:link|database)-[a-z-]+)")re");
        for (std::sregex_iterator Found(Code.begin(), Code.end(), Name); Found != std::sregex_iterator();
             ++Found) {
            const std::string Before = Code.substr(0, static_cast<std::size_t>(Found->position()));
            const std::string Statement = Before.substr(std::min(Before.rfind(';') + 1, Before.size()));
            Names[(*Found)[1]] = Statement.find("AddOk(") != std::string::npos;
        }
    }
    return Names;
}

}  // namespace

TEST(WiringGuide, HasEveryFindingWithItsTexts) {
    SetLanguage("en");
    const std::map<std::string, CRow> Rows = ReadRows();
    EXPECT_GT(Rows.size(), 50U);
    for (const auto& [rName, rRow] : Rows) {
        EXPECT_EQ(rRow.m_Text, ShowText(ToKey(rName))) << rName;
        EXPECT_EQ(rRow.m_Advice, ShowText(ToKey(rName) + "_DO")) << rName;
    }
}

TEST(WiringGuide, FindingsOfTheCodeHaveTextsAndWhatIsToBeDoneStandsInTheGuide) {
    const std::map<std::string, CRow> Rows = ReadRows();
    const std::map<std::string, bool> Names = ReadNames();
    EXPECT_GT(Names.size(), 60U);
    for (const auto& [rName, bInOrder] : Names) {
        EXPECT_NE(GetText(ToKey(rName).c_str()), ToKey(rName));
        EXPECT_EQ(Rows.contains(rName), !bInOrder) << rName;
    }
    for (const auto& [rName, rRow] : Rows) {
        EXPECT_TRUE(Names.contains(rName)) << rName << " is in the guide only";
    }
}
