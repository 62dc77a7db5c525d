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

    // What was asked for can't be, and never will: trying again is of no use.
    eRefused,      ///< a value that is wrong
    eNoName,       ///< a new name is empty, or nothing but white space
    eNameTooLong,  ///< a new name has more than LONGEST_NAME characters
    eNameNotText,  ///< a new name is no UTF-8
    eNameTaken,    ///< a new name is another one's
    eDefault,      ///< "Default" can't be deleted
    eInUse,        ///< what is to be deleted is used: CStoreOutcome::m_Users
    eMissing       ///< what is to be deleted isn't there
};

constexpr bool IsRefusal(StoreFailure Cause) {
    return Cause >= StoreFailure::eRefused;
}

/// Whether the server is away: it can't be reached, or has frozen.
constexpr bool IsAway(StoreFailure Cause) {
    return Cause == StoreFailure::eUnreachable || Cause == StoreFailure::eNoAnswer;
}

/// In characters, not in bytes.
constexpr int LONGEST_NAME = 60;

}  // namespace PreBalDB
