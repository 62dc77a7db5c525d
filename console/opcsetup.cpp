#include "console/opcsetup.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <string_view>

#include "contract/ncitems.h"
#include "contract/ncnotification.h"
#include "contract/ncrequests.h"
#include "platform/rvopc/opcnodeid.h"
#include "platform/system/files.h"
#include "simulator/jsonfields.h"

namespace fs = std::filesystem;
using nlohmann::json;

namespace {

constexpr std::size_t MAX_TEXT = 1024;
constexpr std::size_t FINGERPRINT_DIGITS = 64;

constexpr std::array<std::string_view, 4> POLICIES = {"Basic256Sha256", "Aes128_Sha256_RsaOaep",
                                                      "Aes256_Sha256_RsaPss", "None"};
constexpr std::string_view UNSECURED = "None";

constexpr std::array<std::string_view, 8> LINK_KEYS = {
    NcItems::REQUEST,
    NcItems::NOTIFICATION,
    NcItems::WARNING,
    NcItems::TEST_WEIGHT,
    NcItems::TARGET_UNBALANCE,
    NcItems::ROTATION_DIRECTION,
    NcItems::ROTATION_DIRECTION_CONNECTS,
    NcItems::ROTOR_NAME,
};

std::string ReadFingerprint(const CJsonFields& rFields) {
    const std::string Given = rFields.GetText("fingerprint", "", MAX_TEXT);
    std::string Digits;
    for (const char Character : Given) {
        if (std::string_view(" :").find(Character) == std::string_view::npos) {
            Digits += Character;
        }
    }
    const bool bHexadecimal = Digits.find_first_not_of("0123456789abcdefABCDEF") == std::string::npos;
    if (!Digits.empty() && (!bHexadecimal || Digits.size() != FINGERPRINT_DIGITS)) {
        CJsonFields::Refuse("fingerprint", "the SHA-256 of a certificate, 64 hexadecimal digits", Given);
    }
    return Digits;
}

std::string ReadServer(const CJsonFields& rFields) {
    rFields.Require("server");
    std::string Server = rFields.GetText("server", "", MAX_TEXT);
    constexpr std::string_view SCHEME = "opc.tcp://";
    if (!Server.starts_with(SCHEME) || Server.size() == SCHEME.size() ||
        Server.find_first_of(" \t\n") != std::string::npos) {
        CJsonFields::Refuse("server", "an endpoint, for example opc.tcp://192.168.214.1:4840", Server);
    }
    return Server;
}

/// Files are told relative to the one that names them.
std::string ReadFileName(const CJsonFields& rFields, std::string_view Name, const fs::path& rDirectory) {
    std::string File = rFields.GetText(Name, "", MAX_TEXT);
    if (File.empty()) {
        return File;
    }
    const fs::path Path = rDirectory / File;
    if (!Files::IsFile(Path.string())) {
        CJsonFields::Refuse(rFields.GetPath(Name), "a file that exists", Path.string());
    }
    return Path.string();
}

std::map<std::string, std::string> ReadLinkItems(const CJsonFields& rFields) {
    std::map<std::string, std::string> LinkItems;
    if (const json* pItems = rFields.Get("items")) {
        const CJsonFields Items(*pItems, "items", LINK_KEYS);
        for (const std::string_view Key : LINK_KEYS) {
            const std::string Node = Items.GetText(Key, "", MAX_TEXT);
            if (!Node.empty() && !IsOpcNodeId(Node)) {
                CJsonFields::Refuse(Items.GetPath(Key),
                                    "a node id, for example nsu=urn:nc;s=Request or ns=2;s=Request", Node);
            }
            if (!Node.empty()) {
                LinkItems.emplace(Key, Node);
            }
        }
    }
    return LinkItems;
}

COpcConfiguration FromJson(const json& rValue, const fs::path& rDirectory) {
    const CJsonFields Fields(
        rValue, "",
        {"server", "security", "fingerprint", "user", "password", "user_certificate", "user_key", "items"});
    COpcConfiguration Result = COpcSetup::MakeConfiguration();
    Result.m_Server = ReadServer(Fields);
    Result.m_Security = POLICIES.at(Fields.GetChoice("security", 0, POLICIES));
    Result.m_Fingerprint = ReadFingerprint(Fields);
    Result.m_User = Fields.GetText("user", "", MAX_TEXT);
    Result.m_Password = Fields.GetText("password", "", MAX_TEXT);
    Result.m_UserCertificate = ReadFileName(Fields, "user_certificate", rDirectory);
    Result.m_UserKey = ReadFileName(Fields, "user_key", rDirectory);
    Result.m_LinkItems = ReadLinkItems(Fields);
    if (Result.m_User.empty() != Result.m_Password.empty()) {
        throw CJsonError("user and password go together: give both, or neither");
    }
    if (Result.m_UserCertificate.empty() != Result.m_UserKey.empty()) {
        throw CJsonError("user_certificate and user_key go together: give both, or neither");
    }
    if (!Result.m_User.empty() && !Result.m_UserCertificate.empty()) {
        throw CJsonError("a login is by user and password or by user_certificate: give one of them");
    }
    if (Result.m_Security == UNSECURED && !Result.m_Password.empty()) {
        throw CJsonError(
            "a password would cross the network in the clear: leave it out, or take another security than "
            "None");
    }
    return Result;
}

bool CanOthersRead(const std::string& rFile) {
    constexpr fs::perms OTHERS = fs::perms::group_read | fs::perms::others_read;
    return (fs::status(rFile).permissions() & OTHERS) != fs::perms::none;
}

}  // namespace

COpcConfiguration COpcSetup::MakeConfiguration() {
    COpcConfiguration Result;
    // An unsigned node can't.
    Result.m_Exacting = {{NcItems::REQUEST, NcRequests::eRefused},
                         {NcItems::NOTIFICATION, std::vector<std::int32_t>(CNcNotification::SIZE, -1)}};
    return Result;
}

std::optional<COpcConfiguration> COpcSetup::Read(const std::string& rFile, std::string& rError) {
    rError.clear();
    std::error_code Ignored;
    if (!fs::exists(rFile, Ignored)) {
        return std::nullopt;
    }
    const auto Contents = Files::ReadAll(rFile);
    if (!Contents) {
        rError = rFile + " can't be read";
        return std::nullopt;
    }
    try {
        COpcConfiguration Result = FromJson(json::parse(*Contents), fs::path(rFile).parent_path());
        if (!Result.m_Password.empty() && CanOthersRead(rFile)) {
            rError = rFile + " holds a password and can be read by others: chmod 600 it";
            return std::nullopt;
        }
        return Result;
    } catch (const json::exception&) {
        // The parser quotes what it read, which may be the password.
        rError = rFile + " is no valid JSON";
    } catch (const CJsonError& rException) {
        rError = rFile + ": " + rException.what();
    }
    return std::nullopt;
}

std::string COpcSetup::GetDefaultGateway() {
    return Files::GetBesideProgram("opc-gateway");
}
