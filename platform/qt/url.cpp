#include "platform/system/url.h"

#include <QString>
#include <QUrl>
#include <QUrlQuery>

std::optional<CUrl> ParseUrl(const std::string& rText) {
    const QUrl Parsed(QString::fromStdString(rText), QUrl::StrictMode);
    if (!Parsed.isValid()) {
        return std::nullopt;
    }
    CUrl Url;
    Url.m_Name = Parsed.toString(QUrl::RemovePassword | QUrl::RemoveQuery).toStdString();
    Url.m_User = Parsed.userName().toStdString();
    Url.m_Password = Parsed.password().toStdString();
    Url.m_Host = Parsed.host().toStdString();
    if (Parsed.port() >= 0) {
        Url.m_Port = Parsed.port();
    }
    Url.m_Path = Parsed.path().toStdString();
    for (const auto& [rName, rValue] : QUrlQuery(Parsed).queryItems(QUrl::FullyDecoded)) {
        Url.m_Query.emplace_back(rName.toStdString(), rValue.toStdString());
    }
    return Url;
}
