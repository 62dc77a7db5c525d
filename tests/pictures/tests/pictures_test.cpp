// Every scene against its stored picture. After a change that is meant, look at the pictures and store them
// anew:
//   ROTOR_TRIM_STORE_PICTURES=1 build/debug/tests/picture_tests --gtest_filter='*LooksAsStored*'
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/pictures/scenepage.h"
#include "tests/pictures/tests/storedpicture.h"

namespace {

std::filesystem::path GetStoredFile(const CScene& rScene) {
    return GetStoredFolder() / (rScene.m_Name + ".png");
}

class PicturesTest : public testing::TestWithParam<CScene> {};

TEST_P(PicturesTest, LooksAsStored) {
    const CScene& rScene = GetParam();
    ExpectLooksAsStored(RenderScene(rScene), GetStoredFile(rScene), rScene.m_Caption);
}

INSTANTIATE_TEST_SUITE_P(Page, PicturesTest, testing::ValuesIn(GetScenes()),
                         [](const testing::TestParamInfo<CScene>& rInfo) {
                             std::string Name = rInfo.param.m_Name;
                             std::erase(Name, '-');
                             return Name;
                         });

TEST(StoredPicturesTest, EachHasAScene) {
    std::vector<std::string> Names;
    for (const CScene& rScene : GetScenes()) {
        Names.push_back(GetStoredFile(rScene).filename().string());
    }
    ExpectEachHasAScene(GetStoredFolder(), Names);
}

}  // namespace
