#include "platform/system/environment.h"

#include <cstdlib>
#include <string_view>

namespace {

std::string ReadVariable(const std::string& rName, std::size_t nBuffer) {
    const char* const pValue = std::getenv(rName.c_str());
    // The buffer also holds the terminator.
    if ((pValue == nullptr) || (std::string_view(pValue).size() >= nBuffer)) {
        return {};
    }
    return pValue;
}

/// Where the desktop conventions place the data of a user's programs. A service without a home keeps its data
/// where the system's services do.
std::string GetDataDirectory(std::size_t nBuffer) {
    std::string Data = ReadVariable("XDG_DATA_HOME", nBuffer);
    if (Data.starts_with('/')) {
        return Data;
    }
    const std::string Home = ReadVariable("HOME", nBuffer);
    return Home.empty() ? "/var/lib" : Home + "/.local/share";
}

}  // namespace

std::string GetEnvironment(const std::string& rName, std::size_t nBuffer) {
    std::string Value = ReadVariable(rName, nBuffer);
    if (Value.empty() && (rName == "ALLUSERSPROFILE")) {
        return GetDataDirectory(nBuffer);
    }
    return Value;
}
