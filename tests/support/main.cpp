// Entry point of every test program: Qt on its offscreen platform, so that pictures are what an operator
// would see, and English texts, whatever the machine's language.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <unistd.h>

#include <QApplication>
#include <QTemporaryDir>

#include "platform/rvldb/gettext.h"

namespace {

/// Temporary files in memory where the system has such a place: the tests make some hundred databases, each
/// of which would wait for the disk.
void ChooseTemporaryDirectory() {
    constexpr const char* MEMORY_DIRECTORY = "/dev/shm";
    if (!qEnvironmentVariableIsSet("TMPDIR") && access(MEMORY_DIRECTORY, W_OK | X_OK) == 0) {
        qputenv("TMPDIR", MEMORY_DIRECTORY);
    }
}

}  // namespace

int main(int argc, char** argv) {
    // A real display is for those who want to see the focus there:
    //   ROTOR_TRIM_TEST_PLATFORM=xcb xvfb-run platform_tests --gtest_filter='*Events*'
    qputenv("QT_QPA_PLATFORM", qEnvironmentVariable("ROTOR_TRIM_TEST_PLATFORM", "offscreen").toUtf8());
    QTemporaryDir RuntimeDirectory;
    if (qEnvironmentVariableIsEmpty("XDG_RUNTIME_DIR")) {
        qputenv("XDG_RUNTIME_DIR", RuntimeDirectory.path().toUtf8());
    }
    ChooseTemporaryDirectory();
    QApplication App(argc, argv);
    QApplication::setStyle("fusion");
    SetLanguage("en");
    testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
