#include "console/trainingticks.h"

#include <fstream>
#include <nlohmann/json.hpp>
#include <utility>

#include "console/trainingsituations.h"
#include "platform/system/files.h"

namespace fs = std::filesystem;
using nlohmann::json;

CTrainingTicks::CTrainingTicks(fs::path File) : m_File(std::move(File)) {
    std::ifstream In(m_File);
    if (!In) {
        return;
    }
    try {
        const json Mastered = json::parse(In).at("mastered");
        m_Mastered = Mastered.get<std::set<std::string>>();
    } catch (const json::exception&) {
        fs::path Kept = m_File;
        Kept += ".unreadable";
        std::error_code Ignored;
        fs::rename(m_File, Kept, Ignored);
    }
}

bool CTrainingTicks::Add(const std::string& rId) {
    m_Mastered.insert(rId);
    const std::string Written = json{{"mastered", m_Mastered}}.dump(2) + "\n";
    return Files::WriteAll(m_File.string(), {Written.begin(), Written.end()});
}

std::size_t CTrainingTicks::FindFirstOpen() const {
    const auto Situations = GetTrainingSituations();
    for (std::size_t i = 0; i < Situations.size(); ++i) {
        if (!Has(Situations[i].m_pId)) {
            return i;
        }
    }
    return 0;
}
