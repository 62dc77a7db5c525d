#pragma once
#include <gtest/gtest.h>

#include <QProcess>
#include <string>

#include "platform/qt/qteventloop.h"
#include "tests/support/tempdirectory.h"
#include "tests/support/testpaths.h"

/// What a command has done.
struct CDone {
    int m_Status = -1;
    std::string m_Output;
    std::string m_Errors;
};

/// Commands as scripts call them, in an installation of their own.
class CCommandsTestBase : public testing::Test {
protected:
    static constexpr int TIMEOUT = 120000;

    CDone Run(const QStringList& rArguments) const {
        QProcess Process;
        QProcessEnvironment Environment = QProcessEnvironment::systemEnvironment();
        Environment.insert("XDG_DATA_HOME", QString::fromStdString(m_Directory.At("data")));
        Environment.remove("CORVANE_DATABASE");
        Process.setProcessEnvironment(Environment);
        Process.setStandardInputFile(QProcess::nullDevice());
        Process.start(QString::fromStdString(TestProgram("console")),
                      rArguments + QStringList{"--config-dir", QString::fromStdString(m_Directory.At("root")),
                                               "--language", m_Language});
        if (!Process.waitForFinished(TIMEOUT)) {
            Process.kill();
            Process.waitForFinished();
            return {};
        }
        return {Process.exitStatus() == QProcess::NormalExit ? Process.exitCode() : -1,
                Process.readAllStandardOutput().toStdString(), Process.readAllStandardError().toStdString()};
    }
    void Balance(const QString& rRotor) const {
        ASSERT_EQ(Run({"--headless", "--rotor-name", rRotor}).m_Status, 0);
    }
    QString At(const char* pName) const { return QString::fromStdString(m_Directory.At(pName)); }

    QString m_Language = "en";
    const CQtEventLoop m_Loop;
    const CTempDirectory m_Directory;
};
