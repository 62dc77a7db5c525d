#include "platform/rvldb/languagefiles.h"

#include <QDir>
#include <QLocale>
#include <QString>
#include <QTranslator>
#include <utility>

// The macro has to stand outside any namespace.
static void InitTextResource() {
    Q_INIT_RESOURCE(corvane_platform_translations);
}

namespace {

/// The translator is asked directly and not installed in an application, so that texts also work before there
/// is one, and without one.
class CLanguageFile : public IFLanguageFile {
public:
    bool Load(const QString& rFile) { return m_Translator.load(rFile); }
    std::string Find(const std::string& rKey) const override {
        return m_Translator.translate(nullptr, rKey.c_str()).toStdString();
    }

private:
    QTranslator m_Translator;
};

}  // namespace

CLanguageFiles LoadLanguageFiles(const std::string& rFolder) {
    CLanguageFiles Files;
    const QDir Folder(QString::fromStdString(rFolder));
    for (const QString& rFile : Folder.entryList({"*.qm"}, QDir::Files, QDir::Name)) {
        auto pFile = std::make_unique<CLanguageFile>();
        if (pFile->Load(Folder.filePath(rFile))) {
            const QString Code = rFile.section('.', 0, 0).section('_', -1);
            Files[Code.toStdString()] = std::move(pFile);
        }
    }
    return Files;
}

CLanguageFiles LoadBuiltInLanguageFiles() {
    InitTextResource();
    return LoadLanguageFiles(":/texts");
}

std::string GetSystemLanguage() {
    return QLocale::system().name().toStdString();
}
