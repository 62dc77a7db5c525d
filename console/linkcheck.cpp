#include "console/linkcheck.h"

#include <algorithm>
#include <array>
#include <utility>

#include "platform/rvcom/rvcom.h"
#include "platform/system/eventloop.h"

namespace {

using Family = CModuleFacts::Family;
using Trouble = CLinkFacts::Trouble;

constexpr std::uint32_t OPEN_LIMIT = 4000;
/// What waits in a driver since before, perhaps from another rate, counts for nothing.
constexpr std::uint32_t SETTLE = 100;
/// A module reports its speed once a second even while nothing turns.
constexpr std::uint32_t LISTEN = 1300;
/// For three questions, and the answer to the last.
constexpr std::uint32_t ASK = 1200;
constexpr std::uint32_t REPEAT = 400;
/// Five questions, one behind the other, each of which may take 2 s to be given up.
constexpr std::uint32_t ASK_ALL = 4000;
/// Of a module that is known: what it reports is to be seen for that long at least.
constexpr std::uint32_t SHORTEST_WATCH = 3000;
/// The state is asked for again, since modules report changes only, and one report may be lost.
constexpr std::uint32_t REFRESH = 2000;

/// What comes back later than this was sent by somebody else: a frame takes 17 ms at 4800 baud, and a device
/// server keeps it for a moment.
constexpr std::uint64_t ECHO_LIMIT = 150;

constexpr std::array<std::uint8_t, 3> USUAL_ADDRESSES = {5, 6, 9};
constexpr std::array<std::uint32_t, 8> USUAL_BAUDS = {115200, 57600,  38400,  19200,
                                                      9600,   230400, 460800, 4800};
constexpr std::uint8_t LAST_ADDRESS = 254;

constexpr std::size_t HEADER = 3;
constexpr std::size_t SOURCE = 1;
constexpr std::size_t DESTINATION = 2;
constexpr std::uint8_t ANY_ADDRESS = 0;
constexpr std::uint8_t RESERVED_COMMAND = 4;

Trouble ToTrouble(LinkTrouble What) {
    switch (What) {
        case LinkTrouble::eRefused:
            return Trouble::eRefused;
        case LinkTrouble::eNoSuchHost:
            return Trouble::eNoSuchHost;
        case LinkTrouble::eUnreachable:
            return Trouble::eUnreachable;
        case LinkTrouble::eNoAnswer:
            return Trouble::eNoAnswer;
        case LinkTrouble::eClosed:
            return Trouble::eClosed;
        case LinkTrouble::eOther:
            break;
    }
    return Trouble::eOther;
}

}  // namespace

CLinkCheck::CLinkCheck(CPlan Plan, LinkMaker Maker)
    : m_Plan(std::move(Plan)),
      m_Maker(std::move(Maker)),
      m_Decoder([this](std::span<const std::uint8_t> Frame) { OnFrame(Frame); }) {}

CLinkCheck::~CLinkCheck() {
    Close();
}

void CLinkCheck::Run(CLinkFacts& rFacts) {
    m_pFacts = &rFacts;
    rFacts.m_Baud = m_Plan.m_Baud;
    rFacts.m_Expected = m_Plan.m_Addresses;
    rFacts.m_OwnAddress = rvCOM::GetTransmitAddress();
    const std::uint64_t Begin = IFEventLoop::Current().Now();
    if (Open(m_Plan.m_Baud)) {
        Wait(LISTEN);
        AskKnownAddresses();
        if (rFacts.m_nGood == 0 && m_Plan.m_Baud != 0 && !m_bLost) {
            SearchBaud();
        }
        if (rFacts.m_Modules.empty() && (rFacts.m_nBytes == 0 || rFacts.m_nGood > 0) && !m_bLost) {
            SearchAddresses();
        }
        if (!rFacts.m_Modules.empty() && !m_bLost) {
            Watch(Begin + m_Plan.m_Milliseconds);
        }
    }
    Close();
    rFacts.m_Milliseconds = IFEventLoop::Current().Now() - Begin;
}

bool CLinkCheck::Open(std::uint32_t Baud) {
    Close();
    m_pLink = m_Maker(Baud);
    m_bLost = m_pLink == nullptr;
    if (m_bLost) {
        m_pFacts->m_Trouble = Trouble::eOther;
        return false;
    }
    m_bOpened = false;
    m_bSettling = true;
    m_pLink->OnBytes = [this](std::span<const std::uint8_t> Received) { OnBytes(Received); };
    m_pLink->OnOpened = [this] { m_bOpened = true; };
    m_pLink->OnClosed = [this](const std::string& rWhy) {
        m_bLost = true;
        const Trouble Why = ToTrouble(m_pLink->GetTrouble());
        m_pFacts->m_Trouble = Why == Trouble::eOther && m_bOpened ? Trouble::eLost : Why;
        m_pFacts->m_TroubleText = rWhy;
    };
    m_pLink->Open();
    Wait(OPEN_LIMIT, [this] { return m_bOpened; });
    if (!m_bLost && !m_bOpened) {
        m_bLost = true;
        m_pFacts->m_Trouble = Trouble::eNoAnswer;
    }
    if (!m_bLost) {
        Wait(SETTLE);
        m_bSettling = false;
    }
    return !m_bLost;
}

void CLinkCheck::Close() {
    if (m_pLink != nullptr) {
        m_pLink->OnBytes = nullptr;
        m_pLink->OnOpened = nullptr;
        m_pLink->OnClosed = nullptr;
        m_pLink->Close();
        m_pLink.reset();
    }
    m_Decoder.Reset();
}

bool CLinkCheck::Wait(std::uint32_t Milliseconds, const std::function<bool()>& rDone) {
    IFEventLoop::Current().RunUntil([&] { return m_bLost || (rDone && rDone()); }, Milliseconds);
    return !m_bLost;
}

void CLinkCheck::OnBytes(std::span<const std::uint8_t> Received) {
    if (m_bSettling) {
        return;
    }
    if (!m_pFacts->m_FittingBaud && m_pFacts->m_Tried.empty()) {
        m_pFacts->m_nBytes += Received.size();
        m_pFacts->m_nZeros += static_cast<std::uint64_t>(std::ranges::count(Received, std::uint8_t{0}));
    }
    m_Decoder.Put(Received);
    m_pFacts->m_nBad =
        m_Decoder.GetBadCrc() + m_Decoder.GetTooShort() + m_Decoder.GetTooLong() - m_nBadBefore;
}

void CLinkCheck::OnFrame(std::span<const std::uint8_t> Frame) {
    if (IsEcho(Frame)) {
        ++m_pFacts->m_nEchoes;
        return;
    }
    ++m_pFacts->m_nGood;
    if (IsOfOther(Frame)) {
        ++m_pFacts->m_nOther;
        // Who asks, or the one that is answered.
        const std::uint8_t Destination = Frame[DESTINATION];
        const bool bAnswer = m_pFacts->m_Modules.contains(Frame[SOURCE]);
        m_pFacts->m_OtherAddress = bAnswer ? Destination : Frame[SOURCE];
        if (!bAnswer) {
            return;
        }
    }
    if (Frame[0] != RESERVED_COMMAND) {
        OnModuleFrame(Frame);
    }
}

bool CLinkCheck::IsEcho(std::span<const std::uint8_t> Frame) const {
    const auto Sent = m_Sent.find(std::string(Frame.begin(), Frame.end()));
    return Sent != m_Sent.end() && IFEventLoop::Current().Now() - Sent->second <= ECHO_LIMIT;
}

bool CLinkCheck::IsOfOther(std::span<const std::uint8_t> Frame) const {
    const std::uint8_t Own = m_pFacts->m_OwnAddress;
    if (Frame[SOURCE] == Own) {
        return true;  // an echo would have been sent before
    }
    if (Frame[DESTINATION] == ANY_ADDRESS) {
        return false;
    }
    // Before anything was asked there is nothing to answer.
    return Frame[DESTINATION] != Own || !m_bAsked;
}

void CLinkCheck::OnModuleFrame(std::span<const std::uint8_t> Frame) {
    const std::uint8_t Address = Frame[SOURCE];
    CModuleFacts& rFacts = m_pFacts->m_Modules[Address];
    CModule& rModule = m_Modules[Address];
    rFacts.m_Address = Address;
    ++rFacts.m_nFrames;
    if (rModule.m_pListener == nullptr) {
        rFacts.m_Family = TellFamily(Frame);
        rModule.m_pListener =
            MakeModuleListener(rFacts, [this](std::span<const std::uint8_t> Question) { Send(Question); });
    }
    if (rModule.m_pListener != nullptr) {
        rModule.m_pListener->PutFrame(Frame);
    }
}

void CLinkCheck::Send(std::span<const std::uint8_t> Frame) {
    if (m_pLink != nullptr) {
        m_Sent[std::string(Frame.begin(), Frame.end())] = IFEventLoop::Current().Now();
        m_bAsked = true;
        m_pLink->Write(LineDiscipline::Encode(Frame));
    }
}

std::vector<std::uint8_t> CLinkCheck::GetKnownAddresses() const {
    std::vector<std::uint8_t> Addresses = m_Plan.m_Addresses;
    if (Addresses.empty()) {
        Addresses.assign(USUAL_ADDRESSES.begin(), USUAL_ADDRESSES.end());
    }
    for (const auto& [Address, rModule] : m_pFacts->m_Modules) {
        if (std::ranges::count(Addresses, Address) == 0) {
            Addresses.push_back(Address);
        }
    }
    return Addresses;
}

void CLinkCheck::AskFirst(std::uint8_t Address, bool bLanner) {
    const std::uint8_t Own = m_pFacts->m_OwnAddress;
    Send(FirstQuestion::MakeIdentification(Own, Address));
    Send(FirstQuestion::MakeSet(Own, Address, bLanner ? Family::eLanner : Family::eKestrel));
    if (std::ranges::count(m_pFacts->m_Asked, Address) == 0) {
        m_pFacts->m_Asked.push_back(Address);
    }
}

bool CLinkCheck::IsAllAnswered() const {
    return std::ranges::all_of(m_Modules, [](const auto& rEntry) {
        return rEntry.second.m_pListener == nullptr ||
               (rEntry.second.m_bAsked && !rEntry.second.m_pListener->IsAsking());
    });
}

void CLinkCheck::AskKnownAddresses() {
    for (std::uint32_t nTry = 0; nTry < ASK / REPEAT && !m_bLost; ++nTry) {
        for (const std::uint8_t Address : GetKnownAddresses()) {
            if (const auto Found = m_Modules.find(Address);
                Found == m_Modules.end() || Found->second.m_pListener == nullptr) {
                AskFirst(Address, nTry % 2 == 1);
            }
        }
        Wait(REPEAT);
    }
    for (auto& [Address, rModule] : m_Modules) {
        if (rModule.m_pListener != nullptr && !rModule.m_bAsked) {
            rModule.m_bAsked = true;
            rModule.m_pListener->AskAll();
        }
    }
    Wait(ASK_ALL, [this] { return IsAllAnswered(); });
}

void CLinkCheck::SearchBaud() {
    for (const std::uint32_t Baud : USUAL_BAUDS) {
        if (Baud == m_Plan.m_Baud) {
            continue;
        }
        m_pFacts->m_Tried.push_back(Baud);
        const std::uint64_t nBad = m_pFacts->m_nBad;
        if (!Open(Baud)) {
            // Not every port has every rate.
            m_bLost = false;
            m_pFacts->m_Trouble = Trouble::eNone;
            m_pFacts->m_TroubleText.clear();
            continue;
        }
        const auto Understood = [this] { return m_pFacts->m_nGood > 0; };
        for (const bool bLanner : {false, true, false}) {
            for (const std::uint8_t Address : GetKnownAddresses()) {
                AskFirst(Address, bLanner);
            }
            Wait(REPEAT, Understood);
            if (Understood() || m_bLost) {
                break;
            }
        }
        if (Understood()) {
            m_pFacts->m_FittingBaud = Baud;
            // From here on they count as they come at the right rate.
            m_nBadBefore += m_pFacts->m_nBad;
            m_pFacts->m_nBad = 0;
            AskKnownAddresses();
            return;
        }
        m_nBadBefore += m_pFacts->m_nBad - nBad;
        m_pFacts->m_nBad = nBad;
    }
    // Back to where bytes are counted as they were asked for.
    if (!Open(m_Plan.m_Baud)) {
        m_bLost = true;
    }
}

void CLinkCheck::SearchAddresses() {
    // A module answers before the next one is asked, so that they don't talk at once on two wires.
    constexpr std::uint32_t LINE_BITS = 10 * 24;  // question, answer's beginning, and what stands around them
    const std::uint32_t Pause = 8 + (m_Plan.m_Baud == 0 ? 0 : LINE_BITS * 1000 / m_Plan.m_Baud);
    for (unsigned Address = 1; Address <= LAST_ADDRESS && !m_bLost; ++Address) {
        if (Address != m_pFacts->m_OwnAddress) {
            Send(FirstQuestion::MakeIdentification(m_pFacts->m_OwnAddress,
                                                   static_cast<std::uint8_t>(Address)));
            Wait(Pause);
        }
    }
    m_pFacts->m_bAllAsked = true;
    Wait(REPEAT);
    AskKnownAddresses();
}

void CLinkCheck::Watch(std::uint64_t Until) {
    const auto Now = [] { return IFEventLoop::Current().Now(); };
    const std::uint64_t End = std::max(Until, Now() + SHORTEST_WATCH);
    while (Now() < End && !m_bLost) {
        Wait(static_cast<std::uint32_t>(std::min<std::uint64_t>(REFRESH, End - Now())));
        for (auto& [Address, rModule] : m_Modules) {
            if (Now() < End && rModule.m_pListener != nullptr && !rModule.m_pListener->IsAsking()) {
                rModule.m_pListener->AskState();
            }
        }
    }
}
