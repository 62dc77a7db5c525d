#pragma once
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace math {

/// Misuse of a matrix, or the inversion of a singular one.
class matrix_error : public std::logic_error {
public:
    using std::logic_error::logic_error;
};

/// Dense matrix with copy-on-write: copies share their elements until one of them is written. At most 4 by 4
/// in this system. Whether a write must clone is told by the count of sharers, so a matrix and its copies
/// belong to one thread.
///
/// A complex number x + iy is held as the 2-by-1 vector (x, y) or, as a factor, as the 2-by-2 block
/// [[x, -y], [y, x]]: a matrix product then is a complex product.
template <typename T>
class matrix {
public:
    /// 6 by 6, elements not initialised; SetSize brings it to the size wanted.
    matrix() : matrix(6, 6) {}
    /// Elements not initialised.
    matrix(std::uint32_t Rows, std::uint32_t Columns) : m_pRep(std::make_shared<CRep>(Rows, Columns)) {}
    /// Copies share; there are no moves, since a matrix that was moved from would have no elements to size.
    matrix(const matrix&) = default;
    matrix& operator=(const matrix&) = default;
    ~matrix() = default;

    std::uint32_t RowNo() const { return m_pRep->RowCount; }
    std::uint32_t ColNo() const { return m_pRep->ColumnCount; }

    /// Writable element; throws matrix_error out of range.
    T& operator()(std::uint32_t Row, std::uint32_t Column) {
        CheckIndex(Row, Column);
        MakeExclusive();
        return m_pRep->Rows[Row][Column];
    }
    /// Value of an element; throws matrix_error out of range. Never clones.
    T operator()(std::uint32_t Row, std::uint32_t Column) const {
        CheckIndex(Row, Column);
        return m_pRep->Rows[Row][Column];
    }

    /// Makes the matrix Rows by Columns. The overlapping top left part stays, what is new is 0.
    void SetSize(std::uint32_t Rows, std::uint32_t Columns) {
        const std::uint32_t OldRows = m_pRep->RowCount;
        const std::uint32_t OldColumns = m_pRep->ColumnCount;
        const bool bSameSize = Rows == OldRows && Columns == OldColumns;
        const bool bFits = Rows == m_pRep->AllocatedRows && Columns == m_pRep->AllocatedColumns;
        // Unit leaves more allocated than it uses. Growing back into that needs no new arrays, but only when
        // nobody shares them: a clone has no more than what is in use.
        if (!bFits || (!bSameSize && IsShared())) {
            m_pRep = std::make_shared<CRep>(Rows, Columns, *m_pRep);
        }
        m_pRep->RowCount = Rows;
        m_pRep->ColumnCount = Columns;
        for (std::uint32_t i = 0; i < Rows; ++i) {
            for (std::uint32_t j = i < OldRows ? OldColumns : 0; j < Columns; ++j) {
                m_pRep->Rows[i][j] = T(0);
            }
        }
    }

    /// All elements 0.
    void Null() {
        MakeExclusive();
        for (std::uint32_t i = 0; i < RowNo(); ++i) {
            std::fill_n(m_pRep->Rows[i].get(), ColNo(), T(0));
        }
    }

    /// Square of the smaller of the two sizes, 1 on the diagonal and 0 elsewhere.
    void Unit() {
        MakeExclusive();
        const std::uint32_t Size = std::min(RowNo(), ColNo());
        m_pRep->RowCount = Size;
        m_pRep->ColumnCount = Size;
        for (std::uint32_t i = 0; i < Size; ++i) {
            for (std::uint32_t j = 0; j < Size; ++j) {
                m_pRep->Rows[i][j] = i == j ? T(1) : T(0);
            }
        }
    }

    matrix& operator-=(const matrix& rOther) {
        if (RowNo() != rOther.RowNo() || ColNo() != rOther.ColNo()) {
            throw matrix_error("matrixT::operator-= : Inconsistent matrix sizes in subtraction!");
        }
        MakeExclusive();
        for (std::uint32_t i = 0; i < RowNo(); ++i) {
            for (std::uint32_t j = 0; j < ColNo(); ++j) {
                m_pRep->Rows[i][j] -= rOther.m_pRep->Rows[i][j];
            }
        }
        return *this;
    }

    matrix& operator*=(const matrix& rOther) {
        if (ColNo() != rOther.RowNo()) {
            throw matrix_error("matrixT::operator*= : Inconsistent matrix sizes in multiplication!");
        }
        matrix Product(RowNo(), rOther.ColNo());
        for (std::uint32_t i = 0; i < RowNo(); ++i) {
            for (std::uint32_t j = 0; j < rOther.ColNo(); ++j) {
                T Sum = T(0);
                for (std::uint32_t k = 0; k < ColNo(); ++k) {
                    Sum += m_pRep->Rows[i][k] * rOther.m_pRep->Rows[k][j];
                }
                Product.m_pRep->Rows[i][j] = Sum;
            }
        }
        std::swap(m_pRep, Product.m_pRep);
        return *this;
    }

    friend matrix operator-(const matrix& rLeft, const matrix& rRight) {
        matrix Result(rLeft);
        Result -= rRight;
        return Result;
    }
    friend matrix operator*(const matrix& rLeft, const matrix& rRight) {
        matrix Result(rLeft);
        Result *= rRight;
        return Result;
    }
    /// Each element with its sign bit flipped: 0.0 becomes -0.0.
    matrix operator-() const {
        matrix Result(RowNo(), ColNo());
        for (std::uint32_t i = 0; i < RowNo(); ++i) {
            for (std::uint32_t j = 0; j < ColNo(); ++j) {
                Result.m_pRep->Rows[i][j] = -m_pRep->Rows[i][j];
            }
        }
        return Result;
    }
    /// Same size and every pair of elements exactly equal; no tolerance.
    friend bool operator==(const matrix& rLeft, const matrix& rRight) {
        if (rLeft.RowNo() != rRight.RowNo() || rLeft.ColNo() != rRight.ColNo()) {
            return false;
        }
        for (std::uint32_t i = 0; i < rLeft.RowNo(); ++i) {
            for (std::uint32_t j = 0; j < rLeft.ColNo(); ++j) {
                if (!(rLeft.m_pRep->Rows[i][j] == rRight.m_pRep->Rows[i][j])) {
                    return false;
                }
            }
        }
        return true;
    }

    /// The inverse, by Gauss-Jordan elimination with partial pivoting. Consumes the receiver: it ends as the
    /// unit matrix, so apply it to a local copy. Throws matrix_error when not square or when a column has no
    /// pivot but an exact zero.
    matrix operator!() {
        if (RowNo() != ColNo()) {
            throw matrix_error("matrixT::operator!: Inversion of a non-square matrix");
        }
        const std::uint32_t Size = RowNo();
        matrix Result(Size, Size);
        MakeExclusive();
        Result.Unit();
        auto& a = m_pRep->Rows;
        auto& b = Result.m_pRep->Rows;
        for (std::uint32_t k = 0; k < Size; ++k) {
            const int p = Pivot(k);
            if (p == -1) {
                throw matrix_error("matrixT::operator!: Inversion of a singular matrix");
            }
            if (p != 0) {
                std::swap(b[k], b[static_cast<std::size_t>(p)]);
            }
            const T a1 = a[k][k];
            for (std::uint32_t j = 0; j < Size; ++j) {
                a[k][j] /= a1;
                b[k][j] /= a1;
            }
            for (std::uint32_t i = 0; i < Size; ++i) {
                if (i == k) {
                    continue;
                }
                const T a2 = a[i][k];
                for (std::uint32_t j = 0; j < Size; ++j) {
                    a[i][j] -= a[k][j] * a2;
                    b[i][j] -= b[k][j] * a2;
                }
            }
        }
        return Result;
    }

    /// The determinant, by Gaussian elimination on a copy; 1 for a matrix without rows.
    T Det() const {
        if (RowNo() != ColNo()) {
            throw matrix_error("matrixT::Det(): Determinant a non-square matrix!");
        }
        matrix Copy(*this);
        Copy.MakeExclusive();
        auto& a = Copy.m_pRep->Rows;
        T Result = T(1);
        for (std::uint32_t k = 0; k < RowNo(); ++k) {
            const int p = Copy.Pivot(k);
            if (p == -1) {
                return T(0);
            }
            if (p != 0) {
                Result = -Result;
            }
            Result *= a[k][k];
            for (std::uint32_t i = k + 1; i < RowNo(); ++i) {
                const T f = a[i][k] / a[k][k];
                // Column k below the diagonal isn't read again, so it isn't cleared.
                for (std::uint32_t j = k + 1; j < RowNo(); ++j) {
                    a[i][j] -= f * a[k][j];
                }
            }
        }
        return Result;
    }

    /// Frobenius norm: the root of the sum of all squares.
    T Norm() const {
        T Sum = T(0);
        for (std::uint32_t i = 0; i < RowNo(); ++i) {
            for (std::uint32_t j = 0; j < ColNo(); ++j) {
                Sum += m_pRep->Rows[i][j] * m_pRep->Rows[i][j];
            }
        }
        return std::sqrt(Sum);
    }

private:
    /// The elements. Every row is an array of its own, so that rows are swapped by swapping pointers.
    struct CRep {
        CRep(std::uint32_t nRows, std::uint32_t nColumns)
            : Rows(nRows),
              RowCount(nRows),
              ColumnCount(nColumns),
              AllocatedRows(nRows),
              AllocatedColumns(nColumns) {
            for (auto& rRow : Rows) {
                rRow = std::make_unique_for_overwrite<T[]>(nColumns);
            }
        }
        CRep(std::uint32_t nRows, std::uint32_t nColumns, const CRep& rSource) : CRep(nRows, nColumns) {
            const std::uint32_t nCopy = std::min(nColumns, rSource.ColumnCount);
            for (std::uint32_t i = 0; i < std::min(nRows, rSource.RowCount); ++i) {
                std::copy_n(rSource.Rows[i].get(), nCopy, Rows[i].get());
            }
        }

        std::vector<std::unique_ptr<T[]>> Rows;
        std::uint32_t RowCount;  ///< in use; Unit makes it smaller than what is allocated
        std::uint32_t ColumnCount;
        std::uint32_t AllocatedRows;
        std::uint32_t AllocatedColumns;
    };

    bool IsShared() const { return m_pRep.use_count() > 1; }
    void MakeExclusive() {
        if (IsShared()) {
            m_pRep = std::make_shared<CRep>(RowNo(), ColNo(), *m_pRep);
        }
    }
    void CheckIndex(std::uint32_t Row, std::uint32_t Column) const {
        if (Row >= m_pRep->RowCount || Column >= m_pRep->ColumnCount) {
            throw matrix_error("matrixT::operator(): Index out of range!");
        }
    }
    /// Brings the largest element of the column at and below Row to Row, the first of equals. -1: only exact
    /// zeros there; 0: nothing swapped; else the row it came from (always above Row, so never 0).
    int Pivot(std::uint32_t Row) {
        auto& a = m_pRep->Rows;
        T Best = T(-1);
        std::uint32_t k = Row;
        for (std::uint32_t i = Row; i < RowNo(); ++i) {
            const T v = std::abs(a[i][Row]);
            if (v > Best && v != T(0)) {
                Best = v;
                k = i;
            }
        }
        if (a[k][Row] == T(0)) {
            return -1;
        }
        if (k == Row) {
            return 0;
        }
        std::swap(a[k], a[Row]);
        return static_cast<int>(k);
    }

    std::shared_ptr<CRep> m_pRep;  ///< counts the sharers
};

}  // namespace math
