#pragma once
#include "platform/rvmdb/configurationfields.h"
#include "platform/rvmdb/matrixtext.h"

/// A value that the property can have, and that is another one than its default.
inline PreBalDB::CDirectSQL::CValue MakeOtherThanDefault(const PreBalDB::CProperty& rProperty) {
    using namespace PreBalDB;
    switch (rProperty.m_Type) {
        case PropertyType::eReal:
            return std::get<double>(rProperty.m_Default) + 0.3;
        case PropertyType::eText:
            return std::get<std::string>(rProperty.m_Default) + ", another";
        case PropertyType::eMatrix: {
            auto Matrix = *MatrixFromText(std::get<std::string>(rProperty.m_Default));
            for (std::uint32_t i = 0; i < Matrix.RowNo(); ++i) {
                for (std::uint32_t j = 0; j < Matrix.ColNo(); ++j) {
                    Matrix(i, j) = 0.1 + i + 0.01 * j;
                }
            }
            return MatrixToText(Matrix);
        }
        default:
            break;
    }
    const std::int64_t Default = std::get<std::int64_t>(rProperty.m_Default);
    return rProperty.m_Type == PropertyType::eChoice || Default == 255 ? std::int64_t{Default != 1}
                                                                       : Default + 1;
}
