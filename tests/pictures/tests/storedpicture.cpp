#include "tests/pictures/tests/storedpicture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <set>

#include "tests/pictures/picturefile.h"
#include "tests/support/tempdirectory.h"
#include "tests/support/testpaths.h"

namespace {

/// Where pictures of failed tests go.
std::filesystem::path GetFailedFolder() {
    return std::filesystem::path(TestProgram("")).parent_path().parent_path() / "failed_pictures";
}

}  // namespace

std::filesystem::path GetStoredFolder(const std::string& rKind) {
    return TestData("pictures") / (rKind.empty() ? "stored" : "stored-" + rKind);
}

void ExpectEachHasAScene(const std::filesystem::path& rFolder, const std::vector<std::string>& rNames) {
    std::set<std::string> Names;
    for (const std::string& rName : rNames) {
        EXPECT_TRUE(Names.insert(rName).second) << rName << " twice";
    }
    for (const auto& rEntry : std::filesystem::directory_iterator(rFolder)) {
        EXPECT_THAT(Names, testing::Contains(rEntry.path().filename().string()));
    }
}

void ExpectLooksAsStored(const CBitmap& rPicture, const std::filesystem::path& rFile,
                         const std::string& rCaption) {
    // A picture with more pixels than its size shows them all once it has gone through a file.
    const CTempDirectory Folder;
    const std::string Detour = (Folder.GetPath() / "picture.png").string();
    CBitmap Actual;
    ASSERT_TRUE(rPicture.SavePng(Detour) && Actual.LoadPng(Detour));
    if (std::getenv("ROTOR_TRIM_STORE_PICTURES") != nullptr) {
        std::filesystem::create_directories(rFile.parent_path());
        ASSERT_TRUE(SavePicture(Actual, rFile));
        GTEST_SKIP() << "stored";
    }
    CBitmap Stored;
    ASSERT_TRUE(Stored.LoadPng(rFile.string())) << rFile;
    const CPictureDifference Difference(Actual, Stored);
    if (!Difference.IsAlike()) {
        std::filesystem::create_directories(GetFailedFolder());
        const std::string Base =
            (GetFailedFolder() / (rFile.parent_path().filename().string() + "-" + rFile.stem().string()))
                .string();
        Actual.SavePng(Base + ".png");
        Difference.m_Picture.SavePng(Base + ".difference.png");
        FAIL() << rCaption << ": " << Difference.ToText() << "; see " << Base << ".png and " << Base
               << ".difference.png";
    }
}
