#pragma once
#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "archive/runadvice.h"
#include "archive/runrecord.h"
#include "console/situation.h"
#include "rvlib/math/matrix.h"

/// How a run ends, as the exit status of the program.
enum ExitCode : int {
    eExitWithinTarget = 0,
    eExitOverTarget = 1,
    eExitFailed = 2,
    eExitBadArguments = 3,
};

/// Gathers what a run shows and writes it as JSON. Nothing in it depends on the machine or on the clock, so
/// the same seed under virtual time gives the same bytes.
class CRunReport {
public:
    void SetProcedure(std::string Procedure) { m_Procedure = std::move(Procedure); }
    /// A step record, if the situation differs from the one recorded last in what it asks of the operator.
    /// True if it was recorded.
    bool AddSituation(std::uint64_t TimeMs, const CSituation& rSituation);
    /// Whether the result of every procedure of the run stands in the machine database; it doesn't unless
    /// told.
    void SetSaved(bool bSaved) { m_bSaved = bSaved; }
    /// False: it stands on the console's own disk, and waits for the server of the database.
    void SetDelivered(bool bDelivered) { m_bDelivered = bDelivered; }
    void AddAssertion(const std::string& rText) { m_Assertions.push_back(rText); }
    /// Smoothed reading of the first measurement of the run, and of the last.
    void SetInitial(const CSituation& rSituation);
    void SetFinal(const CSituation& rSituation);
    /// Angles of the weights fitted last, per plane from 0.
    void SetWeights(std::size_t Plane, const std::vector<int>& rAngles);
    /// Screws fitted last, in the rotor's own holes.
    void SetScrews(std::size_t Plane, const std::vector<CRotorScrew>& rScrews);
    /// What the run left in the machine database.
    void SetCalibration(const std::string& rConfiguration, std::uint32_t CalibratedRPM,
                        const math::matrix<double>& rInvA, const std::vector<math::matrix<double>>& rUA);

    /// The records of the run's procedures, in their order, and what is made of the last one.
    void SetRecords(std::vector<CRunRecord> Records, const CRunAdvice& rAdvice = {});
    /// Tells a fixed instant in place of the date, for reports that are to be the same bytes each time.
    void SetFixedDate(bool bFixedDate) { m_bFixedDate = bFixedDate; }
    /// The report that a record of the archive gives: all but steps and assertions.
    static CRunReport FromRecord(const CRunRecord& rRecord, const CRunAdvice& rAdvice = {});

    /// Whether all procedures came to their end, the last one to a verdict on a whole measurement. Without
    /// it the run has failed, whatever its last step says.
    void SetFinished(bool bFinished) { m_bFinished = bFinished; }

    /// The last step by its name, over target included; "Inactive" before anything came.
    std::string GetResult() const;
    /// A result that isn't saved is none, whatever the last step says.
    ExitCode GetExitCode() const;
    nlohmann::ordered_json ToJson() const;
    /// False if the file can't be written.
    bool Write(const std::string& rPath) const;

    /// Name of a step for the report.
    static const char* StepToString(std::int32_t Step);

private:
    nlohmann::ordered_json& GetPositions(std::size_t Plane);
    static nlohmann::ordered_json ReadingsToJson(const CSituation& rSituation);
    void AddRecords(nlohmann::ordered_json& rJson) const;

    std::string m_Procedure = "prebalance";
    std::optional<CSituation> m_Last;
    std::int32_t m_LastStep = CPreBalCodes::eInactive;
    bool m_bFinished = false;
    nlohmann::ordered_json m_Initial = nlohmann::ordered_json::array();
    nlohmann::ordered_json m_Final = nlohmann::ordered_json::array();
    nlohmann::ordered_json m_InvA = nlohmann::ordered_json::array();
    nlohmann::ordered_json m_UA = nlohmann::ordered_json::array();
    nlohmann::ordered_json m_Positions = nlohmann::ordered_json::array();
    nlohmann::ordered_json m_Steps = nlohmann::ordered_json::array();
    std::string m_Configuration;
    std::uint32_t m_CalibratedRPM = 0;
    std::uint32_t m_Target = 0;
    bool m_bSaved = false;
    bool m_bDelivered = true;
    std::vector<std::string> m_Assertions;
    std::vector<CRunRecord> m_Records;
    CRunAdvice m_Advice;
    bool m_bFixedDate = false;
};
