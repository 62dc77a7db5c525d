#include "console/moduleanswers.h"

#include <algorithm>
#include <cstdio>

namespace {

constexpr std::uint8_t ACTIVE_SET = 0x10;
constexpr std::uint8_t MODULE_DATA = 0x11;

/// The frame's bytes in hexadecimal, cut where it gets long.
std::string Hex(std::span<const std::uint8_t> Frame) {
    constexpr std::size_t MOST = 16;
    std::string Text;
    for (const std::uint8_t Byte : Frame.first(std::min(Frame.size(), MOST))) {
        char Buffer[4];
        std::snprintf(Buffer, sizeof Buffer, "%02X", Byte);
        Text += (Text.empty() ? "" : " ") + std::string(Buffer);
    }
    return Text + (Frame.size() > MOST ? " ..." : "");
}

std::string DescribeAnswer(const char* pQuestion, std::span<const std::uint8_t> Answer) {
    return Answer.empty() ? std::string(pQuestion) + " wasn't answered"
                          : std::string(pQuestion) + " was answered by " + std::to_string(Answer.size()) +
                                " bytes (" + Hex(Answer) + ")";
}

}  // namespace

void CModuleAnswers::OnFrame(std::span<const std::uint8_t> Frame) {
    if (Frame.size() < 2) {
        return;
    }
    CModule& rModule = m_Modules[Frame[1]];
    if (Frame[0] == MODULE_DATA) {
        rModule.m_Identification.assign(Frame.begin(), Frame.end());
    } else if (Frame[0] == ACTIVE_SET) {
        rModule.m_Set.assign(Frame.begin(), Frame.end());
    } else {
        rModule.m_bOther = true;
    }
}

std::string CModuleAnswers::DescribeModule(std::uint8_t Address, const CModule& rModule) {
    std::string Text = "module " + std::to_string(Address) + ": ";
    if (rModule.m_Identification.empty() && rModule.m_Set.empty()) {
        return Text + (rModule.m_bOther ? "it reports, but doesn't answer the question who it is"
                                        : "nothing came back");
    }
    return Text + DescribeAnswer("the question who it is", rModule.m_Identification) + ", " +
           DescribeAnswer("that for its active set", rModule.m_Set);
}

std::string CModuleAnswers::Describe(std::uint64_t nDamaged, std::uint64_t nOthers) const {
    std::string Text;
    for (const std::uint8_t Address : m_Addresses) {
        const auto Found = m_Modules.find(Address);
        Text += (Text.empty() ? "" : "; ") +
                DescribeModule(Address, Found == m_Modules.end() ? CModule() : Found->second);
    }
    if (nDamaged > 0) {
        Text += "; damaged frames: " + std::to_string(nDamaged);
    }
    if (nOthers > 0) {
        Text += "; frames from other addresses: " + std::to_string(nOthers);
    }
    return Text;
}
