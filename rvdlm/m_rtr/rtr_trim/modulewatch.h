#pragma once
#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "rvdlm/m_rtr/rtr_trim/communication/statequestion.h"
#include "rvdlm/m_rtr/rtr_trim/silencewatch.h"

/// Keeps a run from working with what isn't so any more: readings of a dead line, and a lock whose loss or
/// return was reported in a frame that got lost. Watches the readings of the planes in use (silencewatch.h)
/// and asks the modules for their state while that matters (statequestion.h). What the modules report by
/// themselves goes its way at once, whatever is watched or asked here.
class CModuleWatch {
public:
    using Planes = std::array<bool, 2>;

    /// Period of Tick, ms.
    static constexpr std::uint32_t PERIOD = 250;
    /// A module that speaks again, but doesn't answer, is believed what it said last after so long, ms.
    static constexpr std::uint64_t MUTE_LIMIT = 2000;

    enum class Finding { eNothing, eFellSilent, eSpeaksAgain };

    /// Send takes the questions.
    explicit CModuleWatch(std::function<void(std::span<const std::uint8_t>)> Send)
        : m_Send(std::move(Send)) {}

    /// The addresses of the modules that serve the window.
    void SetModules(const std::vector<std::uint8_t>& rAddresses);
    /// A run begins that works with these planes: everything begins anew.
    void Begin(const Planes& rPlanes);
    /// Every received frame, before anybody else gets it. Whether it is to be passed on.
    bool OnFrame(std::span<const std::uint8_t> Frame);
    /// As the modules tell.
    void OnConditions(bool bTurning, bool bInLock);
    /// bReport: sent by the module itself.
    void OnReading(std::uint32_t Plane, bool bReport);
    /// Sampling begins: a module that answers nothing any more is to be found out before the window is full.
    void OnSampling();
    /// bAsk: the procedure depends on the modules' state.
    Finding Tick(bool bAsk);
    /// Nothing counts as in lock: frames stay away, or the state behind the silence isn't known yet.
    bool IsSilent() const { return m_bSilent; }

private:
    bool IsLineSilent(std::uint64_t Now, bool bAsk);
    bool IsStateKnown() const;
    /// Asks the modules whose state isn't known since an instant, and those whose state is that old.
    void AskModules(std::uint64_t Since);

    std::function<void(std::span<const std::uint8_t>)> m_Send;
    std::vector<CStateQuestion> m_Questions;  ///< one for each module
    std::array<CSilenceWatch, 2> m_Readings;  ///< one for each plane
    Planes m_bUsed{};
    bool m_bTurning = false;
    bool m_bSilent = false;
    std::uint64_t m_SilentSince = 0;
    std::optional<std::uint64_t> m_SpeaksSince;
};
