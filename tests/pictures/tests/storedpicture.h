#pragma once
#include <filesystem>
#include <string>
#include <vector>

#include "platform/window/bitmap.h"

/// Where the pictures of a kind of scenes are stored; those of the page have no kind.
std::filesystem::path GetStoredFolder(const std::string& rKind = "");

/// The running test fails if a name comes twice, or a picture of the folder has none of them.
void ExpectEachHasAScene(const std::filesystem::path& rFolder, const std::vector<std::string>& rNames);

/// The running test fails if the picture, with all pixels whatever its scale, isn't the one in rFile; both
/// are then left in failed_pictures/ of the build. Caption: what it shows. With ROTOR_TRIM_STORE_PICTURES set
/// it is stored there instead.
void ExpectLooksAsStored(const CBitmap& rPicture, const std::filesystem::path& rFile,
                         const std::string& rCaption);
