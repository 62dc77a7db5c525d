#include "console/databasefacts.h"

#include <map>

#include "console/checkreport.h"

namespace {

using Trouble = CDatabaseFacts::Trouble;
using Contents = CDatabaseFacts::Contents;
using Writing = CDatabaseFacts::Writing;

constexpr std::uint64_t MEGABYTE = 1000000;
/// Below it a commit may fail: SQLite writes what it changes twice for a moment.
constexpr std::uint64_t TOO_LITTLE = 20 * MEGABYTE;
/// Some hundred runs with their pictures.
constexpr std::uint64_t LITTLE = 500 * MEGABYTE;

/// Finding by what keeps the connection from being made.
const std::map<Trouble, const char*> TROUBLES = {
    {Trouble::eNoFile, "database-no-file"},          {Trouble::eUnreadable, "database-unreadable"},
    {Trouble::eUrl, "database-wrong-connection"},    {Trouble::eAway, "database-server-away"},
    {Trouble::eNotLetIn, "database-not-let-in"},     {Trouble::eNoDatabase, "database-none-of-that-name"},
    {Trouble::eUncertified, "database-certificate"}, {Trouble::eNoTls, "database-no-tls"},
    {Trouble::eOther, "database-not-usable"}};

void SayContents(const CDatabaseFacts& rFacts, CCheckReport& rReport) {
    const CCheckReport::Texts Versions = {std::to_string(rFacts.m_Version),
                                          std::to_string(rFacts.m_KnownVersion)};
    if (!rFacts.m_Damage.empty()) {
        rReport.AddProblem("database-damaged", {rFacts.m_Damage});
    } else if (rFacts.m_Contents == Contents::eForeign) {
        rReport.AddProblem("database-foreign");
    } else if (rFacts.m_Contents == Contents::eNothing) {
        rReport.AddNote("database-empty");
    } else if (rFacts.m_Version > rFacts.m_KnownVersion) {
        rReport.AddProblem("database-newer", Versions);
    } else if (rFacts.m_Version < rFacts.m_KnownVersion) {
        rReport.AddNote("database-older", Versions);
    } else {
        rReport.AddOk("database-version", {std::to_string(rFacts.m_Version)});
    }
    if (rFacts.m_Damage.empty() && rFacts.m_Contents == Contents::eStore) {
        if (rFacts.m_Kind == CDatabaseFacts::Kind::eFile) {
            rReport.AddOk("database-intact");  // a server looks after its own pages
        }
        rReport.AddOk("database-contents",
                      {std::to_string(rFacts.m_nConfigurations), std::to_string(rFacts.m_nMachines),
                       std::to_string(rFacts.m_nRuns)});
    }
}

void SayWriting(const CDatabaseFacts& rFacts, CCheckReport& rReport) {
    switch (rFacts.m_Writing) {
        case Writing::ePossible:
            return rReport.AddOk("database-writable");
        case Writing::eLocked:
            return rReport.AddProblem("database-locked");
        case Writing::eReadOnly:
            return rReport.AddProblem("database-read-only");
        case Writing::eNoRight:
            return rReport.AddProblem("database-no-right");
    }
}

void SaySpace(std::uint64_t FreeBytes, CCheckReport& rReport) {
    const std::string Megabytes = std::to_string(FreeBytes / MEGABYTE);
    if (FreeBytes < TOO_LITTLE) {
        rReport.AddProblem("database-disk-full", {Megabytes});
    } else if (FreeBytes < LITTLE) {
        rReport.AddNote("database-disk-filling", {Megabytes});
    } else {
        rReport.AddOk("database-disk", {Megabytes});
    }
}

void SayTls(const CDatabaseFacts& rFacts, CCheckReport& rReport) {
    if (!rFacts.m_bRemote) {
        return;  // what doesn't leave the computer needs none
    }
    if (!rFacts.m_bEncrypted) {
        rReport.AddNote("database-unencrypted");
    } else if (!rFacts.m_bVerified) {
        rReport.AddNote("database-unverified");
    } else {
        rReport.AddOk("database-verified");
    }
}

}  // namespace

void AnalyseDatabase(const CDatabaseFacts& rFacts, CCheckReport& rReport) {
    if (const auto Found = TROUBLES.find(rFacts.m_Trouble); Found != TROUBLES.end()) {
        rReport.AddProblem(Found->second, {rFacts.m_TroubleText});
    } else if (rFacts.m_Trouble == Trouble::eMissing) {
        rReport.AddNote("database-missing");
        SayWriting(rFacts, rReport);
    } else {
        rReport.AddOk(rFacts.m_Kind == CDatabaseFacts::Kind::eFile ? "database-file" : "database-server");
        SayContents(rFacts, rReport);
        SayWriting(rFacts, rReport);
        SayTls(rFacts, rReport);
    }
    if (rFacts.m_FreeBytes) {
        SaySpace(*rFacts.m_FreeBytes, rReport);
    }
}
