#include "console/language.h"

#include <QApplication>
#include <QEvent>
#include <QLibraryInfo>
#include <QLocale>
#include <QSettings>
#include <QTranslator>
#include <QWidget>
#include <algorithm>

#include "platform/rvldb/gettext.h"

namespace {

constexpr const char* FILE_NAME = "panel.ini";
constexpr const char* KEY = "language";

QString GetFile(const std::filesystem::path& rConfigDirectory) {
    return QString::fromStdString((rConfigDirectory / FILE_NAME).string());
}

/// "Save" and "Cancel" of the toolkit itself; English where its translations aren't installed.
void TranslateToolkit(const std::string& rCode) {
    static QTranslator s_Translator;
    QCoreApplication::removeTranslator(&s_Translator);
    if (s_Translator.load(QString::fromStdString("qtbase_" + rCode),
                          QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
        QCoreApplication::installTranslator(&s_Translator);
    }
}

}  // namespace

bool UseLanguage(const std::string& rCode) {
    if (!SetLanguage(rCode)) {
        return false;
    }
    QLocale::setDefault(QLocale(QString::fromStdString(rCode)));
    if (qApp == nullptr) {
        return true;
    }
    TranslateToolkit(rCode);
    for (QWidget* const pWidget : QApplication::topLevelWidgets()) {
        QEvent Event(QEvent::LanguageChange);
        QCoreApplication::sendEvent(pWidget, &Event);
    }
    return true;
}

std::string ReadChosenLanguage(const std::filesystem::path& rConfigDirectory) {
    return QSettings(GetFile(rConfigDirectory), QSettings::IniFormat).value(KEY).toString().toStdString();
}

bool WriteChosenLanguage(const std::filesystem::path& rConfigDirectory, const std::string& rCode) {
    QSettings Settings(GetFile(rConfigDirectory), QSettings::IniFormat);
    Settings.setValue(KEY, QString::fromStdString(rCode));
    Settings.sync();
    return Settings.status() == QSettings::NoError;
}

std::string GetNativeName(const std::string& rCode) {
    return QLocale(QString::fromStdString(rCode)).nativeLanguageName().section(' ', -1).toStdString();
}

std::string GetNextLanguage() {
    const std::vector<std::string> Codes = GetLanguages();
    const auto Current = std::find(Codes.begin(), Codes.end(), GetLanguage());
    return Current == Codes.end() || Current + 1 == Codes.end() ? Codes.front() : *(Current + 1);
}
