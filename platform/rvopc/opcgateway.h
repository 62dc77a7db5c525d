#pragma once
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

/// The OPC UA client beside this process, as lines of text to it and from it. Window thread only.
class IFOpcGateway {
public:
    virtual ~IFOpcGateway() = default;

    /// Begins; OnOpened tells when there is a gateway to speak to.
    virtual void Start() = 0;
    /// Sends a line, which must hold no line end. False if there is no gateway at present.
    virtual bool SendLine(const std::string& rLine) = 0;
    /// Blocks until something came from the gateway and was handed to the callbacks, at most so long in ms.
    /// False if nothing came.
    virtual bool Wait(std::uint32_t Milliseconds) = 0;

    /// A gateway is there. It is a new one: it knows nothing of what was sent before.
    std::function<void()> OnOpened;
    std::function<void(const std::string& rLine)> OnLine;
    /// The gateway has gone, or none could be started; another attempt is on its way.
    std::function<void(const std::string& rWhy)> OnLost;
};

/// How a gateway is watched, in ms.
struct COpcGatewayTimes {
    std::uint32_t m_Ping = 2000;      ///< between two questions whether it lives
    std::uint32_t m_Silence = 10000;  ///< one that says nothing for so long is replaced
    std::uint32_t m_Start = 120000;   ///< until it is there; a busy machine loads a program for long
    std::uint32_t m_Sound = 10000;    ///< one that has served so long is replaced with the shortest pause
};

/// The program at rProgram, started as a process that connects to a local socket of ours and takes its orders
/// there. The socket lies in a directory that only this user can enter, and takes one connection, of a
/// process of this user. A gateway that ends, or hangs, is started again after 0.5 s, then after growing
/// pauses of up to 10 s. It ends with this object, or when this process dies.
std::unique_ptr<IFOpcGateway> MakeOpcGateway(const std::string& rProgram,
                                             const COpcGatewayTimes& rTimes = {});
