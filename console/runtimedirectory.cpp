#include "console/runtimedirectory.h"

#include <QString>

std::unique_ptr<CTemporaryDirectory> ProvideRuntimeDirectory() {
    if (!qEnvironmentVariableIsEmpty("XDG_RUNTIME_DIR")) {
        CTemporaryDirectory::RemoveLeftovers(qEnvironmentVariable("XDG_RUNTIME_DIR").toStdString());
        return nullptr;
    }
    auto pDirectory = std::make_unique<CTemporaryDirectory>();
    qputenv("XDG_RUNTIME_DIR", pDirectory->GetPath().c_str());
    return pDirectory;
}
