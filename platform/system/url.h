#pragma once
#include <optional>
#include <string>
#include <utility>
#include <vector>

/// The parts of an URL, percent signs decoded.
struct CUrl {
    std::string m_Name;  ///< the URL itself without password and query, for people
    std::string m_User;
    std::string m_Password;
    std::string m_Host;
    std::optional<int> m_Port;
    std::string m_Path;                                        ///< with the slash at its front
    std::vector<std::pair<std::string, std::string>> m_Query;  ///< names and values, in order
};

/// Reads an URL by RFC 3986, strictly; nothing for another text.
std::optional<CUrl> ParseUrl(const std::string& rText);
