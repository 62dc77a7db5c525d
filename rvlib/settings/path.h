#pragma once
#include <string>

/// A path that normalises itself: "\" between its parts, none at its end.
class CPath {
public:
    CPath() = default;
    CPath(const std::string& rPath);
    CPath(const char* pPath) : CPath(std::string(pPath)) {}

    const std::string& GetText() const { return m_Text; }
    operator const std::string&() const { return m_Text; }
    bool IsEmpty() const { return m_Text.empty(); }
    bool operator==(const CPath&) const = default;

    /// Adds a part, whose leading "\" don't count, behind one "\". An empty part changes nothing; into an
    /// empty path the part is taken as the whole. Returns the path itself.
    CPath& Append(const std::string& rPart);

    /// Drive and directory; empty if there is none.
    CPath GetDirectory() const;
    /// Name and extension.
    std::string GetFileName() const;
    /// Absolute form by the platform; empty if that is longer than 260 characters.
    CPath GetFullPath() const;
    bool IsDirectory() const;
    /// Exists, and is neither a directory nor a device.
    bool IsFile() const;
    /// Makes the directory with those above it, open to all users of the machine. True if it exists at the
    /// end.
    bool CreateDirectories() const;

private:
    std::string m_Text;
};
