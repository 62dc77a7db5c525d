// Every scene against its stored picture. After a change that is meant, look at the pictures and store them
// anew:
//   ROTOR_TRIM_STORE_PICTURES=1 build/debug/tests/picture_tests --gtest_filter='*LooksAsStored*'
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <set>

#include "tests/pictures/picturefile.h"
#include "tests/pictures/scenepage.h"

namespace {

std::filesystem::path GetStoredFolder() {
    return std::filesystem::path(TEST_DATA_DIR) / "pictures" / "stored";
}

std::filesystem::path GetStoredFile(const CScene& rScene) {
    return GetStoredFolder() / (rScene.m_Name + ".png");
}

/// Where pictures of failed tests go.
std::filesystem::path GetFailedFolder() {
    return std::filesystem::path(TEST_BIN_DIR).parent_path() / "failed_pictures";
}

class PicturesTest : public testing::TestWithParam<CScene> {};

TEST_P(PicturesTest, LooksAsStored) {
    const CScene& rScene = GetParam();
    const CBitmap Actual = RenderScene(rScene);
    if (std::getenv("ROTOR_TRIM_STORE_PICTURES") != nullptr) {
        ASSERT_TRUE(SavePicture(Actual, GetStoredFile(rScene)));
        GTEST_SKIP() << "stored";
    }
    CBitmap Stored;
    ASSERT_TRUE(Stored.LoadPng(GetStoredFile(rScene).string())) << GetStoredFile(rScene);
    const CPictureDifference Difference(Actual, Stored);
    if (!Difference.IsAlike()) {
        std::filesystem::create_directories(GetFailedFolder());
        const std::string Base = (GetFailedFolder() / rScene.m_Name).string();
        Actual.SavePng(Base + ".png");
        Difference.m_Picture.SavePng(Base + ".difference.png");
        FAIL() << rScene.m_Caption << ": " << Difference.ToText() << "; see " << Base << ".png and " << Base
               << ".difference.png";
    }
}

INSTANTIATE_TEST_SUITE_P(Page, PicturesTest, testing::ValuesIn(GetScenes()),
                         [](const testing::TestParamInfo<CScene>& rInfo) {
                             std::string Name = rInfo.param.m_Name;
                             std::erase(Name, '-');
                             return Name;
                         });

TEST(StoredPicturesTest, EachHasAScene) {
    std::set<std::string> Names;
    for (const CScene& rScene : GetScenes()) {
        EXPECT_TRUE(Names.insert(rScene.m_Name + ".png").second) << rScene.m_Name << " twice";
    }
    for (const auto& rEntry : std::filesystem::directory_iterator(GetStoredFolder())) {
        EXPECT_THAT(Names, testing::Contains(rEntry.path().filename().string()));
    }
}

}  // namespace
