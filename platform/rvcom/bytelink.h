#pragma once
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>

/// What keeps a link from standing, as far as people can do something about it.
enum class LinkTrouble : std::uint8_t {
    eOther,
    eRefused,      ///< the computer is there, and nothing listens at that port
    eNoSuchHost,   ///< the host's name is unknown
    eUnreachable,  ///< no way to it through the network
    eNoAnswer,     ///< in the time that it has
    eClosed        ///< by the other end, once it stood
};

/// A line that carries bytes both ways: serial port, TCP connection, or a pair in one process. Callbacks come
/// on the window thread, never from inside a call of the same link.
class IFByteLink {
public:
    virtual ~IFByteLink() = default;

    /// Begins to open; OnOpened or OnClosed tells how it went.
    virtual void Open() = 0;
    virtual void Close() = 0;
    /// As if its cable was torn: closes it so that whoever is at the other end notices. Open() mends it.
    virtual void Sever() { Close(); }
    virtual bool IsOpen() const = 0;
    /// Queues bytes for sending. False if the link isn't open.
    virtual bool Write(std::span<const std::uint8_t> Bytes) = 0;
    /// What it is connected to, for messages: "serial:/dev/ttyS0:115200".
    virtual std::string GetName() const = 0;
    /// The rate in baud that the other end is set to, where that can be told: by the listening side of a
    /// pseudo terminal. Else 0.
    virtual std::uint32_t GetPeerSpeed() const { return 0; }
    /// Why it could not be opened or was lost, by kind; once OnClosed has come.
    virtual LinkTrouble GetTrouble() const { return LinkTrouble::eOther; }

    std::function<void(std::span<const std::uint8_t>)> OnBytes;
    std::function<void()> OnOpened;
    /// The link was lost or could not be opened; the text says why.
    std::function<void(const std::string&)> OnClosed;
};

/// Two ends in one process: what one end writes arrives at the other through the event loop, unchanged. Each
/// end is opened for itself; as on a cable, what is sent while the other end is closed is lost. While one end
/// is severed the other closes, and can't be opened.
struct CLinkPair {
    std::unique_ptr<IFByteLink> m_pFirst;
    std::unique_ptr<IFByteLink> m_pSecond;
};
CLinkPair MakeLinkPair();

/// A link by its description: "serial:PATH[:BAUD]" (8N1, 115200 by default), "tcp:HOST:PORT". Nothing is
/// opened yet. Null with rError telling what was wrong and what would be right.
std::unique_ptr<IFByteLink> MakeByteLink(const std::string& rDescription, std::string& rError);

/// The listening side, for simulators: "tcp:HOST:PORT" (one client at a time, port 0 takes a free one) or
/// "pty:PATH" (a pseudo terminal, linked at PATH). Open() listens before it returns: from then on GetName()
/// tells the port taken. OnOpened comes with every TCP client and OnClosed with its going, while the link
/// goes on listening; a pseudo terminal is open at once and its clients come and go unnoticed.
std::unique_ptr<IFByteLink> MakeListeningLink(const std::string& rDescription, std::string& rError);
