// Every scene of a control against its stored picture, on a display of the usual and of twice the resolution;
// stored anew as those of pictures_test.cpp.
#include <gtest/gtest.h>

#include "tests/pictures/controlscenes.h"
#include "tests/pictures/tests/storedpicture.h"

namespace {

std::string GetFileName(const CControlScene& rScene, int nScale) {
    return rScene.m_Name + (nScale == 1 ? "" : "-2x") + ".png";
}

class ControlPicturesTest : public testing::TestWithParam<std::tuple<CControlScene, int>> {};

TEST_P(ControlPicturesTest, LooksAsStored) {
    const auto& [Scene, nScale] = GetParam();
    ExpectLooksAsStored(Scene.m_Render(nScale), GetStoredFolder(Scene.m_Control) / GetFileName(Scene, nScale),
                        Scene.m_Caption);
}

std::string NameTest(const testing::TestParamInfo<ControlPicturesTest::ParamType>& rInfo) {
    const auto& [Scene, nScale] = rInfo.param;
    std::string Name = Scene.m_Control + Scene.m_Name + (nScale == 1 ? "" : "twice");
    std::erase(Name, '-');
    return Name;
}

INSTANTIATE_TEST_SUITE_P(Controls, ControlPicturesTest,
                         testing::Combine(testing::ValuesIn(GetControlScenes()), testing::Values(1, 2)),
                         NameTest);

TEST(StoredControlPicturesTest, EachHasAScene) {
    for (const char* pControl : {"tree", "table", "settings", "screwpage"}) {
        std::vector<std::string> Names;
        for (const CControlScene& rScene : GetControlScenes()) {
            if (rScene.m_Control == pControl) {
                Names.push_back(GetFileName(rScene, 1));
                Names.push_back(GetFileName(rScene, 2));
            }
        }
        ExpectEachHasAScene(GetStoredFolder(pControl), Names);
    }
}

}  // namespace
