#pragma once
#include <cstdint>
#include <memory>
#include <vector>

#include "platform/rvcom/bytelink.h"

/// A link behind the modules' own transceiver: with a rate of its own, and wired as somebody has wired it. At
/// another rate than that of the other end, where that can be told (a pseudo terminal), and with the wires
/// exchanged, each end takes something else from the line than was sent.
class CWiredLink : public IFByteLink {
public:
    struct CWiring {
        std::uint32_t m_Baud = 0;  ///< the modules' own; 0: whatever the other end has
        bool m_bInverted = false;  ///< the two wires are exchanged
        bool m_bEcho = false;      ///< the other end hears itself, as on two wires for both directions
        bool operator==(const CWiring&) const = default;
    };

    /// Takes what the link's callbacks are set to for its own.
    explicit CWiredLink(std::unique_ptr<IFByteLink> pLink);
    ~CWiredLink() override;
    CWiredLink(const CWiredLink&) = delete;
    CWiredLink& operator=(const CWiredLink&) = delete;

    void SetWiring(const CWiring& rWiring) { m_Wiring = rWiring; }
    const CWiring& GetWiring() const { return m_Wiring; }

    void Open() override { m_pLink->Open(); }
    void Close() override { m_pLink->Close(); }
    void Sever() override { m_pLink->Sever(); }
    bool IsOpen() const override { return m_pLink->IsOpen(); }
    bool Write(std::span<const std::uint8_t> Bytes) override;
    std::string GetName() const override { return m_pLink->GetName(); }
    std::uint32_t GetPeerSpeed() const override { return m_pLink->GetPeerSpeed(); }
    LinkTrouble GetTrouble() const override { return m_pLink->GetTrouble(); }

private:
    enum class Direction : std::uint8_t { eToModules, eFromModules };
    std::vector<std::uint8_t> Carry(std::span<const std::uint8_t> Bytes, Direction Where) const;

    std::unique_ptr<IFByteLink> m_pLink;
    CWiring m_Wiring;
};
