#include "platform/rvldb/gettext.h"

#include <QDir>
#include <QLocale>
#include <QString>
#include <QTranslator>
#include <map>
#include <memory>
#include <mutex>

// The resource is registered by a function that the resource compiler makes; it has to be called from outside
// any namespace.
static void InitTextResource() {
    Q_INIT_RESOURCE(corvane_platform_translations);
}

namespace {

constexpr const char* c_pFallback = "en";
constexpr const char* c_pFolder = ":/texts";

/// The languages that are compiled in. The translators are asked directly and not installed in an
/// application, so that texts also work before there is one, and without one.
class CLanguages {
public:
    CLanguages() {
        InitTextResource();
        const QDir Folder(c_pFolder);
        for (const QString& rFile : Folder.entryList({"*.qm"}, QDir::Files, QDir::Name)) {
            auto pTranslator = std::make_unique<QTranslator>();
            if (pTranslator->load(Folder.filePath(rFile))) {
                // rotor_trim_de.qm is German.
                const QString Code = rFile.section('.', 0, 0).section('_', -1);
                m_Translators[Code.toStdString()] = std::move(pTranslator);
            }
        }
        m_Current = c_pFallback;
        Choose(QLocale::system().name().toStdString());
    }

    bool Choose(const std::string& rCode) {
        const std::string Language = rCode.substr(0, rCode.find_first_of("_-"));
        if (!m_Translators.contains(Language)) {
            return false;
        }
        m_Current = Language;
        return true;
    }

    std::string Find(const std::string& rKey) const {
        for (const std::string& rCode : {m_Current, std::string(c_pFallback)}) {
            const auto Found = m_Translators.find(rCode);
            if (Found != m_Translators.end()) {
                const QString Text = Found->second->translate(nullptr, rKey.c_str());
                if (!Text.isEmpty()) {
                    return Text.toStdString();
                }
            }
        }
        return rKey;
    }

    const std::string& GetCurrent() const { return m_Current; }
    std::vector<std::string> GetCodes() const {
        std::vector<std::string> Codes;
        for (const auto& rEntry : m_Translators) {
            Codes.push_back(rEntry.first);
        }
        return Codes;
    }

    std::mutex m_Mutex;

private:
    std::map<std::string, std::unique_ptr<QTranslator>> m_Translators;
    std::string m_Current;
};

/// Never destroyed: texts may be asked for while the program ends, after Qt's own statics are gone.
CLanguages& Languages() {
    static CLanguages* const s_pLanguages = new CLanguages;
    return *s_pLanguages;
}

}  // namespace

std::string GetText(const std::string& rKey) {
    CLanguages& rLanguages = Languages();
    const std::lock_guard Lock(rLanguages.m_Mutex);
    return rLanguages.Find(rKey);
}

bool SetLanguage(const std::string& rCode) {
    CLanguages& rLanguages = Languages();
    const std::lock_guard Lock(rLanguages.m_Mutex);
    return rLanguages.Choose(rCode);
}

std::string GetLanguage() {
    CLanguages& rLanguages = Languages();
    const std::lock_guard Lock(rLanguages.m_Mutex);
    return rLanguages.GetCurrent();
}

std::vector<std::string> GetLanguages() {
    CLanguages& rLanguages = Languages();
    const std::lock_guard Lock(rLanguages.m_Mutex);
    return rLanguages.GetCodes();
}
