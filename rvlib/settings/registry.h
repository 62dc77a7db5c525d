#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "platform/system/object.h"
#include "platform/system/registry.h"

/// A key of the registry, opened level by level.
class CWKRegistry : public CObject {
public:
    CWKRegistry() = default;
    ~CWKRegistry() override { Close(); }
    CWKRegistry(const CWKRegistry&) = delete;
    CWKRegistry& operator=(const CWKRegistry&) = delete;

    /// Opens the levels of the path one under the other; with Access::eAll missing ones are made. Any
    /// character of rSeparators separates. False if a key is open already, or, with nothing left open, if a
    /// level fails or there is none.
    bool Open(Registry::Root RootKey, const std::string& rPath, Registry::Access Wanted,
              const std::string& rSeparators = "\\");
    /// Closes the keys of all levels.
    void Close();
    bool IsOpen() const { return m_Current != 0; }

    /// Text of a value of the current key; a null name reads the key's default value. False, with rValue
    /// unchanged, if it is absent.
    bool GetString(const char* pName, std::string& rValue) const;
    /// A value that fits 4 bytes. False, with rValue unchanged, if it is absent or of another form.
    bool GetNumber(const char* pName, std::uint32_t& rValue) const;

private:
    Registry::Key m_Current = 0;
    std::vector<Registry::Key> m_Keys;  ///< opened on the way to the current one, itself included
};
