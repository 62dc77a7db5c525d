#include "tests/support/linerecording.h"

#include <cstdio>
#include <sstream>
#include <stdexcept>

#include "platform/system/eventloop.h"

namespace {

class CRecordingLink : public IFByteLink {
public:
    CRecordingLink(std::unique_ptr<IFByteLink> pLink, CLineRecording& rRecording)
        : m_pLink(std::move(pLink)), m_rRecording(rRecording) {
        m_pLink->OnBytes = [this](std::span<const std::uint8_t> Bytes) {
            m_rRecording.m_Pieces.push_back(
                {IFEventLoop::Current().Now(), true, {Bytes.begin(), Bytes.end()}});
            if (OnBytes) {
                OnBytes(Bytes);
            }
        };
        m_pLink->OnOpened = [this] {
            if (OnOpened) {
                OnOpened();
            }
        };
        m_pLink->OnClosed = [this](const std::string& rWhy) {
            if (OnClosed) {
                OnClosed(rWhy);
            }
        };
    }
    void Open() override { m_pLink->Open(); }
    void Close() override { m_pLink->Close(); }
    bool IsOpen() const override { return m_pLink->IsOpen(); }
    bool Write(std::span<const std::uint8_t> Bytes) override {
        m_rRecording.m_Pieces.push_back({IFEventLoop::Current().Now(), false, {Bytes.begin(), Bytes.end()}});
        return m_pLink->Write(Bytes);
    }
    std::string GetName() const override { return m_pLink->GetName(); }

private:
    std::unique_ptr<IFByteLink> m_pLink;
    CLineRecording& m_rRecording;
};

class CReplayLink : public IFByteLink {
public:
    CReplayLink(const CLineRecording& rRecording, CLineRecording& rSent)
        : m_rRecording(rRecording), m_rSent(rSent) {}
    ~CReplayLink() override { Close(); }
    void Open() override {
        m_bOpen = true;
        IFEventLoop& rLoop = IFEventLoop::Current();
        // All timers at once, so that at equal instants the line comes before what the computer has set up
        // later, as it did when it was recorded.
        for (const CLineRecording::CPiece& rPiece : m_rRecording.m_Pieces) {
            if (rPiece.m_bReceived) {
                const std::uint64_t Wait = rPiece.m_At > rLoop.Now() ? rPiece.m_At - rLoop.Now() : 0;
                m_Timers.push_back(
                    rLoop.SetTimer(static_cast<std::uint32_t>(Wait),
                                   [this, &rPiece](std::uint32_t Id) { Deliver(Id, rPiece); }));
            }
        }
        rLoop.Post([this, pAlive = std::weak_ptr<bool>(m_pAlive)] {
            if (!pAlive.expired() && OnOpened) {
                OnOpened();
            }
        });
    }
    void Close() override {
        m_bOpen = false;
        for (const std::uint32_t Id : m_Timers) {
            IFEventLoop::Current().KillTimer(Id);
        }
        m_Timers.clear();
    }
    bool IsOpen() const override { return m_bOpen; }
    bool Write(std::span<const std::uint8_t> Bytes) override {
        m_rSent.m_Pieces.push_back({IFEventLoop::Current().Now(), false, {Bytes.begin(), Bytes.end()}});
        return m_bOpen;
    }
    std::string GetName() const override { return "replay"; }

private:
    void Deliver(std::uint32_t Id, const CLineRecording::CPiece& rPiece) {
        std::erase(m_Timers, Id);
        // Killing the timer may free the callback that runs; the piece is the recording's.
        IFEventLoop::Current().KillTimer(Id);
        if (OnBytes) {
            OnBytes(rPiece.m_Bytes);
        }
    }

    const CLineRecording& m_rRecording;
    CLineRecording& m_rSent;
    std::vector<std::uint32_t> m_Timers;
    bool m_bOpen = false;
    std::shared_ptr<bool> m_pAlive = std::make_shared<bool>(true);
};

}  // namespace

std::string CLineRecording::ToText() const {
    std::string Text;
    for (const CPiece& rPiece : m_Pieces) {
        Text += std::to_string(rPiece.m_At) + (rPiece.m_bReceived ? " < " : " > ");
        for (const std::uint8_t Byte : rPiece.m_Bytes) {
            char Digits[3];
            std::snprintf(Digits, sizeof Digits, "%02X", Byte);
            Text += Digits;
        }
        Text += '\n';
    }
    return Text;
}

CLineRecording CLineRecording::FromText(const std::string& rText) {
    CLineRecording Recording;
    std::istringstream Lines(rText);
    std::string Line;
    for (std::size_t nLine = 1; std::getline(Lines, Line); ++nLine) {
        std::istringstream Fields(Line);
        CPiece Piece;
        std::string Way;
        std::string Digits;
        if (!(Fields >> Piece.m_At >> Way >> Digits) || (Way != "<" && Way != ">") ||
            Digits.size() % 2 != 0 || Digits.find_first_not_of("0123456789ABCDEF") != std::string::npos) {
            throw std::runtime_error("line " + std::to_string(nLine) + " of the recording can't be read");
        }
        Piece.m_bReceived = Way == "<";
        for (std::size_t nDigit = 0; nDigit < Digits.size(); nDigit += 2) {
            Piece.m_Bytes.push_back(
                static_cast<std::uint8_t>(std::stoul(Digits.substr(nDigit, 2), nullptr, 16)));
        }
        Recording.m_Pieces.push_back(std::move(Piece));
    }
    return Recording;
}

std::unique_ptr<IFByteLink> MakeRecordingLink(std::unique_ptr<IFByteLink> pLink, CLineRecording& rRecording) {
    return std::make_unique<CRecordingLink>(std::move(pLink), rRecording);
}

std::unique_ptr<IFByteLink> MakeReplayLink(const CLineRecording& rRecording, CLineRecording& rSent) {
    return std::make_unique<CReplayLink>(rRecording, rSent);
}
