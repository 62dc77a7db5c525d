#pragma once
#include <cstdint>

namespace PreBalDB {

/// Why the store didn't do what it was asked, as far as people can do something about it.
enum class StoreFailure : std::uint8_t {
    eOther,
    eFull,         ///< no room on the disk
    eReadOnly,     ///< file or directory may not be written
    eLocked,       ///< another program holds it
    eUnreachable,  ///< no connection to the server
    eNoAnswer,     ///< nothing came back in time
    eRefused       ///< what was to be written can't be: a name or value that is wrong
};

}  // namespace PreBalDB
