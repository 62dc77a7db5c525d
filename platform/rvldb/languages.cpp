#include "platform/rvldb/languages.h"

#include <QDir>
#include <QString>
#include <QTranslator>

namespace {

constexpr const char* c_pFallback = "en";

}  // namespace

/// The texts of one language. The translator is asked directly and not installed in an application, so that
/// texts also work before there is one, and without one.
class CLanguages::CTexts {
public:
    bool Load(const QString& rFile) { return m_Translator.load(rFile); }
    /// Null if the language lacks the key.
    QString Find(const std::string& rKey) const { return m_Translator.translate(nullptr, rKey.c_str()); }

private:
    QTranslator m_Translator;
};

CLanguages::CLanguages(const std::string& rFolder) : m_Current(c_pFallback) {
    const QDir Folder(QString::fromStdString(rFolder));
    for (const QString& rFile : Folder.entryList({"*.qm"}, QDir::Files, QDir::Name)) {
        auto pTexts = std::make_unique<CTexts>();
        if (pTexts->Load(Folder.filePath(rFile))) {
            const QString Code = rFile.section('.', 0, 0).section('_', -1);
            m_Texts[Code.toStdString()] = std::move(pTexts);
        }
    }
}

CLanguages::~CLanguages() = default;

bool CLanguages::Choose(const std::string& rCode) {
    const std::string Language = rCode.substr(0, rCode.find_first_of("_-"));
    if (!m_Texts.contains(Language)) {
        return false;
    }
    m_Current = Language;
    return true;
}

std::vector<std::string> CLanguages::GetCodes() const {
    std::vector<std::string> Codes;
    for (const auto& rEntry : m_Texts) {
        Codes.push_back(rEntry.first);
    }
    return Codes;
}

std::string CLanguages::Find(const std::string& rKey) const {
    for (const std::string& rCode : {m_Current, std::string(c_pFallback)}) {
        const auto Found = m_Texts.find(rCode);
        if (Found != m_Texts.end()) {
            const QString Text = Found->second->Find(rKey);
            if (!Text.isEmpty()) {
                return Text.toStdString();
            }
        }
    }
    return rKey;
}
