#include <memory>
#include <utility>

#include "platform/rvcom/bytelink.h"
#include "platform/rvcom/queuedlink.h"

namespace {

/// One end of a pair. Behaves as a cable does: what is sent while the other end is closed is lost, and an end
/// doesn't notice the going of the other, unless the other severs the line.
class CPairEnd : public CQueuedLink {
public:
    explicit CPairEnd(std::string Name) : m_Name(std::move(Name)) {}
    ~CPairEnd() override {
        if (m_pOther != nullptr) {
            m_pOther->m_pOther = nullptr;
        }
    }
    void Connect(CPairEnd& rOther) {
        m_pOther = &rOther;
        rOther.m_pOther = this;
    }

    void Open() override {
        Restart();
        m_bSevered = false;
        m_bReceiving = !IsTorn();
        if (IsTorn()) {
            PostClosed(TORN);
        } else {
            PostOpened();
        }
    }
    void Close() override {
        Restart();
        m_bReceiving = false;
    }
    void Sever() override {
        Close();
        m_bSevered = true;
        if (m_pOther != nullptr && m_pOther->m_bReceiving) {
            m_pOther->Close();
            m_pOther->PostClosed(TORN);
        }
    }
    bool Write(std::span<const std::uint8_t> Bytes) override {
        if (!IsOpen()) {
            return false;
        }
        if (m_pOther != nullptr && m_pOther->m_bReceiving) {
            m_pOther->PostBytes({Bytes.begin(), Bytes.end()});
        }
        return true;
    }
    std::string GetName() const override { return m_Name; }

private:
    static constexpr const char* TORN = "the line is cut";

    bool IsTorn() const { return m_pOther != nullptr && m_pOther->m_bSevered; }

    std::string m_Name;
    CPairEnd* m_pOther = nullptr;
    bool m_bSevered = false;  ///< by this end
    bool m_bReceiving = false;
};

}  // namespace

CLinkPair MakeLinkPair() {
    auto pFirst = std::make_unique<CPairEnd>("pair:first");
    auto pSecond = std::make_unique<CPairEnd>("pair:second");
    pFirst->Connect(*pSecond);
    return {std::move(pFirst), std::move(pSecond)};
}
