// Every scene of a flex table against its stored picture, on a display of the usual and of twice the
// resolution; stored anew as those of pictures_test.cpp.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "tests/pictures/tablescenes.h"
#include "tests/pictures/tests/storedpicture.h"

namespace {

std::string GetFileName(const CTableScene& rScene, int nScale) {
    return "table-" + rScene.m_Name + (nScale == 1 ? "" : "-2x") + ".png";
}

class FlexTablePicturesTest : public testing::TestWithParam<std::tuple<CTableScene, int>> {};

TEST_P(FlexTablePicturesTest, LooksAsStored) {
    const auto& [Scene, nScale] = GetParam();
    ExpectLooksAsStored(RenderTableScene(Scene, nScale),
                        GetStoredFolder("controls") / GetFileName(Scene, nScale), Scene.m_Caption);
}

INSTANTIATE_TEST_SUITE_P(Table, FlexTablePicturesTest,
                         testing::Combine(testing::ValuesIn(GetTableScenes()), testing::Values(1, 2)),
                         [](const testing::TestParamInfo<std::tuple<CTableScene, int>>& rInfo) {
                             std::string Name = std::get<0>(rInfo.param).m_Name;
                             std::erase(Name, '-');
                             return Name + (std::get<1>(rInfo.param) == 1 ? "" : "Twice");
                         });

TEST(StoredTablePicturesTest, EachHasAScene) {
    std::set<std::string> Names;
    for (const CTableScene& rScene : GetTableScenes()) {
        for (const int nScale : {1, 2}) {
            EXPECT_TRUE(Names.insert(GetFileName(rScene, nScale)).second) << rScene.m_Name << " twice";
        }
    }
    for (const auto& rEntry : std::filesystem::directory_iterator(GetStoredFolder("controls"))) {
        EXPECT_THAT(Names, testing::Contains(rEntry.path().filename().string()));
    }
}

}  // namespace
