#pragma once
// The dump of a matrix: what an engineer reads when a calibration looks wrong.
#include <cstdint>

#include "platform/rvlog/log.h"
#include "rvlib/math/matrix.h"

namespace math {

/// Topic that matrices are dumped under.
constexpr std::uint32_t MATRIX_TOPIC = 0x1000;
constexpr const char* MATRIX_TOPIC_NAME = "PbMath";

/// One line a row: the name and " =" before row 0, blanks of the same width before the others, then the
/// elements between bars. Nothing without a publisher or with the topic off. LOG_MATRIX hands the place of
/// the call on.
void LogMatrix(CLogComponent* pPublisher, const char* pFile, int Line, const char* pFunction,
               const char* pName, const matrix<double>& rMatrix);

}  // namespace math

#define LOG_MATRIX(pPublisher, pName, rMatrix) \
    math::LogMatrix((pPublisher), __FILE__, __LINE__, __func__, (pName), (rMatrix))
