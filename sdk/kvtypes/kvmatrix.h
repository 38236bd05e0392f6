#pragma once

/**
 * A 3 x 3 matrix of doubles kept in row-major order, or the empty matrix when
 * the sample holds no orientation.
 */
class KvMatrix
{
public:
    /** The empty matrix. */
    KvMatrix() = default;
    /** A matrix from nine elements in row-major order. */
    explicit KvMatrix(const double (&rowMajor)[9])
        : empty(false)
    {
        for (int i = 0; i < 9; ++i)
            elements[i] = rowMajor[i];
    }

    bool isEmpty() const { return empty; }

    /** The element at @p row and @p column, both counted from 0. */
    double value(int row, int column) const { return elements[offset(row, column)]; }
    void setValue(int row, int column, double v)
    {
        elements[offset(row, column)] = v;
        empty = false;
    }

    /** Position of an element in the row-major storage. */
    static constexpr int offset(int row, int column) { return row * 3 + column; }
    double at(int offsetIndex) const { return elements[offsetIndex]; }

private:
    double elements[9] = {};
    bool empty = true;
};
