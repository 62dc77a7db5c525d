#pragma once
#include <cstdint>
#include <memory>

class IFOpcServer;

/// Items of a connection that are updated at the same rate.
class COPCGroup {
public:
    /// UpdateRate in ms.
    COPCGroup(std::shared_ptr<IFOpcServer> pServer, std::uint32_t UpdateRate, int Mode)
        : m_pServer(std::move(pServer)), m_UpdateRate(UpdateRate), m_Mode(Mode) {}

    IFOpcServer& GetServer() const { return *m_pServer; }
    std::uint32_t GetUpdateRate() const { return m_UpdateRate; }
    int GetMode() const { return m_Mode; }

private:
    std::shared_ptr<IFOpcServer> m_pServer;
    std::uint32_t m_UpdateRate;
    int m_Mode;
};
