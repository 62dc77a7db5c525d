#include "simulator/wiredlink.h"

#include <utility>

#include "simulator/uart.h"

namespace {

constexpr std::uint32_t ANY_BAUD = 115200;

}  // namespace

CWiredLink::CWiredLink(std::unique_ptr<IFByteLink> pLink) : m_pLink(std::move(pLink)) {
    OnBytes = std::exchange(m_pLink->OnBytes, nullptr);
    OnOpened = std::exchange(m_pLink->OnOpened, nullptr);
    OnClosed = std::exchange(m_pLink->OnClosed, nullptr);
    m_pLink->OnBytes = [this](std::span<const std::uint8_t> Bytes) {
        if (m_Wiring.m_bEcho) {
            m_pLink->Write(Bytes);
        }
        if (const auto Callback = OnBytes) {
            Callback(Carry(Bytes, Direction::eToModules));
        }
    };
    m_pLink->OnOpened = [this] {
        if (const auto Callback = OnOpened) {
            Callback();
        }
    };
    m_pLink->OnClosed = [this](const std::string& rWhy) {
        if (const auto Callback = OnClosed) {
            Callback(rWhy);
        }
    };
}

CWiredLink::~CWiredLink() {
    m_pLink->OnBytes = nullptr;
    m_pLink->OnOpened = nullptr;
    m_pLink->OnClosed = nullptr;
}

bool CWiredLink::Write(std::span<const std::uint8_t> Bytes) {
    return m_pLink->Write(Carry(Bytes, Direction::eFromModules));
}

std::vector<std::uint8_t> CWiredLink::Carry(std::span<const std::uint8_t> Bytes, Direction Where) const {
    const std::uint32_t Peer = m_pLink->GetPeerSpeed();
    const std::uint32_t Others = Peer != 0 ? Peer : (m_Wiring.m_Baud != 0 ? m_Wiring.m_Baud : ANY_BAUD);
    const std::uint32_t Own = m_Wiring.m_Baud != 0 ? m_Wiring.m_Baud : Others;
    return Where == Direction::eToModules ? Uart::Receive(Bytes, Others, Own, m_Wiring.m_bInverted)
                                          : Uart::Receive(Bytes, Own, Others, m_Wiring.m_bInverted);
}
