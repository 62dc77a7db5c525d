// The library as a host loads it: at run time, by its five exports, with window messages for all else.
#include <dlfcn.h>
#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <vector>

#include "contract/hostmessages.h"
#include "platform/rvcom/bytelink.h"
#include "platform/rvcom/linediscipline.h"
#include "platform/rvcom/rvcom.h"
#include "platform/system/virtualeventloop.h"
#include "platform/window/bitmap.h"
#include "tests/support/logcapture.h"
#include "tests/support/opcstate.h"
#include "tests/support/recordinghost.h"
#include "tests/support/testinstallation.h"
#include "tests/support/testpaths.h"

using testing::Contains;
using testing::ElementsAre;

namespace {

const std::string libraryPath = TestProgram("librtr_trim.so");

class CLibrary {
public:
    CLibrary() : m_pHandle(dlopen(libraryPath.c_str(), RTLD_NOW | RTLD_LOCAL)) {
        EXPECT_NE(m_pHandle, nullptr) << dlerror();
        Find(m_pGetWindow, "GetWindow");
        Find(m_pDeleteDllWindow, "DeleteDllWindow");
        Find(m_pGetPreferredSize, "GetPreferredSize");
        Find(m_pGetPreviewBitmap, "GetPreviewBitmap");
        Find(m_pScalingAllowed, "ScalingAllowed");
    }
    ~CLibrary() { dlclose(m_pHandle); }
    CLibrary(const CLibrary&) = delete;
    CLibrary& operator=(const CLibrary&) = delete;

    static bool IsLoaded() {
        void* const pHandle = dlopen(libraryPath.c_str(), RTLD_NOW | RTLD_NOLOAD);
        if (pHandle != nullptr) {
            dlclose(pHandle);
        }
        return pHandle != nullptr;
    }

    CWnd* (*m_pGetWindow)() = nullptr;
    void (*m_pDeleteDllWindow)(CWnd*) = nullptr;
    CRect* (*m_pGetPreferredSize)() = nullptr;
    CBitmap* (*m_pGetPreviewBitmap)() = nullptr;
    int (*m_pScalingAllowed)() = nullptr;

private:
    template <typename T>
    void Find(T& rpFunction, const char* pName) {
        rpFunction = reinterpret_cast<T>(dlsym(m_pHandle, pName));
        EXPECT_NE(rpFunction, nullptr) << pName;
    }

    void* m_pHandle;
};

class CExportsTest : public testing::Test {
protected:
    CTestInstallation m_Installation;
    CVirtualEventLoop m_Loop;
    CCleanOpcState m_Opc;
    CRecordingHost m_Host;
};

TEST_F(CExportsTest, SizePreviewAndScalingAreAsPromised) {
    const CLibrary Library;
    EXPECT_EQ(*Library.m_pGetPreferredSize(), CRect(0, 0, 600, 440));
    EXPECT_EQ(Library.m_pGetPreferredSize(), Library.m_pGetPreferredSize());
    EXPECT_EQ(Library.m_pGetPreviewBitmap()->GetSize(), CSize(0, 0));
    EXPECT_EQ(Library.m_pScalingAllowed(), 1);
}

TEST_F(CExportsTest, WindowsComeAndGo) {
    const CLibrary Library;
    CWnd* const pFirst = Library.m_pGetWindow();
    CWnd* const pSecond = Library.m_pGetWindow();
    ASSERT_NE(pFirst, nullptr);
    ASSERT_NE(pSecond, nullptr);
    EXPECT_NE(pFirst, pSecond);
    ASSERT_TRUE(pFirst->Create(&m_Host, CRect(0, 0, 600, 440), 1));
    ASSERT_TRUE(pSecond->Create(&m_Host, CRect(0, 0, 600, 440), 2));
    CWnd Other;
    Library.m_pDeleteDllWindow(&Other);
    EXPECT_EQ(m_Host.GetChildren().size(), 2U);
    Library.m_pDeleteDllWindow(pFirst);
    EXPECT_THAT(m_Host.GetChildren(), ElementsAre(pSecond));
    Library.m_pDeleteDllWindow(pSecond);
    EXPECT_TRUE(m_Host.GetChildren().empty());
}

// Also that nothing in the library keeps it from being unloaded, and that what it left queued is dropped.
TEST_F(CExportsTest, UnloadDeletesTheWindowsLeft) {
    auto pLibrary = std::make_unique<CLibrary>();
    // The library's publisher comes with it and outlives it: with the topics that it has, or tests behind
    // this one would log what is asserted in doing so.
    const CLogCapture Log(true);
    ASSERT_TRUE(pLibrary->m_pGetWindow()->Create(&m_Host, CRect(0, 0, 600, 440), 1));
    m_Host.GetChildren().front()->PostMessage(WM_RV_MODULEACTION, 102);
    pLibrary.reset();
    EXPECT_TRUE(m_Host.GetChildren().empty());
    EXPECT_THAT(Log.GetTexts("Information"), Contains("rtr_Trim.DLL Terminating!"));
    EXPECT_FALSE(CLibrary::IsLoaded());
    m_Loop.RunPosted();
}

// Address 5, one Kestrel module on plane 1: the first question goes out over the line to that module.
TEST_F(CExportsTest, AnInitialisedWindowAsksItsModuleWhoItIs) {
    CLinkPair Pair = MakeLinkPair();
    rvCOM::SetLink(std::move(Pair.m_pFirst));
    std::vector<std::vector<std::uint8_t>> Frames;
    LineDiscipline::CDecoder Decoder(
        [&](std::span<const std::uint8_t> Frame) { Frames.emplace_back(Frame.begin(), Frame.end()); });
    Pair.m_pSecond->OnBytes = [&](std::span<const std::uint8_t> Bytes) { Decoder.Put(Bytes); };
    Pair.m_pSecond->Open();
    m_Loop.RunPosted();
    {
        const CLibrary Library;
        CWnd* const pWindow = Library.m_pGetWindow();
        ASSERT_TRUE(pWindow->Create(&m_Host, CRect(0, 0, 600, 440), 1));
        EXPECT_EQ(pWindow->SendMessage(WM_RV_INITWINDOW, 5, 0x010000), 1);
        m_Loop.RunPosted();
        ASSERT_EQ(Frames.size(), 1U);
        ASSERT_GE(Frames[0].size(), 3U);
        EXPECT_EQ(Frames[0][1], rvCOM::GetTransmitAddress());
        EXPECT_EQ(Frames[0][2], 5);
        EXPECT_EQ(pWindow->SendMessage(WM_RV_DESTROYPENDING), 1);
        Library.m_pDeleteDllWindow(pWindow);
    }
    rvCOM::SetLink(nullptr);
}

}  // namespace
