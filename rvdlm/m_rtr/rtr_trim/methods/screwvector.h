#pragma once

/// A point or a direction in the plane of a ring of holes; grams or a unit vector.
struct CScrewVector {
    double x = 0.0;
    double y = 0.0;
};

inline double Cross(CScrewVector a, CScrewVector b) {
    return a.x * b.y - a.y * b.x;
}

inline double Dot(CScrewVector a, CScrewVector b) {
    return a.x * b.x + a.y * b.y;
}

inline CScrewVector Less(CScrewVector a, double Factor, CScrewVector b) {
    return {a.x - Factor * b.x, a.y - Factor * b.y};
}
