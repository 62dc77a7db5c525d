#pragma once
#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>

#include "console/linkfacts.h"

/// The conversation with a module of a known family: its answers and reports become facts, through the
/// decoders with which the module's page works.
class IFModuleListener {
public:
    virtual ~IFModuleListener() = default;
    virtual void PutFrame(std::span<const std::uint8_t> Frame) = 0;
    /// The questions that the page asks at its start, in its order; each is repeated until it is answered or
    /// given up.
    virtual void AskAll() = 0;
    virtual bool IsAsking() const = 0;
    /// The state alone, once more: modules report changes only, and one report may be lost.
    virtual void AskState() = 0;
};

using FrameSender = std::function<void(std::span<const std::uint8_t>)>;

/// rFacts and what Send needs must outlive it. Null for an unknown family.
std::unique_ptr<IFModuleListener> MakeModuleListener(CModuleFacts& rFacts, FrameSender Send);

/// The family by a frame that only one of the two sends; eUnknown for those that both have.
CModuleFacts::Family TellFamily(std::span<const std::uint8_t> Frame);

/// Questions that can be asked before the family is known: who a module is, and its active set, for which the
/// families have different sub-codes. From an address of this computer.
namespace FirstQuestion {

using Question = std::array<std::uint8_t, 4>;
Question MakeIdentification(std::uint8_t OwnAddress, std::uint8_t Address);
Question MakeSet(std::uint8_t OwnAddress, std::uint8_t Address, CModuleFacts::Family Family);

}  // namespace FirstQuestion
