// Writes pictures of the module's page, and of the controls that configurations are edited with.
//   gallery --docs DIRECTORY    the gallery: DIRECTORY/gallery.md and DIRECTORY/gallery/NAME.png; of the
//   controls
//                               DIRECTORY/toolkit.md and DIRECTORY/gallery/toolkit/NAME.png
//   gallery --all DIRECTORY     every scene of the page, as DIRECTORY/NAME.png
//   gallery --frames DIRECTORY  a demonstration, a picture a second, for tools/moving_picture.sh
//   gallery --windows DIRECTORY the whole window in each of its states, as
//                               DIRECTORY/STATE-WIDTHxHEIGHT-LANGUAGE.png
#include <QApplication>
#include <QPixmap>
#include <QStyleFactory>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "console/machineview.h"
#include "tests/pictures/controlscenes.h"
#include "tests/pictures/picturefile.h"
#include "tests/pictures/scenepage.h"
#include "tests/windows/windowstates.h"

namespace {

bool Save(const CBitmap& rPicture, const std::string& rName, const std::filesystem::path& rFolder) {
    const std::filesystem::path File = rFolder / (rName + ".png");
    std::filesystem::create_directories(rFolder);
    if (SavePicture(rPicture, File)) {
        return true;
    }
    std::fprintf(stderr, "can't write %s\n", File.c_str());
    return false;
}

bool WriteWindows(const std::filesystem::path& rFolder) {
    std::filesystem::create_directories(rFolder);
    bool bResult = true;
    VisitWindowStates({}, [&](const std::string& rState, CWindowStage& rStage) {
        for (const char* const pLanguage : CWindowStage::LANGUAGES) {
            for (const QSize& rSize : CWindowStage::SIZES) {
                rStage.ShowIn(rSize, pLanguage);
                const QString Name = QString("%1-%2x%3-%4.png")
                                         .arg(rState.c_str())
                                         .arg(rSize.width())
                                         .arg(rSize.height())
                                         .arg(pLanguage);
                const std::filesystem::path File = rFolder / Name.toStdString();
                if (!rStage.GetWindow().grab().save(QString::fromStdString(File.string()))) {
                    std::fprintf(stderr, "can't write %s\n", File.c_str());
                    bResult = false;
                }
            }
        }
    });
    return bResult;
}

bool WriteFrames(const std::filesystem::path& rFolder) {
    std::filesystem::create_directories(rFolder);
    COptions Options;
    Options.m_bDemo = true;
    Options.m_bProcedureGiven = true;
    CWindowStage Stage(Options, CRotorFile::GetBuiltIn());
    Stage.Unfold(&Stage.Find<CMachineView>());
    constexpr int LONGEST = 300;
    constexpr int BEHIND = 4;  // pictures of the result
    bool bRan = false;
    int nLeft = BEHIND;
    for (int i = 0; i < LONGEST && nLeft > 0; ++i) {
        Stage.ShowIn(QSize(800, 480), "en");
        const std::filesystem::path File =
            rFolder / QString("frame-%1.png").arg(i, 3, 10, QChar('0')).toStdString();
        if (!Stage.GetWindow().grab().save(QString::fromStdString(File.string()))) {
            std::fprintf(stderr, "can't write %s\n", File.c_str());
            return false;
        }
        Stage.Wait(900);
        const bool bRuns = Stage.GetSession().Look().m_bRunning;
        bRan = bRan || bRuns;
        nLeft -= bRan && !bRuns ? 1 : 0;
    }
    return true;
}

bool WriteAll(const std::filesystem::path& rFolder) {
    bool bResult = true;
    for (const CScene& rScene : GetScenes()) {
        bResult = Save(RenderScene(rScene), rScene.m_Name, rFolder) && bResult;
    }
    return bResult;
}

/// A page of captions with their pictures, which lie in a folder beside it.
class CGalleryPage {
public:
    CGalleryPage(const std::filesystem::path& rFile, std::string Pictures, const std::string& rIntroduction)
        : m_Folder(rFile.parent_path()), m_Pictures(std::move(Pictures)), m_Page(rFile) {
        m_Page << rIntroduction;
    }

    void AddHeading(const std::string& rText) { m_Page << "\n## " << rText << "\n"; }
    void Add(const char* pLevel, const std::string& rCaption, const std::string& rName,
             const CBitmap& rPicture) {
        m_bSaved = Save(rPicture, rName, m_Folder / m_Pictures) && m_bSaved;
        m_Page << "\n"
               << pLevel << " " << rCaption << "\n\n![" << rCaption << "](" << m_Pictures << "/" << rName
               << ".png)\n";
    }
    bool Close() {
        m_Page.close();
        return m_bSaved && m_Page.good();
    }

private:
    std::filesystem::path m_Folder;
    std::string m_Pictures;
    std::ofstream m_Page;
    bool m_bSaved = true;
};

void AddControls(CGalleryPage& rPage, const char* pLevel, const std::string& rControl) {
    for (const CControlScene& rScene : GetControlScenes()) {
        if (rScene.m_Control == rControl) {
            rPage.Add(pLevel, rScene.m_Caption, rControl + "-" + rScene.m_Name, rScene.m_Render(1.0));
        }
    }
}

bool WriteGallery(const std::filesystem::path& rFolder) {
    CGalleryPage Page(
        rFolder / "gallery.md", "gallery",
        "# Gallery\n\n"
        "What the operator sees. Written by `build/release/bin/gallery --docs docs`, from the "
        "scenes that the\n"
        "picture tests compare (`tests/pictures/scenes.cpp`, "
        "`tests/pictures/settingsscenes.cpp`,\n"
        "`tests/pictures/screwpagescenes.cpp`). What a configuration is edited with is shown "
        "[here](toolkit.md).\n\n"
        "`build/release/bin/gallery --windows DIRECTORY` writes the whole window in each of its "
        "states, in three\n"
        "sizes and each language.\n");
    for (const CScene& rScene : GetScenes()) {
        if (rScene.m_bGallery) {
            Page.Add("##", rScene.m_Caption, rScene.m_Name, RenderScene(rScene));
        }
    }
    AddControls(Page, "##", "settings");
    AddControls(Page, "##", "screwpage");
    return Page.Close();
}

bool WriteToolkit(const std::filesystem::path& rFolder) {
    CGalleryPage Page(rFolder / "toolkit.md", "gallery/toolkit",
                      "# The toolkit\n\n"
                      "The controls that configurations are edited with, in their states. Written by\n"
                      "`build/release/bin/gallery --docs docs`, from the scenes that the picture tests "
                      "compare\n"
                      "(`tests/pictures/treescenes.cpp`, `tests/pictures/tablescenes.cpp`).\n");
    for (const auto& [Control, Heading] :
         {std::pair("tree", "Property tree"), std::pair("table", "Flex table")}) {
        Page.AddHeading(Heading);
        AddControls(Page, "###", Control);
    }
    return Page.Close();
}

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication App(argc, argv);
    QApplication::setStyle(QStyleFactory::create("fusion"));
    const std::string Option = argc == 3 ? argv[1] : "";
    if (Option == "--docs") {
        std::filesystem::create_directories(argv[2]);
        const bool bGallery = WriteGallery(argv[2]);
        return WriteToolkit(argv[2]) && bGallery ? 0 : 1;
    }
    if (Option == "--all") {
        return WriteAll(argv[2]) ? 0 : 1;
    }
    if (Option == "--frames") {
        return WriteFrames(argv[2]) ? 0 : 1;
    }
    if (Option == "--windows") {
        return WriteWindows(argv[2]) ? 0 : 1;
    }
    std::fprintf(
        stderr,
        "usage: gallery --docs DIRECTORY | --all DIRECTORY | --windows DIRECTORY | --frames DIRECTORY\n");
    return 2;
}
