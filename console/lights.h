#pragma once
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "console/linewatch.h"
#include "console/ncpanel.h"

/// A light of the head line: a word that says how something stands, and a text on what is wrong and what to
/// do.
struct CLight {
    enum class Level { eGood, eWaiting, eTrouble, eOff };
    Level m_Level = Level::eOff;
    std::string m_Word;
    std::string m_Text;

    friend bool operator==(const CLight&, const CLight&) = default;
};

/// The lights of the head line, as they follow from what is known. Texts in the language in use.
namespace Lights {

struct CLinkFacts {
    std::string m_Link;  ///< as the command line names it
    bool m_bSimulated = false;
    bool m_bOpen = false;
    std::string m_Reason;  ///< why it isn't open
};
CLight GetLink(const CLinkFacts& rFacts);

struct CModuleFacts {
    bool m_bLinkOpen = false;
    bool m_bConfigured = false;
    bool m_bLanner = false;
    std::vector<std::uint8_t> m_Addresses;
    const CLineWatch* m_pLine = nullptr;
    std::uint64_t m_Now = 0;
    std::uint64_t m_AskedSince = 0;  ///< when the first question went out over the open link
};
CLight GetModule(const CModuleFacts& rFacts);

/// rTrouble: why there is no connection, as CNcPanel::GetTrouble.
CLight GetNc(CNcPanel::State State, const std::string& rServer, const std::string& rTrouble = {});

struct CDatabaseFacts {
    std::string m_File;  ///< empty if it lies on a server
    bool m_bReadable = true;
    bool m_bWritable = true;
    std::string m_Trouble;  ///< the last failure that nothing good has followed
    bool m_bAway = false;   ///< its server doesn't answer, and the console's own disk stands in for it
    std::string m_WhyAway{};
    std::size_t m_nWaiting = 0;  ///< results on that disk
};
/// Looks at the file that a connection names, if it names one.
CDatabaseFacts LookAtDatabase(const std::string& rConnection);
CLight GetDatabase(const CDatabaseFacts& rFacts);

}  // namespace Lights
