#include "platform/rvmdb/matrixtext.h"

#include <array>
#include <charconv>
#include <cstdint>
#include <string_view>

namespace PreBalDB {

namespace {

/// Far above any matrix of this system; keeps a damaged text from asking for memory.
constexpr std::uint32_t MAX_SIZE = 64;

/// Takes Text's beginning if it is Expected.
bool Take(std::string_view& rText, std::string_view Expected) {
    if (!rText.starts_with(Expected)) {
        return false;
    }
    rText.remove_prefix(Expected.size());
    return true;
}

template <typename T>
bool TakeNumber(std::string_view& rText, T& rNumber) {
    const auto [pEnd, Error] = std::from_chars(rText.data(), rText.data() + rText.size(), rNumber);
    if (Error != std::errc()) {
        return false;
    }
    rText.remove_prefix(static_cast<std::size_t>(pEnd - rText.data()));
    return true;
}

}  // namespace

std::string MatrixToText(const math::matrix<double>& rMatrix) {
    std::string Text = std::to_string(rMatrix.RowNo()) + "x" + std::to_string(rMatrix.ColNo()) + ":";
    for (std::uint32_t i = 0; i < rMatrix.RowNo(); ++i) {
        Text += i == 0 ? "" : ";";
        for (std::uint32_t j = 0; j < rMatrix.ColNo(); ++j) {
            std::array<char, 32> Number{};
            const auto Result = std::to_chars(Number.data(), Number.data() + Number.size(), rMatrix(i, j));
            Text += ' ';
            Text.append(Number.data(), Result.ptr);
        }
    }
    return Text;
}

std::optional<math::matrix<double>> MatrixFromText(const std::string& rText) {
    std::string_view Text = rText;
    std::uint32_t nRows = 0;
    std::uint32_t nColumns = 0;
    if (!TakeNumber(Text, nRows) || !Take(Text, "x") || !TakeNumber(Text, nColumns) || !Take(Text, ":") ||
        nRows > MAX_SIZE || nColumns > MAX_SIZE) {
        return std::nullopt;
    }
    math::matrix<double> Matrix(nRows, nColumns);
    for (std::uint32_t i = 0; i < nRows; ++i) {
        if (i != 0 && !Take(Text, ";")) {
            return std::nullopt;
        }
        for (std::uint32_t j = 0; j < nColumns; ++j) {
            double Element = 0.0;
            if (!Take(Text, " ") || !TakeNumber(Text, Element)) {
                return std::nullopt;
            }
            Matrix(i, j) = Element;
        }
    }
    if (!Text.empty()) {
        return std::nullopt;
    }
    return Matrix;
}

}  // namespace PreBalDB
