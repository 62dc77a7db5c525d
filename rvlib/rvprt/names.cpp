#include "rvlib/rvprt/names.h"

namespace Comm {

std::optional<std::string> AdaptionName(std::span<const char* const> Names, const char* pPrefix,
                                        std::uint32_t Adaption) {
    if (Adaption > LAST_ADAPTION) {
        return std::nullopt;
    }
    const char* const pName = NameOf(Names, Adaption, nullptr);
    return pName != nullptr ? std::string(pName) : pPrefix + std::to_string(Adaption);
}

}  // namespace Comm
