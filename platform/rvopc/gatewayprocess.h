#pragma once
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>

/// The gateway's process, and the local socket over which it speaks with us. The socket lies in a directory
/// that only this user can enter, and takes one connection, of a process of this user. Window thread only.
class IFGatewayProcess {
public:
    /// Gives the process 1.5 s to end by itself once its socket has closed.
    virtual ~IFGatewayProcess() = default;

    /// Starts a program with the socket's name for its argument. Empty, or why there can't be a socket; a
    /// program that can't be started is told by OnEnded, maybe before this returns.
    virtual std::string Start(const std::string& rProgram) = 0;
    virtual bool IsConnected() const = 0;
    /// False if the program isn't connected.
    virtual bool Write(std::string_view Bytes) = 0;
    /// Blocks until the program connects, or what it has sent is handed to OnBytes, at most so long in ms.
    /// False if neither came.
    virtual bool Wait(int Milliseconds) = 0;
    /// Ends the connection and the process. No callback comes from it any more.
    virtual void Kill() = 0;

    std::function<void()> OnConnected;
    /// May come once more before OnEnded, with its last words.
    std::function<void(std::span<const std::uint8_t> Bytes)> OnBytes;
    /// A line of its output.
    std::function<void(const std::string& rLine)> OnOutput;
    /// It closed its connection, ended, or couldn't be started. Kill is still to be called.
    std::function<void(const std::string& rWhy)> OnEnded;
};

std::unique_ptr<IFGatewayProcess> MakeGatewayProcess();
