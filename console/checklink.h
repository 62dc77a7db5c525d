#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "console/checkreport.h"
#include "console/linkfacts.h"

/// A link to be looked at, as a command line names it.
struct CLinkRequest {
    std::string m_Link;  ///< serial:PATH[:BAUD], tcp:HOST:PORT, or sim for a simulated module
    std::vector<std::uint8_t> m_Addresses{};
    std::uint32_t m_Seconds = 10;
};

/// Looks at it and says what was found. Throws CCommandError for a text that names no link.
CCheckReport CheckLink(const CLinkRequest& rRequest);

/// The findings of what was seen.
CCheckReport MakeLinkReport(const CLinkFacts& rFacts);
