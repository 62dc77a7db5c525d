// The answer to the question for the set fails, is short or gets lost after a good identification: the
// console asks from the beginning, until the machine is found or given up with a word of what came back.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/rvcom/linediscipline.h"
#include "tests/support/frames.h"
#include "tests/system/wholerun.h"

namespace {

using testing::HasSubstr;

/// A link whose first answers to the question for the set are others.
class CSetAnswerLink : public IFByteLink {
public:
    CSetAnswerLink(std::unique_ptr<IFByteLink> pLink, std::string Answer, int nAnswers)
        : m_pLink(std::move(pLink)), m_Answer(std::move(Answer)), m_nAnswers(nAnswers) {
        m_pLink->OnBytes = [this](std::span<const std::uint8_t> Received) { m_Decoder.Put(Received); };
        m_pLink->OnOpened = [this] { OnOpened ? OnOpened() : void(); };
        m_pLink->OnClosed = [this](const std::string& rWhy) { OnClosed ? OnClosed(rWhy) : void(); };
    }
    void Open() override { m_pLink->Open(); }
    void Close() override { m_pLink->Close(); }
    bool IsOpen() const override { return m_pLink->IsOpen(); }
    bool Write(std::span<const std::uint8_t> Sent) override { return m_pLink->Write(Sent); }
    std::string GetName() const override { return m_pLink->GetName(); }

private:
    void PassOn(std::span<const std::uint8_t> Frame) {
        std::vector<std::uint8_t> Passed(Frame.begin(), Frame.end());
        if (Frame[0] == 0x10 && m_nAnswers > 0) {
            --m_nAnswers;
            Passed = Bytes(m_Answer);
        }
        if (!Passed.empty()) {
            OnBytes(LineDiscipline::Encode(Passed));
        }
    }
    std::unique_ptr<IFByteLink> m_pLink;
    std::string m_Answer;
    int m_nAnswers;
    LineDiscipline::CDecoder m_Decoder{[this](std::span<const std::uint8_t> Frame) { PassOn(Frame); }};
};

struct CAnswerCase {
    const char* m_pName;
    const char* m_pAnswer;  ///< empty: lost
    int m_nAnswers;         ///< a lost one is asked for four times
    const char* m_pTold;
};

class SetAnswer : public testing::TestWithParam<CAnswerCase> {
protected:
    bool Initialise(int nAnswers) {
        m_Run.m_Options.m_WrapLink = [nAnswers](std::unique_ptr<IFByteLink> pLink) {
            return std::make_unique<CSetAnswerLink>(std::move(pLink), GetParam().m_pAnswer, nAnswers);
        };
        m_pSession = std::make_unique<CConsoleSession>(m_Run.m_Options, &m_Run.m_Rotor,
                                                       m_Run.m_Installation.GetDatabaseFile().string());
        return m_pSession->Initialise();
    }
    CVirtualEventLoop m_Loop;
    CWholeRun m_Run{CRotorFile::GetBuiltIn()};
    std::unique_ptr<CConsoleSession> m_pSession;
};

}  // namespace

TEST_P(SetAnswer, IsAskedForFromTheBeginning) {
    EXPECT_TRUE(Initialise(GetParam().m_nAnswers));
    EXPECT_NE(m_pSession->GetMachineName(), "");
    EXPECT_FALSE(m_pSession->Look().m_bRunning);
}

TEST_P(SetAnswer, IsToldOfAsItCame) {
    EXPECT_FALSE(Initialise(1000));
    EXPECT_THAT(m_pSession->DescribeAnswers(), HasSubstr("who it is was answered by 49 bytes (11 05 01 08"));
    EXPECT_THAT(m_pSession->DescribeAnswers(), HasSubstr(GetParam().m_pTold));
}

INSTANTIATE_TEST_SUITE_P(WholeRun, SetAnswer,
                         testing::Values(CAnswerCase{"Failed", "10 05 01 07", 1,
                                                     "active set was answered by 4 bytes (10 05 01 07)"},
                                         CAnswerCase{
                                             "Short", "10 05 01 00 02 01", 1,
                                             "active set was answered by 6 bytes (10 05 01 00 02 01)"},
                                         CAnswerCase{"Lost", "", 4, "active set wasn't answered"}),
                         [](const auto& rInfo) { return rInfo.param.m_pName; });
