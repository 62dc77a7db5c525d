#include "console/modulelibrary.h"

#include <dlfcn.h>

#include <algorithm>
#include <stdexcept>

#include "platform/system/files.h"

template <typename T>
void CModuleLibrary::Resolve(T& rpFunction, const char* pName) {
    rpFunction = reinterpret_cast<T>(dlsym(m_pHandle, pName));
    if (rpFunction == nullptr) {
        dlclose(m_pHandle);
        throw std::runtime_error(m_Path + " is no window module: it does not export " + pName);
    }
}

CModuleLibrary::CModuleLibrary(const std::string& rPath) : m_Path(rPath) {
    m_pHandle = dlopen(rPath.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (m_pHandle == nullptr) {
        throw std::runtime_error(std::string("the window module can't be loaded: ") + dlerror());
    }
    Resolve(m_pGetWindow, "GetWindow");
    Resolve(m_pDeleteDllWindow, "DeleteDllWindow");
    Resolve(m_pGetPreferredSize, "GetPreferredSize");
    Resolve(m_pGetPreviewBitmap, "GetPreviewBitmap");
    Resolve(m_pScalingAllowed, "ScalingAllowed");
}

CModuleLibrary::~CModuleLibrary() {
    dlclose(m_pHandle);
}

std::string CModuleLibrary::GetDefaultPath() {
    return Files::GetBesideProgram("librtr_trim.so");
}
