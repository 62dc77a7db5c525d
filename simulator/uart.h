#pragma once
#include <cstdint>
#include <span>
#include <vector>

/// Bytes on a wire, bit by bit: 8 data bits with the lowest first, between a start bit of 0 and a stop bit of
/// 1, at rest 1.
namespace Uart {

/// What a receiver takes from bytes that are sent one behind the other, when it samples at another rate than
/// they were sent with, or sees the wire's levels inverted. It begins a byte with each falling edge, reads
/// each bit in its middle, and doesn't mind a missing stop bit, as receivers are usually set.
std::vector<std::uint8_t> Receive(std::span<const std::uint8_t> Sent, std::uint32_t SenderBaud,
                                  std::uint32_t ReceiverBaud, bool bInverted);

}  // namespace Uart
