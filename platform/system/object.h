#pragma once

class CArchive;

/// Base of objects that can be written to an archive and read from one.
class CObject {
public:
    virtual ~CObject() = default;
    /// Name of the class at run time.
    virtual const char* GetRuntimeClass() const { return "CObject"; }
    /// Reads or writes, according to the direction of the archive.
    virtual void Serialize(CArchive&) {}

protected:
    CObject() = default;
    CObject(const CObject&) = default;
    CObject& operator=(const CObject&) = default;
};
