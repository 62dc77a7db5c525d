#pragma once
#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "archive/runrecord.h"
#include "platform/rvmdb/directsql.h"

/// Which runs are wanted; what isn't given is any.
struct CRunFilter {
    /// How a run ended, for people.
    enum class Result : std::uint8_t { eAny, eWithin, eOver, eFailed, eBrokenOff, eInterrupted };

    std::string m_Machine{};
    std::string m_Configuration{};
    std::string m_Rotor{};
    std::optional<std::chrono::sys_seconds> m_Since{};  ///< begun then or later
    std::optional<std::chrono::sys_seconds> m_Until{};  ///< begun before
    Result m_Result = Result::eAny;
    std::size_t m_nLimit = 50;  ///< the newest of them; 0: all
};

/// A run as a line of a list.
struct CRunSummary {
    std::int64_t m_Id = 0;
    std::chrono::sys_seconds m_Started{};
    std::chrono::sys_seconds m_Ended{};
    std::string m_Machine;
    std::string m_Configuration;
    std::string m_Mode;
    std::string m_Rotor;
    CRunRecord::Driver m_Driver = CRunRecord::Driver::ePanel;
    bool m_bRebalance = false;
    CRunRecord::State m_State = CRunRecord::State::eRunning;
    std::string m_Result;
    bool m_bSaved = false;
    /// Smoothed amplitudes of the first and of the final measurement, per plane of the machine.
    std::array<std::optional<double>, 2> m_Before;
    std::array<std::optional<double>, 2> m_After;

    bool operator==(const CRunSummary&) const = default;
};

/// The archive of runs in the store: plain values in, plain values out. What was written of a run is never
/// changed; more of it is added while it goes on, its end once. Belongs to the thread that made it, but for
/// Interrupt. Everything throws PreBalDB::CSqlError.
class CRunStore {
public:
    /// How much of a run is written.
    struct CProgress {
        std::int64_t m_Id = 0;  ///< 0: nothing yet
        std::size_t m_nMeasurements = 0;
        std::size_t m_nWarnings = 0;
        bool m_bPrediction = false;
        bool m_bEnded = false;
    };

    /// Opens the connection, and brings the archive into being. Throws PreBalDB::CDatabaseError.
    explicit CRunStore(const std::string& rConnection);
    /// Only opens the connection: Prepare is still to be called, and may be interrupted.
    enum class Opening { eOnlyConnect };
    CRunStore(const std::string& rConnection, Opening /*Only*/) : m_Connection(rConnection) {}
    /// Throws PreBalDB::CDatabaseError.
    void Prepare();

    /// Writes what is new of the run, in one transaction; the result is how much is written then. Mark: tells
    /// the run from all others of all consoles.
    CProgress Write(const CRunRecord& rRecord, const std::string& rMark, CProgress Written);
    /// How much of a run is written, for a writer that doesn't know.
    CProgress FindProgress(const std::string& rMark);
    /// Number and mark of all runs, the oldest first.
    std::vector<std::pair<std::int64_t, std::string>> GetMarks();
    /// A picture of the run, as PNG, in place of one of that name.
    void WritePicture(std::int64_t Id, const std::string& rName, std::span<const unsigned char> Png);

    /// The newest first.
    std::vector<CRunSummary> List(const CRunFilter& rFilter);
    /// Nothing if there is no such run. A value that can't be read is left out.
    std::optional<CRunRecord> Load(std::int64_t Id);
    /// The machines and rotors that runs are of, sorted.
    std::vector<std::string> GetMachines();
    std::vector<std::string> GetRotors();
    std::vector<std::string> GetPictures(std::int64_t Id);
    /// Nothing if there is none of that name.
    std::optional<std::vector<unsigned char>> LoadPicture(std::int64_t Id, const std::string& rName);

    /// Removes runs, few at a time, so that nobody who writes waits for long; those that don't exist are no
    /// error.
    void Remove(std::span<const std::int64_t> Ids);
    /// Removes their readings and pictures only; what was computed of these stays.
    void RemoveReadings(std::span<const std::int64_t> Ids);

    /// From another thread: PreBalDB::CDirectSQL::Interrupt.
    void Interrupt() { m_Connection.Interrupt(); }

private:
    // To be called within a transaction.
    void Begin(const CRunRecord& rRecord, const std::string& rMark, std::int64_t Id);
    void WriteMeasurement(std::int64_t Id, std::size_t Position, const CRunMeasurement& rMeasurement);
    void WritePrediction(std::int64_t Id, const CRunRecord& rRecord);
    void WriteEnd(std::int64_t Id, const CRunRecord& rRecord);
    void LoadMeasurements(CRunRecord& rRecord);
    void LoadRest(CRunRecord& rRecord);
    void AddAmplitudes(std::vector<CRunSummary>& rSummaries);
    std::vector<std::string> LoadNames(const char* pColumn);
    void ForEachBatch(std::span<const std::int64_t> Ids, const std::vector<const char*>& rStatements);

    PreBalDB::CDirectSQL m_Connection;
};
