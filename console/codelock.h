#pragma once
#include <cstdint>
#include <string>

/// The code that keeps settings, deleting, restoring and service from those who don't know it. Without a code
/// everything is open. A file keeps it as a salted hash, with the number of wrong tries, so that starting the
/// console anew doesn't shorten the pause before the next one.
class CCodeLock {
public:
    static constexpr std::size_t FEWEST_CHARACTERS = 4;

    /// Locked if the file has a code, or can't be understood.
    explicit CCodeLock(std::string File);

    bool HasCode() const { return m_State != State::eNoCode; }
    bool IsLocked() const { return HasCode() && !m_bOpen; }
    /// The file is there, and no code can be read from it: whoever may delete it opens everything.
    bool IsDamaged() const { return m_State == State::eDamaged; }
    const std::string& GetFile() const { return m_File; }

    enum class Outcome { eOpen, eWrong, eTooSoon };
    /// A try in the pause after a wrong one is none: it isn't looked at.
    Outcome Open(const std::string& rCode);
    /// ms until the next try counts.
    std::uint64_t GetPause() const;
    void Lock() { m_bOpen = false; }
    /// While open only. False if the file can't be written; then all is as before.
    bool SetCode(const std::string& rCode);
    bool RemoveCode();

private:
    enum class State { eNoCode, eCode, eDamaged };
    void Read();
    bool Write(const std::string& rSalt, const std::string& rHash, std::uint32_t nIterations,
               std::uint32_t nFailures) const;
    void BeginPause();

    std::string m_File;
    State m_State = State::eNoCode;
    bool m_bOpen = false;
    std::string m_Salt;  ///< in hexadecimal, as the hash
    std::string m_Hash;
    std::uint32_t m_nIterations = 0;
    std::uint32_t m_nFailures = 0;
    std::uint64_t m_NotBefore = 0;  ///< of the loop's time
};
