#pragma once
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <vector>

/// What the modules on the line are heard to say, whoever has asked: who they are, their speed and lock, and
/// when they were heard last. Times in ms of the event loop.
class CLineWatch {
public:
    /// A module reports its speed once a second even while nothing turns; so long without a word is silence.
    static constexpr std::uint64_t SILENCE = 3500;

    struct CModule {
        std::uint64_t m_LastHeard = 0;
        std::optional<std::uint32_t> m_Software;
        std::string m_Article;
        std::uint32_t m_Serial = 0;
        std::optional<std::uint32_t> m_SpeedRpm;
        std::uint64_t m_SteadySince = 0;  ///< the speed hasn't moved much since then
        bool m_bStateHeard = false;
        bool m_bOutOfLock = false;
        bool m_bInvalidSpeed = false;
        bool m_bSensorFailure = false;
        bool m_bTooSlow = false;
        bool m_bOveramplified = false;

        bool IsSilent(std::uint64_t Now) const { return Now - m_LastHeard > SILENCE; }
    };

    /// Planes: those that count of a module with two, from 0.
    CLineWatch(bool bLanner, std::vector<std::size_t> Planes);

    /// A frame of a module, from its command on.
    void OnFrame(std::span<const std::uint8_t> Frame, std::uint64_t Now);
    /// Null if nothing was heard from that address.
    const CModule* Find(std::uint8_t Address) const;

private:
    void OnState(CModule& rModule, std::span<const std::uint8_t> Frame) const;
    void OnSpeed(CModule& rModule, std::span<const std::uint8_t> Frame, std::uint64_t Now) const;
    static void OnIdentification(CModule& rModule, std::span<const std::uint8_t> Frame);
    void OnSet(std::span<const std::uint8_t> Frame);

    bool m_bLanner;
    std::vector<std::size_t> m_Planes;
    bool m_bSwapped = false;  ///< the module's planes are exchanged by its set
    std::map<std::uint8_t, CModule> m_Modules;
};
