// Writes pictures of the module's page.
//   gallery --docs DIRECTORY    the gallery: DIRECTORY/gallery.md and DIRECTORY/gallery/NAME.png
//   gallery --all DIRECTORY     every scene, as DIRECTORY/NAME.png
#include <QApplication>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "tests/pictures/picturefile.h"
#include "tests/pictures/scenepage.h"

namespace {

bool Save(const CScene& rScene, const std::filesystem::path& rFolder) {
    const std::filesystem::path File = rFolder / (rScene.m_Name + ".png");
    if (SavePicture(RenderScene(rScene), File)) {
        return true;
    }
    std::fprintf(stderr, "can't write %s\n", File.c_str());
    return false;
}

bool WriteAll(const std::filesystem::path& rFolder) {
    std::filesystem::create_directories(rFolder);
    bool bResult = true;
    for (const CScene& rScene : GetScenes()) {
        bResult = Save(rScene, rFolder) && bResult;
    }
    return bResult;
}

bool WriteGallery(const std::filesystem::path& rFolder) {
    const std::filesystem::path Pictures = rFolder / "gallery";
    std::filesystem::create_directories(Pictures);
    std::ofstream Page(rFolder / "gallery.md");
    Page << "# Gallery\n\n"
            "What the operator sees. Written by `build/debug/bin/gallery --docs docs`, from the scenes that "
            "the\n"
            "picture tests compare (`tests/pictures/scenes.cpp`).\n";
    bool bResult = true;
    for (const CScene& rScene : GetScenes()) {
        if (rScene.m_bGallery) {
            bResult = Save(rScene, Pictures) && bResult;
            Page << "\n## " << rScene.m_Caption << "\n\n![" << rScene.m_Caption << "](gallery/"
                 << rScene.m_Name << ".png)\n";
        }
    }
    Page.close();
    return bResult && Page.good();
}

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication App(argc, argv);
    const std::string Option = argc == 3 ? argv[1] : "";
    if (Option == "--docs") {
        return WriteGallery(argv[2]) ? 0 : 1;
    }
    if (Option == "--all") {
        return WriteAll(argv[2]) ? 0 : 1;
    }
    std::fprintf(stderr, "usage: gallery --docs DIRECTORY | --all DIRECTORY\n");
    return 2;
}
