#pragma once
#include <nlohmann/json.hpp>
#include <string>

#include "console/checkreport.h"
#include "platform/rvopc/opcconfiguration.h"

/// What is known of an NC before anything is made of it.
struct CNcFacts {
    COpcConfiguration m_Configuration;  ///< that opc.json has
    std::string m_PkiDirectory;
    /// What the gateway has told: its facts by their names, "nodes" and "granted" lists of theirs.
    nlohmann::json m_Told = nlohmann::json::object();
};

/// Adds what the facts mean for a run that the NC is to drive.
void AnalyseNc(const CNcFacts& rFacts, CCheckReport& rReport);

/// The nodes to look at, as the gateway takes them: by key, with the values that a run writes and the rate at
/// which it watches, 0 for not at all.
nlohmann::json ListNcNodes(const COpcConfiguration& rConfiguration);
