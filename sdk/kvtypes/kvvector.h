#pragma once

#include <QVector>

/**
 * A vector of doubles as the host hands out sample data: empty when the sample
 * does not hold the quantity, otherwise three elements (X, Y, Z) or two
 * (latitude, longitude).
 */
class KvVector
{
public:
    KvVector() = default;
    KvVector(std::initializer_list<double> values)
        : elements(values)
    { }

    /** True when the vector holds no elements: the sample lacks this data. */
    bool isEmpty() const { return elements.isEmpty(); }
    int size() const { return elements.size(); }

    /** Element @p index; the index must be below size(). */
    double at(int index) const { return elements.at(index); }
    double operator[](int index) const { return elements.at(index); }
    double &operator[](int index) { return elements[index]; }

private:
    QVector<double> elements;
};
