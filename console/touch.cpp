#include "console/touch.h"

#include <QApplication>
#include <QDir>
#include <QInputMethod>
#include <QLibraryInfo>
#include <QWidget>

std::string PrepareTouchKeyboard() {
    const QDir Plugins(QLibraryInfo::path(QLibraryInfo::PluginsPath) + "/platforminputcontexts");
    if (Plugins.entryList({"*virtualkeyboard*"}, QDir::Files).isEmpty()) {
        return "--touch: the keyboard for the screen isn't installed; its packages are listed in "
               "tools/packages-touch.txt, and ./run --touch installs them";
    }
    qputenv("QT_IM_MODULE", "qtvirtualkeyboard");
    return {};
}

void FollowFocusWithKeyboard() {
    QObject::connect(qApp, &QApplication::focusChanged, qApp, [](QWidget*, QWidget* pNow) {
        // The toolkit shows it by itself for a tap into a field only.
        if (pNow != nullptr && pNow->testAttribute(Qt::WA_InputMethodEnabled)) {
            QGuiApplication::inputMethod()->show();
        } else {
            QGuiApplication::inputMethod()->hide();
        }
    });
}
