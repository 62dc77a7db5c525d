#include "platform/rvldb/gettext.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QFile>
#include <QRegularExpression>
#include <QXmlStreamReader>
#include <filesystem>
#include <map>
#include <set>

#include "platform/window/bitmap.h"
#include "platform/window/dc.h"
#include "tests/support/testpaths.h"
#include "tests/support/textfiles.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::filesystem::path c_Source = TestData("..");

/// Puts back English, which all other tests expect.
class GetTextTest : public testing::Test {
protected:
    ~GetTextTest() override { SetLanguage("en"); }
};

TEST_F(GetTextTest, EnglishAndGermanAreThere) {
    EXPECT_THAT(GetLanguages(), ElementsAre("de", "en"));
}

TEST_F(GetTextTest, GivesTheTextInTheLanguageChosen) {
    ASSERT_TRUE(SetLanguage("en"));
    EXPECT_EQ(GetLanguage(), "en");
    EXPECT_EQ(GetText("CW_TEXT"), "Clockwise");
    ASSERT_TRUE(SetLanguage("de"));
    EXPECT_EQ(GetLanguage(), "de");
    EXPECT_EQ(GetText("CW_TEXT"), "Im Uhrzeigersinn");
    EXPECT_EQ(GetText("PB_SCALINGDIRECTION_TEXT"), "Z\xC3\xA4hlrichtung der Skala");
}

TEST_F(GetTextTest, TakesALanguageWithItsCountry) {
    EXPECT_TRUE(SetLanguage("de_AT"));
    EXPECT_EQ(GetLanguage(), "de");
    EXPECT_TRUE(SetLanguage("en-US"));
    EXPECT_EQ(GetLanguage(), "en");
}

TEST_F(GetTextTest, AnUnknownLanguageChangesNothing) {
    ASSERT_TRUE(SetLanguage("de"));
    EXPECT_FALSE(SetLanguage("xx"));
    EXPECT_FALSE(SetLanguage(""));
    EXPECT_EQ(GetLanguage(), "de");
}

TEST_F(GetTextTest, AMissingKeyGivesTheKey) {
    EXPECT_EQ(GetText("NO_SUCH_KEY"), "NO_SUCH_KEY");
    ASSERT_TRUE(SetLanguage("de"));
    EXPECT_EQ(GetText("NO_SUCH_KEY"), "NO_SUCH_KEY");
    EXPECT_EQ(GetText(""), "");
}

/// The messages of a language file as a translator's tool sees them.
struct CMessage {
    std::string m_Source;
    std::string m_Translation;
    bool m_bFinished = true;
};
std::map<std::string, CMessage> ReadLanguageFile(const std::string& rCode) {
    QFile File(QString::fromStdString((c_Source / "texts" / ("rotor_trim_" + rCode + ".ts")).string()));
    EXPECT_TRUE(File.open(QIODevice::ReadOnly)) << rCode;
    QXmlStreamReader Reader(&File);
    std::map<std::string, CMessage> Messages;
    CMessage* pMessage = nullptr;
    while (!Reader.atEnd()) {
        if (Reader.readNext() != QXmlStreamReader::StartElement) {
            continue;
        }
        if (Reader.name() == u"TS") {
            EXPECT_EQ(Reader.attributes().value("language").toString().toStdString(), rCode);
        } else if (Reader.name() == u"message") {
            const std::string Id = Reader.attributes().value("id").toString().toStdString();
            EXPECT_FALSE(Messages.contains(Id)) << Id << " stands twice in " << rCode;
            pMessage = &Messages[Id];
        } else if (Reader.name() == u"source") {
            pMessage->m_Source = Reader.readElementText().toStdString();
        } else if (Reader.name() == u"translation") {
            pMessage->m_bFinished = !Reader.attributes().hasAttribute("type");
            pMessage->m_Translation = Reader.readElementText().toStdString();
        }
    }
    EXPECT_FALSE(Reader.hasError()) << rCode << ": " << Reader.errorString().toStdString();
    return Messages;
}

TEST_F(GetTextTest, EveryLanguageHasEveryKey) {
    const auto English = ReadLanguageFile("en");
    EXPECT_GT(English.size(), 40U);
    for (const std::string& rCode : GetLanguages()) {
        const auto Messages = ReadLanguageFile(rCode);
        EXPECT_EQ(Messages.size(), English.size()) << rCode;
        ASSERT_TRUE(SetLanguage(rCode));
        for (const auto& [rKey, rEnglish] : English) {
            const auto Found = Messages.find(rKey);
            ASSERT_NE(Found, Messages.end()) << rCode << " lacks " << rKey;
            EXPECT_TRUE(Found->second.m_bFinished) << rCode << ": " << rKey;
            EXPECT_FALSE(Found->second.m_Translation.empty()) << rCode << ": " << rKey;
            EXPECT_EQ(Found->second.m_Source, rEnglish.m_Translation) << rCode << ": " << rKey;
            // What is compiled into the library is what stands in the file.
            EXPECT_EQ(GetText(rKey), Found->second.m_Translation) << rCode << ": " << rKey;
        }
    }
}

/// All matches of the pattern's first group in the sources below a folder.
std::map<std::string, std::string> FindInSources(const char* pFolder, const char* pPattern) {
    const QRegularExpression Pattern(pPattern);
    std::map<std::string, std::string> Found;
    for (const auto& rEntry : std::filesystem::recursive_directory_iterator(c_Source / pFolder)) {
        const auto Extension = rEntry.path().extension();
        if ((Extension != ".cpp") && (Extension != ".h")) {
            continue;
        }
        auto Matches = Pattern.globalMatch(QString::fromStdString(ReadTestFile(rEntry.path())));
        while (Matches.hasNext()) {
            Found.emplace(Matches.next().captured(1).toStdString(), rEntry.path().filename().string());
        }
    }
    return Found;
}

std::vector<std::string> MissingKeys(const std::map<std::string, std::string>& rUsed) {
    const auto English = ReadLanguageFile("en");
    std::vector<std::string> Missing;
    for (const auto& [rKey, rFile] : rUsed) {
        if (!English.contains(rKey)) {
            Missing.push_back(rKey + " of " + rFile);
        }
    }
    return Missing;
}

TEST_F(GetTextTest, KeysAskedForInTheCodeAreInTheLanguageFiles) {
    std::size_t nKeys = 0;
    for (const char* const pFolder : {"rvlib", "rvdlm", "console"}) {
        const auto Used = FindInSources(pFolder, "(?<![.>])\\bGetText\\(\\s*\"([^\"]+)\"");
        EXPECT_THAT(MissingKeys(Used), IsEmpty());
        nKeys += Used.size();
    }
    // The search finds something at all.
    EXPECT_GT(nKeys, 5U);
}

// Tables of the module name keys without calling GetText on the spot. They are known by their form; what has
// the same form and is no key stands in the list.
TEST_F(GetTextTest, KeysInTablesOfTheModuleAreInTheLanguageFiles) {
    const std::set<std::string> c_NoKeys = {"INCREMENT_BELOW"};
    // Help topics (PB_001) have the form too.
    auto Used = FindInSources("rvdlm", "\"(?!PB_\\d{3}\")([A-Z]+(?:_[A-Z0-9]+)+)\"");
    EXPECT_TRUE(Used.contains("PB_UNBAL_MSRMNT_TEXT"));
    std::erase_if(Used, [&](const auto& rUse) { return c_NoKeys.contains(rUse.first); });
    EXPECT_THAT(MissingKeys(Used), IsEmpty());
}

/// Width of a text on the page.
int WidthOf(const std::string& rText, int nFontHeight) {
    CBitmap Bitmap(CSize(1, 1));
    CDC DC(Bitmap);
    DC.SelectFont(CFont("Arial", nFontHeight));
    return DC.GetTextExtent(rText).cx;
}

// A page 600 pixels wide: fonts as the painters choose them, insets left out of the width.
TEST_F(GetTextTest, TextsFitOneLineOfAPage600PixelsWide) {
    constexpr int WIDTH = 600 - 10 - 5;
    constexpr int INSTRUCTION_FONT = WIDTH / 38;
    constexpr int WARNING_FONT = WIDTH / 46;
    constexpr int HEADER_FONT = 600 / 47;
    constexpr int STATUS_FONT = 300 / 18;
    for (const std::string& rCode : GetLanguages()) {
        ASSERT_TRUE(SetLanguage(rCode));
        for (const char* const pKey :
             {"PB_TERMINATE_TEXT4", "PB_STOP_SPINDLE_OR_CONFIRM_TEXT", "PB_STOP_SPINDLE_TEXT",
              "PB_MOVE_TO_NEUTRAL_TEXTNEUTRAL", "PB_RUN_AT_SELECTED_RPM_TEXT",
              "PB_RUN_AT_DESIRED_RPM_TEXT_NEXT", "PB_UNBAL_MSRMNT_TEXT", "PB_MOVE_TO_GIVEN_POSITION_TEXT_PBA",
              "PB_MAP_WEIGHTS_TO_DISPLAY"}) {
            EXPECT_LE(WidthOf(GetText(pKey), INSTRUCTION_FONT), WIDTH) << rCode << ": " << pKey;
        }
        for (const std::string& rWarning :
             {GetText("SET_SWITCH"), GetText("PB_CANNOT_BALANCE3"),
              GetText("PB_CANNOT_BALANCE1") + " (1000%)",
              GetText("PB_REBAL_NOT_POSSIBLE") + " " + GetText("PB_CANNOT_BALANCE1"),
              GetText("PB_UNBAL_OVER_LIMIT_TEXT"), GetText("PB_TERMINATE_TEXT"),
              GetText("MODULE_STATE_CHANGED")}) {
            EXPECT_LE(WidthOf(rWarning, WARNING_FONT), WIDTH) << rCode << ": " << rWarning;
        }
        const std::string Header =
            GetText("PREBAL_CONFIG") + " " + GetText("SET") + " 10 / Wheel 400x60: Finishing";
        const std::string Step = GetText("STEP") + " 11/12";
        EXPECT_LE(WidthOf(Header, HEADER_FONT) + WidthOf(Step, HEADER_FONT), 600 - 3 * 10) << rCode;
        for (const char* const pKey : {"PB_CALIBRATED_RPM_TEXT", "PB_CURRENT_RPM_TEXT"}) {
            const std::string Status = GetText(pKey) + ": 60000 " + GetText("RPM");
            EXPECT_LE(WidthOf(Status, STATUS_FONT), 300 - 2 * 10) << rCode << ": " << Status;
        }
    }
}

}  // namespace
