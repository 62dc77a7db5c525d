#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "platform/rvcom/bytelink.h"
#include "platform/system/eventloop.h"

/// What a CFakeLink was told and is to do; outlives the link, which the transport owns.
struct CLinkScript {
    std::vector<std::uint64_t> m_OpenedAt;  ///< instants of Open()
    int m_nRefuse = 0;                      ///< openings that still fail
    std::string m_Reason = "no such device";
    int m_nClosed = 0;
    std::vector<std::uint8_t> m_Written;
    class CFakeLink* m_pLink = nullptr;  ///< null once it is destroyed
};

/// A link without a line. Opens or fails by its script; the test plays the other end.
class CFakeLink : public IFByteLink {
public:
    explicit CFakeLink(CLinkScript& rScript) : m_rScript(rScript) { rScript.m_pLink = this; }
    ~CFakeLink() override { m_rScript.m_pLink = nullptr; }

    void Open() override {
        m_rScript.m_OpenedAt.push_back(IFEventLoop::Current().Now());
        CLinkScript& rScript = m_rScript;
        if (rScript.m_nRefuse > 0) {
            --rScript.m_nRefuse;
            IFEventLoop::Current().Post([&rScript] {
                if (rScript.m_pLink != nullptr) {
                    rScript.m_pLink->OnClosed(rScript.m_Reason);
                }
            });
            return;
        }
        IFEventLoop::Current().Post([&rScript] {
            if (rScript.m_pLink != nullptr) {
                rScript.m_pLink->m_bOpen = true;
                rScript.m_pLink->OnOpened();
            }
        });
    }
    void Close() override {
        ++m_rScript.m_nClosed;
        m_bOpen = false;
    }
    bool IsOpen() const override { return m_bOpen; }
    bool Write(std::span<const std::uint8_t> Bytes) override {
        if (m_bOpen) {
            m_rScript.m_Written.insert(m_rScript.m_Written.end(), Bytes.begin(), Bytes.end());
        }
        return m_bOpen;
    }
    std::string GetName() const override { return "fake"; }

    /// The line breaks.
    void Lose(const std::string& rReason) {
        m_bOpen = false;
        OnClosed(rReason);
    }

private:
    CLinkScript& m_rScript;
    bool m_bOpen = false;
};
