#include "platform/rvldb/gettext.h"

#include <mutex>

#include "platform/rvldb/languages.h"

namespace {

/// The languages that are compiled in.
struct CTextState {
    CTextState() { m_Languages.Choose(GetSystemLanguage()); }

    std::mutex m_Mutex;
    CLanguages m_Languages{LoadBuiltInLanguageFiles()};
};

/// Never destroyed: texts may be asked for while the program ends, after the toolkit's own statics are gone.
CTextState& GetState() {
    static CTextState* const s_pState = new CTextState;
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
