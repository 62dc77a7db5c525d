#pragma once
#include <map>
#include <string>

#include "platform/rvopc/opcvalue.h"

/// How the NC's OPC UA server is reached, and which of its nodes stand for the module's items.
struct COpcConfiguration {
    std::string m_Server;                       ///< endpoint, "opc.tcp://HOST:PORT"
    std::string m_Security = "Basic256Sha256";  ///< policy, with SignAndEncrypt; or "None"
    std::string m_Fingerprint;  ///< SHA-256 of the server's certificate, empty: the first one is trusted
    std::string m_User;         ///< empty: anonymous, or by certificate
    std::string m_Password;
    std::string m_UserCertificate;  ///< files of a certificate to log in with
    std::string m_UserKey;
    std::map<std::string, std::string> m_LinkItems;  ///< key to node id
    /// Key to the value that not every node of the right kind can hold: with each connection the server is
    /// asked whether this one can.
    std::map<std::string, COpcValue> m_Exacting;
};
