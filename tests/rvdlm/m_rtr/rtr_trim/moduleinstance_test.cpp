#include "rvdlm/m_rtr/rtr_trim/moduleinstance.h"

#include <gmock/gmock.h>

#include "platform/system/virtualeventloop.h"
#include "platform/window/moduleframework.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancingmainwnd.h"
#include "tests/support/logcapture.h"
#include "tests/support/opcstate.h"
#include "tests/support/recordinghost.h"
#include "tests/support/testinstallation.h"

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// Remembers the steps; handles are missing as often as a test says.
class CFakeFramework : public IFModuleFramework {
public:
    bool InitExtensionModule() override { return Note("init") && !m_bRefuse; }
    void TermExtensionModule() override { Note("term"); }
    bool HasInstanceHandle() const override { return m_nMissing == 0; }
    void SetInstanceHandle() override {
        --m_nMissing;
        Note("handle");
    }
    void EnableControlContainer() override { Note("controls"); }
    bool InitializeComponents() override { return Note("components"); }

    bool m_bRefuse = false;
    int m_nMissing = 0;
    std::vector<std::string> m_Steps;

private:
    bool Note(const char* pStep) {
        m_Steps.emplace_back(pStep);
        return true;
    }
};

/// Notes which children of a host are left after each change.
class CChildrenRecord : public IFWindowPeer {
public:
    explicit CChildrenRecord(const CWnd& rHost) : m_rHost(rHost) {}
    void OnWindowChanged(CWnd&) override {
        std::vector<UINT> Ids;
        for (const CWnd* pChild : m_rHost.GetChildren()) {
            Ids.push_back(pChild->GetDlgCtrlID());
        }
        if (m_Left.empty() || m_Left.back() != Ids) {
            m_Left.push_back(Ids);
        }
    }
    std::vector<std::vector<UINT>> m_Left;

private:
    const CWnd& m_rHost;
};

class CModuleInstanceTest : public testing::Test {
protected:
    CTestInstallation m_Installation;
    CVirtualEventLoop m_Loop;
    CCleanOpcState m_Opc;
    CLogCapture m_Log{true};
    CFakeFramework m_Framework;
};

TEST_F(CModuleInstanceTest, LoadRegistersAndUnloadEndsIt) {
    {
        const CModuleInstance Instance(m_Framework);
        EXPECT_THAT(m_Framework.m_Steps, ElementsAre("init", "controls", "components"));
        EXPECT_THAT(m_Log.GetTexts("Warning"), IsEmpty());
    }
    EXPECT_EQ(m_Framework.m_Steps.back(), "term");
    EXPECT_THAT(m_Log.GetTexts("Information"), ElementsAre("rtr_Trim.DLL Terminating!"));
}

TEST_F(CModuleInstanceTest, ARefusedLoadEndsThereAndGivesNoWindows) {
    m_Framework.m_bRefuse = true;
    {
        CModuleInstance Instance(m_Framework);
        EXPECT_THAT(m_Log.GetTexts("Error"), ElementsAre("00 - AfxInitExtensionModule failed..."));
        EXPECT_EQ(Instance.GetWindow(), nullptr);
    }
    EXPECT_THAT(m_Framework.m_Steps, ElementsAre("init"));
}

TEST_F(CModuleInstanceTest, AMissingInstanceHandleIsSetWithAWarning) {
    m_Framework.m_nMissing = 1;
    const CModuleInstance Instance(m_Framework);
    EXPECT_THAT(m_Log.GetTexts("Warning"),
                ElementsAre("01 - Invalid afxCurrentInstanceHandle! Setting instance handle explicitly..."));
    EXPECT_THAT(m_Framework.m_Steps, ElementsAre("handle", "init", "controls", "components"));
}

TEST_F(CModuleInstanceTest, AHandleStillMissingAfterTheRegistrationIsSetAgain) {
    m_Framework.m_nMissing = 2;
    const CModuleInstance Instance(m_Framework);
    EXPECT_THAT(m_Log.GetTexts("Warning"),
                ElementsAre("01 - Invalid afxCurrentInstanceHandle! Setting instance handle explicitly...",
                            "02 - Invalid afxCurrentInstanceHandle! Setting instance handle explicitly..."));
}

TEST_F(CModuleInstanceTest, WindowsLiveSideBySide) {
    CModuleInstance Instance(m_Framework);
    CWnd* const pFirst = Instance.GetWindow();
    CWnd* const pSecond = Instance.GetWindow();
    ASSERT_NE(pFirst, nullptr);
    ASSERT_NE(pSecond, nullptr);
    EXPECT_NE(pFirst, pSecond);
    EXPECT_NE(dynamic_cast<CPreBalancingMainWnd*>(pFirst), nullptr);
    EXPECT_FALSE(pFirst->IsWindow());
    Instance.DeleteDllWindow(pFirst);
    EXPECT_EQ(Instance.GetWindowCount(), 1U);
    EXPECT_FALSE(pSecond->IsWindow());
    Instance.DeleteDllWindow(pSecond);
    EXPECT_EQ(Instance.GetWindowCount(), 0U);
}

TEST_F(CModuleInstanceTest, AForeignPointerIsIgnored) {
    CModuleInstance Instance(m_Framework);
    Instance.GetWindow();
    CWnd Other;
    Instance.DeleteDllWindow(&Other);
    Instance.DeleteDllWindow(nullptr);
    EXPECT_EQ(Instance.GetWindowCount(), 1U);
}

TEST_F(CModuleInstanceTest, UnloadDeletesWhatIsLeftInOrderOfCreation) {
    CRecordingHost Host;
    CChildrenRecord Record(Host);
    {
        CModuleInstance Instance(m_Framework);
        const std::vector<CWnd*> Windows = {Instance.GetWindow(), Instance.GetWindow(), Instance.GetWindow()};
        // Shown in another order than they were made.
        for (const std::size_t i : {2U, 0U, 1U}) {
            Windows[i]->Create(&Host, CRect(0, 0, 300, 200), static_cast<UINT>(i + 1));
        }
        Host.SetPeer(&Record);
    }
    EXPECT_THAT(Record.m_Left,
                ElementsAre(ElementsAre(3U, 1U, 2U), ElementsAre(3U, 2U), ElementsAre(3U), IsEmpty()));
    Host.SetPeer(nullptr);
}

}  // namespace
