#pragma once
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "tests/pictures/picturefile.h"
#include "tests/support/tempdirectory.h"

/// Where the pictures of a kind of scenes are stored.
inline std::filesystem::path GetStoredFolder(const std::string& rKind) {
    return std::filesystem::path(TEST_DATA_DIR) / "pictures" / ("stored-" + rKind);
}

/// Compares all pixels of a picture, whatever its scale, with those that are stored, and keeps both when they
/// differ; with ROTOR_TRIM_STORE_PICTURES set in the environment it stores them anew.
inline void ExpectAsStored(const CBitmap& rPicture, const std::string& rKind, const std::string& rName,
                           const std::string& rCaption) {
    const std::filesystem::path File = GetStoredFolder(rKind) / (rName + ".png");
    // A picture with more pixels than its size shows them all once it has gone through a file.
    const CTempDirectory Folder;
    const std::string Detour = (Folder.GetPath() / "picture.png").string();
    CBitmap Actual;
    ASSERT_TRUE(rPicture.SavePng(Detour) && Actual.LoadPng(Detour));
    if (std::getenv("ROTOR_TRIM_STORE_PICTURES") != nullptr) {
        std::filesystem::create_directories(File.parent_path());
        ASSERT_TRUE(SavePicture(Actual, File));
        GTEST_SKIP() << "stored";
    }
    CBitmap Stored;
    ASSERT_TRUE(Stored.LoadPng(File.string())) << File;
    const CPictureDifference Difference(Actual, Stored);
    if (!Difference.IsAlike()) {
        const std::filesystem::path Failed =
            std::filesystem::path(TEST_BIN_DIR).parent_path() / "failed_pictures";
        std::filesystem::create_directories(Failed);
        const std::string Base = (Failed / (rKind + "-" + rName)).string();
        Actual.SavePng(Base + ".png");
        Difference.m_Picture.SavePng(Base + ".difference.png");
        FAIL() << rCaption << ": " << Difference.ToText() << "; see " << Base << ".png and " << Base
               << ".difference.png";
    }
}
