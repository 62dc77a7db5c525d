#include "platform/rvopc/opclines.h"

#include <nlohmann/json.hpp>

#include "platform/rvopc/opcconfiguration.h"

using nlohmann::json;

std::string OpcLines::MakeConnect(const COpcConfiguration& rConfiguration, const std::string& rPkiDirectory) {
    const json Line = {{"connect",
                        {{"server", rConfiguration.m_Server},
                         {"security", rConfiguration.m_Security},
                         {"fingerprint", rConfiguration.m_Fingerprint},
                         {"pki", rPkiDirectory},
                         {"user", rConfiguration.m_User},
                         {"password", rConfiguration.m_Password},
                         {"user_certificate", rConfiguration.m_UserCertificate},
                         {"user_key", rConfiguration.m_UserKey}}}};
    return Line.dump(-1, ' ', false, json::error_handler_t::replace);
}
