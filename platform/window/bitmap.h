#pragma once
#include <memory>
#include <string>
#include <vector>

#include "platform/window/size.h"
#include "platform/window/types.h"

/// A picture in memory, 24 bits of colour a pixel. An empty bitmap has the size 0 by 0.
///
/// A bitmap of a scale has that many times its size in pixels each way: what is drawn into it is sharp on a
/// display of that resolution. Sizes and coordinates don't show it.
class CBitmap {
public:
    CBitmap();
    explicit CBitmap(CSize Size);
    ~CBitmap();
    CBitmap(const CBitmap&);
    CBitmap& operator=(const CBitmap&);
    CBitmap(CBitmap&&) noexcept;
    CBitmap& operator=(CBitmap&&) noexcept;

    /// Makes the bitmap Size large; the contents become white. A negative size counts as 0. For drawing
    /// off-screen what then goes to a window, Scale is that of the window's surface.
    void Create(CSize Size, double Scale = 1.0);
    CSize GetSize() const;
    double GetScale() const;
    /// Colour of a pixel, of its upper left part if the scale is larger than 1; black outside.
    COLORREF GetPixel(int X, int Y) const;
    /// Same size, scale and colours.
    bool operator==(const CBitmap& rOther) const;
    /// Writes a PNG file with all pixels; false if that fails.
    bool SavePng(const std::string& rPath) const;
    /// A small PNG in memory: with a palette, colours rounded as far as that needs. Empty if that fails.
    std::vector<unsigned char> ToPng() const;
    /// Reads a PNG file, with scale 1; false, and the bitmap unchanged, if that fails.
    bool LoadPng(const std::string& rPath);

    /// The toolkit's picture, for its own folder only.
    struct Impl;
    Impl& GetImpl() { return *m_pImpl; }
    const Impl& GetImpl() const { return *m_pImpl; }

private:
    std::unique_ptr<Impl> m_pImpl;
};
