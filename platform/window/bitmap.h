#pragma once
#include <memory>
#include <string>

#include "platform/window/size.h"
#include "platform/window/types.h"

/// A picture in memory, 24 bits of colour a pixel. An empty bitmap has the size 0 by 0.
class CBitmap {
public:
    CBitmap();
    explicit CBitmap(CSize Size);
    ~CBitmap();
    CBitmap(const CBitmap&);
    CBitmap& operator=(const CBitmap&);
    CBitmap(CBitmap&&) noexcept;
    CBitmap& operator=(CBitmap&&) noexcept;

    /// Makes the bitmap Size large; the contents become white. A negative size counts as 0.
    void Create(CSize Size);
    CSize GetSize() const;
    /// Colour of a pixel; black outside.
    COLORREF GetPixel(int X, int Y) const;
    /// Same size and the same colours.
    bool operator==(const CBitmap& rOther) const;
    /// Writes a PNG file; false if that fails.
    bool SavePng(const std::string& rPath) const;
    /// Reads a PNG file; false, and the bitmap unchanged, if that fails.
    bool LoadPng(const std::string& rPath);

    /// The toolkit's picture, for platform/ only.
    struct Impl;
    Impl& GetImpl() { return *m_pImpl; }
    const Impl& GetImpl() const { return *m_pImpl; }

private:
    std::unique_ptr<Impl> m_pImpl;
};
