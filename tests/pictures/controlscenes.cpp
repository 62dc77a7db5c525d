#include "tests/pictures/controlscenes.h"

#include "tests/pictures/screwpagescenes.h"
#include "tests/pictures/settingsscenes.h"
#include "tests/pictures/tablescenes.h"
#include "tests/pictures/treescenes.h"

namespace {

std::vector<CControlScene> MakeScenes() {
    std::vector<CControlScene> Scenes;
    for (const CTreeScene& rScene : GetTreeScenes()) {
        Scenes.push_back({"tree", rScene.m_Name, rScene.m_Caption,
                          [&rScene](double Scale) { return RenderTreeScene(rScene, Scale); }});
    }
    for (const CTableScene& rScene : GetTableScenes()) {
        Scenes.push_back({"table", rScene.m_Name, rScene.m_Caption,
                          [&rScene](double Scale) { return RenderTableScene(rScene, Scale); }});
    }
    for (const CSettingsScene& rScene : GetSettingsScenes()) {
        Scenes.push_back({"settings", rScene.m_Name, rScene.m_Caption,
                          [&rScene](double Scale) { return RenderSettingsScene(rScene, Scale); }});
    }
    for (const CScrewPageScene& rScene : GetScrewPageScenes()) {
        Scenes.push_back({"screwpage", rScene.m_Name, rScene.m_Caption,
                          [&rScene](double Scale) { return RenderScrewPageScene(rScene, Scale); }});
    }
    return Scenes;
}

}  // namespace

const std::vector<CControlScene>& GetControlScenes() {
    static const std::vector<CControlScene> s_Scenes = MakeScenes();
    return s_Scenes;
}
