// The NC says whose run it is: over a real OPC UA connection, in real time.
#include <gmock/gmock.h>

#include "console/installation.h"
#include "console/session.h"
#include "platform/qt/qteventloop.h"
#include "simulator/simulator.h"
#include "tests/opcua/ncserver.h"
#include "tests/support/testpaths.h"

namespace {

class CNcRotorNameTest : public testing::Test {
protected:
    CNcRotorNameTest() {
        m_Nc.Start();
        m_Options.m_bHeadless = true;
        m_Options.m_ModuleLibrary = TestProgram("librtr_trim.so");
        m_Options.m_RotorName = "given here";
        m_Options.m_Opc = m_Nc.GetSetup();
        m_Options.m_Opc->m_Configuration.m_LinkItems[NcItems::ROTOR_NAME] = m_Nc.GetItem("RotorName");
    }
    void Open() {
        m_pSession =
            std::make_unique<CConsoleSession>(m_Options, &m_Rotor, m_Installation.GetDatabaseFile().string());
        ASSERT_TRUE(m_pSession->Initialise());
        // Its answer to the request that stood says that the items are told.
        ASSERT_TRUE(m_Nc.NextValue("Request"));
    }
    const std::string& GetName() const { return m_pSession->GetOptions().m_RotorName; }
    bool Becomes(const std::string& rName) {
        return CNcServer::RunUntil([&] { return GetName() == rName; }, CNcServer::PATIENCE);
    }
    /// Runs the loop until what was written before must have come.
    void Settle() { EXPECT_EQ(m_Nc.Ask(5), -1); }

    CQtEventLoop m_Loop;
    CNcServer m_Nc;
    CConsoleInstallation m_Installation{"", true};
    COptions m_Options;
    CRotorFile m_Rotor = CRotorFile::GetBuiltIn(CRotorFile::eKestrel);
    std::unique_ptr<CConsoleSession> m_pSession;
};

TEST_F(CNcRotorNameTest, TheNameOfTheNcTakesThePlaceOfTheOneGivenHereUntilItTakesItBack) {
    Open();
    EXPECT_EQ(GetName(), "given here") << "nothing has been written yet";
    m_Nc.Write("RotorName", "");
    Settle();
    EXPECT_EQ(GetName(), "given here") << "an empty text says nothing";
    m_Nc.Write("RotorName", "Spindel \"Ä 7\"");
    EXPECT_TRUE(Becomes("Spindel \"Ä 7\"")) << GetName();
    m_Nc.Write("RotorName", "");
    EXPECT_TRUE(Becomes("")) << GetName();
}

TEST_F(CNcRotorNameTest, ANameThatStandsWhenTheConnectionIsMadeCounts) {
    m_Nc.Write("RotorName", "S 1");
    Open();
    EXPECT_TRUE(Becomes("S 1")) << GetName();
}

/// As in the field of the panel.
TEST_F(CNcRotorNameTest, ControlCharactersAndNeedlessBlanksGo) {
    Open();
    m_Nc.Write("RotorName", " \t S\r\n 7\u0001 ");
    EXPECT_TRUE(Becomes("S 7")) << GetName();
}

TEST_F(CNcRotorNameTest, AnOverlongNameIsLeftOutAndTheConnectionStays) {
    Open();
    m_Nc.Write("RotorName", std::string(10000, 'x'));
    EXPECT_TRUE(Becomes(std::string(10000, 'x')));
    m_Nc.Write("RotorName", std::string(40000, 'y'));
    Settle();
    EXPECT_EQ(GetName(), std::string(10000, 'x'));
}

TEST_F(CNcRotorNameTest, ANumberIsANameToo) {
    // A number of the rotor, in an NC that has no texts to give.
    m_Options.m_Opc->m_Configuration.m_LinkItems[NcItems::ROTOR_NAME] = m_Nc.GetItem("RotationDirection");
    Open();
    m_Nc.Write("RotationDirection", 1207);
    EXPECT_TRUE(Becomes("1207")) << GetName();
}

}  // namespace
