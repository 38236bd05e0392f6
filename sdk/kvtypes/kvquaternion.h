#pragma once

/**
 * A unit quaternion (q0 the scalar part, q1 to q3 the vector part), or the empty
 * quaternion when the sample holds no orientation.
 */
class KvQuaternion
{
public:
    /** The empty quaternion. */
    KvQuaternion() = default;
    KvQuaternion(double q0, double q1, double q2, double q3)
        : components{q0, q1, q2, q3}
        , empty(false)
    { }

    bool isEmpty() const { return empty; }

    /** Component @p index, 0 to 3. */
    double at(int index) const { return components[index]; }
    double operator[](int index) const { return components[index]; }

private:
    double components[4] = {0.0, 0.0, 0.0, 0.0};
    bool empty = true;
};
