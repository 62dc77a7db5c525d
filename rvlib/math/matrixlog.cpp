#include "rvlib/math/matrixlog.h"

#include <array>
#include <cstdio>
#include <string>

namespace math {

void LogMatrix(CLogComponent* pPublisher, const char* pFile, int Line, const char* pFunction,
               const char* pName, const matrix<double>& rMatrix) {
    if (pPublisher == nullptr || (pPublisher->GetLevel() & MATRIX_TOPIC) == 0) {
        return;
    }
    const std::string Name(pName);
    for (std::uint32_t i = 0; i < rMatrix.RowNo(); ++i) {
        std::string Text = i == 0 ? Name + " =" : "  " + std::string(Name.size(), ' ');
        Text += " |";
        for (std::uint32_t j = 0; j < rMatrix.ColNo(); ++j) {
            // Room for the longest double: 309 digits, sign, point and 4 decimals.
            std::array<char, 320> Element{};
            std::snprintf(Element.data(), Element.size(), "%10.4lf  ", rMatrix(i, j));
            Text += Element.data();
        }
        Text += "|";
        pPublisher->Log(pFile, Line, pFunction, MATRIX_TOPIC, MATRIX_TOPIC_NAME, "%s", Text.c_str());
    }
}

}  // namespace math
