#include <fcntl.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <memory>
#include <system_error>
#include <utility>

#include "platform/rvcom/linespeed.h"
#include "platform/rvcom/linkkinds.h"
#include "platform/rvcom/queuedlink.h"
#include "platform/system/descriptor.h"
#include "platform/system/descriptorwatch.h"

namespace {

/// What waits at most for a client that doesn't read; beyond it bytes are lost, as on a line.
constexpr std::size_t MAX_WAITING = 65536;

/// The master side of a pseudo terminal, with a symbolic link to its other side. Holds the other side open
/// itself: clients may then come and go without the master's reading EIO in between, and the raw mode stays.
class CPseudoTerminal : public CQueuedLink {
public:
    explicit CPseudoTerminal(std::string Path) : m_Path(std::move(Path)) {}
    ~CPseudoTerminal() override { Release(); }

    void Open() override {
        Close();
        const std::string Reason = Make();
        if (Reason.empty()) {
            PostOpened();
        } else {
            Release();
            PostClosed(Reason);
        }
    }
    void Close() override {
        Release();
        Restart();
    }
    bool Write(std::span<const std::uint8_t> Bytes) override {
        if (!IsOpen() || m_Waiting.size() + Bytes.size() > MAX_WAITING) {
            return false;
        }
        m_Waiting.insert(m_Waiting.end(), Bytes.begin(), Bytes.end());
        WriteWaiting();
        return true;
    }
    std::string GetName() const override { return "pty:" + m_Path; }
    std::uint32_t GetPeerSpeed() const override { return GetLineSpeed(m_Master.Get()); }

private:
    /// Empty, or what went wrong.
    std::string Make() {
        m_Master = CDescriptor(posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
        std::array<char, 128> Name{};
        if (!m_Master.IsOpen() || grantpt(m_Master.Get()) != 0 || unlockpt(m_Master.Get()) != 0 ||
            ptsname_r(m_Master.Get(), Name.data(), Name.size()) != 0) {
            return std::string("no pseudo terminal: ") + std::strerror(errno);
        }
        m_OwnPath = Name.data();
        m_Client = CDescriptor(open(m_OwnPath.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC));
        termios Mode{};
        if (!m_Client.IsOpen() || tcgetattr(m_Client.Get(), &Mode) != 0) {
            return m_OwnPath + " can't be opened: " + std::strerror(errno);
        }
        cfmakeraw(&Mode);
        if (tcsetattr(m_Client.Get(), TCSANOW, &Mode) != 0) {
            return m_OwnPath + " doesn't take raw mode: " + std::strerror(errno);
        }
        if (std::string Reason = MakeSymbolicLink(); !Reason.empty()) {
            return Reason;
        }
        m_pReader = WatchDescriptor(m_Master.Get(), DescriptorEvent::eReadable, [this] { ReadAll(); });
        m_pWriter = WatchDescriptor(m_Master.Get(), DescriptorEvent::eWritable, [this] { WriteWaiting(); });
        m_pWriter->SetEnabled(false);
        return {};
    }
    std::string MakeSymbolicLink() {
        std::error_code Error;
        const auto Kind = std::filesystem::symlink_status(m_Path, Error).type();
        if (Kind == std::filesystem::file_type::symlink &&
            std::filesystem::read_symlink(m_Path, Error).string().starts_with("/dev/pts/")) {
            // Left by a program that was killed.
            std::filesystem::remove(m_Path, Error);
        } else if (Kind != std::filesystem::file_type::not_found) {
            return "\"" + m_Path +
                   "\" exists and isn't the link of a pseudo terminal; give a path that is free";
        }
        std::filesystem::create_symlink(m_OwnPath, m_Path, Error);
        if (Error) {
            return "the link \"" + m_Path + "\" can't be made: " + Error.message() +
                   "; give a path in an existing directory that the user may write";
        }
        m_bLinked = true;
        return {};
    }
    void Release() {
        m_pReader.reset();
        m_pWriter.reset();
        m_Waiting.clear();
        if (m_bLinked) {
            m_bLinked = false;
            std::error_code Error;
            // Another program may have put its own link there meanwhile.
            if (std::filesystem::read_symlink(m_Path, Error) == m_OwnPath) {
                std::filesystem::remove(m_Path, Error);
            }
        }
        m_Client.Close();
        m_Master.Close();
    }
    void ReadAll() {
        std::array<std::uint8_t, 4096> Chunk;
        for (;;) {
            const ssize_t nRead = read(m_Master.Get(), Chunk.data(), Chunk.size());
            if (nRead > 0) {
                PostBytes({Chunk.begin(), Chunk.begin() + nRead});
            } else if (nRead == 0 || errno != EINTR) {
                return;  // nothing more for now
            }
        }
    }
    void WriteWaiting() {
        while (!m_Waiting.empty()) {
            const ssize_t nWritten = write(m_Master.Get(), m_Waiting.data(), m_Waiting.size());
            if (nWritten > 0) {
                m_Waiting.erase(m_Waiting.begin(), m_Waiting.begin() + nWritten);
            } else if (nWritten == 0 || errno != EINTR) {
                break;
            }
        }
        m_pWriter->SetEnabled(!m_Waiting.empty());
    }

    std::string m_Path;
    std::string m_OwnPath;  ///< of the other side, /dev/pts/N
    CDescriptor m_Master;
    CDescriptor m_Client;
    bool m_bLinked = false;
    std::vector<std::uint8_t> m_Waiting;
    std::unique_ptr<IFDescriptorWatch> m_pReader;
    std::unique_ptr<IFDescriptorWatch> m_pWriter;
};

}  // namespace

std::unique_ptr<IFByteLink> MakePseudoTerminal(const std::string& rPath) {
    return std::make_unique<CPseudoTerminal>(rPath);
}
