#pragma once
#include <memory>
#include <utility>

/// For callbacks that may still be on their way when their owner is gone. A member of the owner; window
/// thread only.
class CLifetime {
public:
    CLifetime() = default;
    ~CLifetime() = default;
    CLifetime(const CLifetime&) = delete;
    CLifetime& operator=(const CLifetime&) = delete;

    /// The callback, which does nothing once the owner is gone, or has called End.
    template <typename F>
    auto Guard(F Callback) const {
        return [pToken = GetToken(), Callback = std::move(Callback)](auto&&... Arguments) mutable {
            if (!pToken.expired()) {
                Callback(std::forward<decltype(Arguments)>(Arguments)...);
            }
        };
    }
    /// Expires with the owner: for those who look in the middle of what they do.
    std::weak_ptr<const void> GetToken() const { return m_pToken; }
    /// Before the owner goes: nothing that its destructor sets off comes back to it.
    void End() { m_pToken.reset(); }

private:
    std::shared_ptr<const void> m_pToken = std::make_shared<char>();
};
