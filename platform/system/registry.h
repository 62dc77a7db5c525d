#pragma once
#include <cstdint>
#include <optional>
#include <string>

// Stand-in for a registry: a key-value file. Its path is the environment's CORVANE_REGISTRY, else
// /etc/corvane/registry.ini. A section is a key's full name, "[HKEY_LOCAL_MACHINE\Software\...]"; the value
// named "@" is the key's default value. Numbers are written "dword:0000001a".
namespace Registry {

enum class Root { eClassesRoot, eLocalMachine };
enum class Access { eQuery, eAll };

/// A key that is open; 0 is none.
using Key = std::uint32_t;

/// Opens Name under Parent (0: under the root itself). With Access::eAll a missing key is made. 0 on failure.
Key OpenKey(Root RootKey, Key Parent, const std::string& rName, Access Wanted);
void CloseKey(Key Handle);
/// A value as text; an empty name reads the key's default value. Nothing if it is absent.
std::optional<std::string> GetText(Key Handle, const std::string& rName);
/// A value that fits 4 bytes as a number ("dword:" or a decimal number); nothing if absent or of another
/// form.
std::optional<std::uint32_t> GetNumber(Key Handle, const std::string& rName);

}  // namespace Registry
