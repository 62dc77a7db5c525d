#include "console/servicebundle.h"

#include <QString>
#include <QSysInfo>
#include <array>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "console/tarfile.h"
#include "platform/system/temporarydirectory.h"
#include "platform/system/version.h"

namespace {

namespace fs = std::filesystem;
using nlohmann::json;

void CopyFile(const fs::path& rFrom, const fs::path& rTo) {
    std::error_code Error;
    if (!fs::is_regular_file(rFrom, Error)) {
        return;
    }
    fs::create_directories(rTo.parent_path());
    fs::copy_file(rFrom, rTo, fs::copy_options::overwrite_existing);
}

/// Only what is known to be harmless: a field of a later version may be a secret.
void CopyOpcConfiguration(const fs::path& rFrom, const fs::path& rTo) {
    std::ifstream In(rFrom);
    if (!In) {
        return;
    }
    const json Original = json::parse(In, nullptr, false);
    json Shown = json::object();
    for (const char* const pField : {"server", "security", "fingerprint", "items"}) {
        if (Original.is_object() && Original.contains(pField)) {
            Shown[pField] = Original[pField];
        }
    }
    std::ofstream(rTo) << Shown.dump(2, ' ', false, json::error_handler_t::replace) << "\n";
}

void Gather(const CServiceSources& rSources, const fs::path& rTo) {
    fs::create_directories(rTo / "cnf");
    for (const char* const pName : {"mcon.xdb", "speedctrl.ini", "vorwuchttemp.txt"}) {
        CopyFile(rSources.m_Root / "cnf" / pName, rTo / "cnf" / pName);
    }
    CopyOpcConfiguration(rSources.m_Root / "cnf" / "opc.json", rTo / "cnf" / "opc.json");
    std::error_code Error;
    for (const fs::directory_entry& rEntry : fs::directory_iterator(rSources.m_Root / "log", Error)) {
        CopyFile(rEntry.path(), rTo / "log" / rEntry.path().filename());
    }
    if (!rSources.m_Store.empty()) {
        // What was written last may still stand in the files beside it.
        for (const char* const pEnd : {"", "-wal", "-shm"}) {
            const fs::path File = rSources.m_Store.string() + pEnd;
            CopyFile(File, rTo / "store" / File.filename());
        }
    }
    for (std::size_t i = 0; i < rSources.m_Reports.size(); ++i) {
        CopyFile(rSources.m_Reports[i],
                 rTo / "reports" / std::to_string(i + 1) / rSources.m_Reports[i].filename());
    }
    std::ofstream(rTo / "about.txt") << "console " << GetProjectVersion() << "\nsystem "
                                     << QSysInfo::prettyProductName().toStdString() << "\nQt " << qVersion()
                                     << "\n";
}

}  // namespace

std::string MakeServiceBundle(const CServiceSources& rSources, const fs::path& rFile) {
    try {
        const CTemporaryDirectory Directory;
        const fs::path Contents = Directory.GetPath() / rFile.stem().stem();
        Gather(rSources, Contents);
        return TarFile::Pack(Contents, rFile);
    } catch (const std::exception& rError) {
        return rError.what();
    }
}
