#pragma once

/// Keys of the link items, by which host and module speak of the NC's nodes. A plant's files hold them: never
/// rename.
namespace NcItems {

inline constexpr const char* REQUEST = "PreBalInterfaceFromNC";                ///< ncrequests.h
inline constexpr const char* NOTIFICATION = "PreBalInterfaceToNC";             ///< ncnotification.h
inline constexpr const char* WARNING = "PreBalInterfaceToNCWarnings";          ///< warnings.h
inline constexpr const char* TEST_WEIGHT = "PreBalInterfaceFromNcTestWeight";  ///< grams
inline constexpr const char* TARGET_UNBALANCE = "PreBalInterfaceFromNCTargetUnbalance";
inline constexpr const char* ROTATION_DIRECTION = "PreBalInterfaceFromNcRotationDirection";
/// A text: whose run this is. Not the module's: the host takes it for the archive.
inline constexpr const char* ROTOR_NAME = "PreBalInterfaceFromNcRotorName";
/// With "NC": deliberately another key than the direction's own. The module looks at this one when it decides
/// whether to connect; a link item configured for the one doesn't serve for the other.
inline constexpr const char* ROTATION_DIRECTION_CONNECTS = "PreBalInterfaceFromNCRotationDirection";

}  // namespace NcItems
