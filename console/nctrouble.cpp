#include "console/nctrouble.h"

#include <algorithm>
#include <array>

#include "platform/rvldb/gettext.h"

namespace {

constexpr std::array TROUBLES = {
    CNcTrouble{"ENOTFOUND", "nc-unknown-name", "LIGHT_NC_UNKNOWN_NAME"},
    CNcTrouble{"EAI_AGAIN", "nc-unknown-name", "LIGHT_NC_UNKNOWN_NAME"},
    CNcTrouble{"ECONNREFUSED", "nc-refused", "LIGHT_NC_REFUSED"},
    CNcTrouble{"EHOSTUNREACH", "nc-unreachable", "LIGHT_NC_UNREACHABLE"},
    CNcTrouble{"ENETUNREACH", "nc-unreachable", "LIGHT_NC_UNREACHABLE"},
    CNcTrouble{"ETIMEDOUT", "nc-unreachable", "LIGHT_NC_UNREACHABLE"},
    CNcTrouble{"SecurityNotOffered", "nc-security-not-offered", "LIGHT_NC_SECURITY"},
    CNcTrouble{"NoServerCertificate", "nc-certificate-none", "LIGHT_NC_CERTIFICATE"},
    CNcTrouble{"ServerCertificateChanged", "nc-certificate-changed", "LIGHT_NC_CERTIFICATE"},
    CNcTrouble{"FingerprintDiffers", "nc-certificate-other", "LIGHT_NC_CERTIFICATE"},
    CNcTrouble{"OwnCertificateUntrusted", "nc-own-untrusted", "LIGHT_NC_UNTRUSTED"},
    CNcTrouble{"OwnCertificateOutOfTime", "nc-own-out-of-time", "LIGHT_NC_CLOCK"},
    CNcTrouble{"LoginNotOffered", "nc-login-not-offered", "LIGHT_NC_LOGIN"},
    CNcTrouble{"BadIdentityTokenInvalid", "nc-login-refused", "LIGHT_NC_LOGIN"},
    CNcTrouble{"BadIdentityTokenRejected", "nc-login-refused", "LIGHT_NC_LOGIN"},
    CNcTrouble{"BadUserAccessDenied", "nc-login-refused", "LIGHT_NC_LOGIN"},
    CNcTrouble{"BadUserSignatureInvalid", "nc-login-refused", "LIGHT_NC_LOGIN"},
    CNcTrouble{"UserCertificateMissing", "nc-login-files", "LIGHT_NC_LOGIN"},
    CNcTrouble{"UserKeyUnusable", "nc-login-files", "LIGHT_NC_LOGIN"},
    CNcTrouble{"BadTooManySessions", "nc-sessions", "LIGHT_NC_SESSIONS"},
    CNcTrouble{"BadInvalidTimestamp", "nc-clock-refused", "LIGHT_NC_CLOCK"},
};

}  // namespace

const CNcTrouble* CNcTrouble::Find(std::string_view Kind) {
    const auto Found = std::ranges::find(TROUBLES, Kind, &CNcTrouble::m_Kind);
    return Found == TROUBLES.end() ? nullptr : &*Found;
}

std::string CNcTrouble::Describe(std::string_view Kind) {
    const CNcTrouble* const pTrouble = Find(Kind);
    return pTrouble == nullptr ? std::string() : GetText(pTrouble->m_pTextKey);
}
