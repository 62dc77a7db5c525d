#pragma once
#include <optional>
#include <string>

/// Where a help page is: "mk:@MSITStore:<compiled file>::/<page>", as the module names it. The file may be
/// written with either separator; nothing in the address is escaped, so that a directory may be called
/// anything.
struct CHelpAddress {
    std::string m_File;    ///< in the system's form
    std::string m_Page;    ///< without the leading "/", for example "PB_001.htm"; empty for the file as such
    std::string m_Anchor;  ///< what follows "#" in the page's name

    /// Nothing if it is no such address.
    static std::optional<CHelpAddress> Parse(const std::string& rUrl);
    /// The address of a topic: the help of a language lies in the installation's help directory, and a
    /// topic's page has its name.
    static CHelpAddress OfTopic(const std::string& rDirectory, const std::string& rPrefix,
                                const std::string& rTopic);
    std::string MakeUrl() const;

    /// The file's name, without the directory.
    std::string GetFileName() const;
    std::string GetDirectory() const;
};
