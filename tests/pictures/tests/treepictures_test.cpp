// Every scene of a property tree against its stored picture; stored anew as those of pictures_test.cpp.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "tests/pictures/tests/storedpicture.h"
#include "tests/pictures/treescenes.h"

namespace {

class TreePicturesTest : public testing::TestWithParam<CTreeScene> {};

TEST_P(TreePicturesTest, LooksAsStored) {
    ExpectLooksAsStored(RenderTreeScene(GetParam()), GetStoredFolder("tree") / (GetParam().m_Name + ".png"),
                        GetParam().m_Caption);
}

INSTANTIATE_TEST_SUITE_P(Tree, TreePicturesTest, testing::ValuesIn(GetTreeScenes()),
                         [](const testing::TestParamInfo<CTreeScene>& rInfo) {
                             std::string Name = rInfo.param.m_Name;
                             std::erase(Name, '-');
                             return Name;
                         });

TEST(StoredTreePicturesTest, EachHasAScene) {
    std::set<std::string> Names;
    for (const CTreeScene& rScene : GetTreeScenes()) {
        EXPECT_TRUE(Names.insert(rScene.m_Name + ".png").second) << rScene.m_Name << " twice";
    }
    for (const auto& rEntry : std::filesystem::directory_iterator(GetStoredFolder("tree"))) {
        EXPECT_THAT(Names, testing::Contains(rEntry.path().filename().string()));
    }
}

}  // namespace
