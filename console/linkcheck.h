#pragma once
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "console/linkfacts.h"
#include "console/modulelistener.h"
#include "platform/rvcom/bytelink.h"
#include "platform/rvcom/linediscipline.h"

/// Looks at a line with balancing modules: opens it, listens, asks who is there, and watches what they
/// report. It asks what the module's page asks at its start, and nothing that changes anything. Where nothing
/// can be understood it tries the other usual baud rates, and then all addresses.
class CLinkCheck {
public:
    /// A link to the line, not yet opened; Baud is 0 where lines have none.
    using LinkMaker = std::function<std::unique_ptr<IFByteLink>(std::uint32_t Baud)>;

    struct CPlan {
        /// Addresses that modules should have; none for the usual ones.
        std::vector<std::uint8_t> m_Addresses;
        std::uint32_t m_Baud = 0;              ///< 0 for a line that has none
        std::uint32_t m_Milliseconds = 10000;  ///< to look at a line that is well
    };
    /// The longest that it takes more, for baud rates and addresses.
    static constexpr std::uint32_t LONGEST_SEARCH = 15000;

    CLinkCheck(CPlan Plan, LinkMaker Maker);
    ~CLinkCheck();
    CLinkCheck(const CLinkCheck&) = delete;
    CLinkCheck& operator=(const CLinkCheck&) = delete;

    /// Runs the event loop until all is seen. rFacts: what is known of the link; the rest is filled in.
    void Run(CLinkFacts& rFacts);

private:
    struct CModule {
        std::unique_ptr<IFModuleListener> m_pListener;  ///< null while its family isn't known
        bool m_bAsked = false;                          ///< all that the page asks
    };

    bool Open(std::uint32_t Baud);
    void Close();
    /// Runs the event loop so long, or until bDone; false if the line was lost meanwhile.
    bool Wait(std::uint32_t Milliseconds, const std::function<bool()>& rDone = {});
    void OnBytes(std::span<const std::uint8_t> Received);
    void OnFrame(std::span<const std::uint8_t> Frame);
    void OnModuleFrame(std::span<const std::uint8_t> Frame);
    bool IsEcho(std::span<const std::uint8_t> Frame) const;
    /// Whether somebody else on the line asks, or is answered.
    bool IsOfOther(std::span<const std::uint8_t> Frame) const;
    void Send(std::span<const std::uint8_t> Frame);
    std::vector<std::uint8_t> GetKnownAddresses() const;
    /// Who is there, with the sub-code of either family in turn.
    void AskFirst(std::uint8_t Address, bool bLanner);
    void AskKnownAddresses();
    bool IsAllAnswered() const;
    void SearchBaud();
    void SearchAddresses();
    void Watch(std::uint64_t Until);

    CPlan m_Plan;
    LinkMaker m_Maker;
    CLinkFacts* m_pFacts = nullptr;
    std::unique_ptr<IFByteLink> m_pLink;
    LineDiscipline::CDecoder m_Decoder;
    std::map<std::uint8_t, CModule> m_Modules;
    std::map<std::string, std::uint64_t>
        m_Sent;  ///< when a frame was sent last, which may come back as an echo
    bool m_bOpened = false;
    bool m_bSettling = false;
    bool m_bAsked = false;
    bool m_bLost = false;
    std::uint64_t m_nBadBefore = 0;  ///< that the decoder counted at other rates
};
