#include "platform/rvldb/gettext.h"

#include <QLocale>
#include <mutex>

#include "platform/rvldb/languages.h"

// Registers the texts that are compiled in, also when a static initialiser of another library asks for one
// before this library's own have run. The macro has to stand outside any namespace.
static void InitTextResource() {
    Q_INIT_RESOURCE(corvane_platform_translations);
}

namespace {

/// The languages that are compiled in.
struct CTextState {
    CTextState() { m_Languages.Choose(QLocale::system().name().toStdString()); }

    std::mutex m_Mutex;
    CLanguages m_Languages{":/texts"};
};

/// Never destroyed: texts may be asked for while the program ends, after Qt's own statics are gone.
CTextState& GetState() {
    static CTextState* const s_pState = [] {
        InitTextResource();
        return new CTextState;
    }();
    return *s_pState;
}

}  // namespace

std::string GetText(const std::string& rKey) {
    CTextState& rState = GetState();
    const std::lock_guard Lock(rState.m_Mutex);
    return rState.m_Languages.Find(rKey);
}

bool SetLanguage(const std::string& rCode) {
    CTextState& rState = GetState();
    const std::lock_guard Lock(rState.m_Mutex);
    return rState.m_Languages.Choose(rCode);
}

std::string GetLanguage() {
    CTextState& rState = GetState();
    const std::lock_guard Lock(rState.m_Mutex);
    return rState.m_Languages.GetCurrent();
}

std::vector<std::string> GetLanguages() {
    CTextState& rState = GetState();
    const std::lock_guard Lock(rState.m_Mutex);
    return rState.m_Languages.GetCodes();
}
