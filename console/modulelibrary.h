#pragma once
#include <string>

class CBitmap;
class CRect;
class CWnd;

/// The window module, loaded at run time. Only its five exported functions are used, and window messages.
class CModuleLibrary {
public:
    /// Loads the library; throws std::runtime_error with the loader's reason if that fails or an export is
    /// missing.
    explicit CModuleLibrary(const std::string& rPath);
    ~CModuleLibrary();
    CModuleLibrary(const CModuleLibrary&) = delete;
    CModuleLibrary& operator=(const CModuleLibrary&) = delete;

    CWnd* GetWindow() const { return m_pGetWindow(); }
    void DeleteDllWindow(CWnd* pWindow) const { m_pDeleteDllWindow(pWindow); }
    const CRect& GetPreferredSize() const { return *m_pGetPreferredSize(); }
    const CBitmap& GetPreviewBitmap() const { return *m_pGetPreviewBitmap(); }
    bool ScalingAllowed() const { return m_pScalingAllowed() != 0; }

    /// librtr_trim.so beside the running program.
    static std::string GetDefaultPath();

private:
    template <typename T>
    void Resolve(T& rpFunction, const char* pName);

    std::string m_Path;
    void* m_pHandle = nullptr;
    CWnd* (*m_pGetWindow)() = nullptr;
    void (*m_pDeleteDllWindow)(CWnd*) = nullptr;
    CRect* (*m_pGetPreferredSize)() = nullptr;
    CBitmap* (*m_pGetPreviewBitmap)() = nullptr;
    int (*m_pScalingAllowed)() = nullptr;
};
