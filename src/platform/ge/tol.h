#pragma once

#include "base/export.h"

// The tolerances of geometric comparisons. Two points are equal when they are at most equalPoint()
// drawing units apart. Two vectors are equal when their difference is at most equalVector() long;
// tests of direction compare unit vectors by the same measure.
class SG_API AcGeTol {
  public:
    constexpr AcGeTol() = default;

    constexpr double equalPoint() const { return m_equalPoint; }
    constexpr double equalVector() const { return m_equalVector; }
    constexpr void setEqualPoint(double value) { m_equalPoint = value; }
    constexpr void setEqualVector(double value) { m_equalVector = value; }

  private:
    double m_equalPoint = 1e-10;   // drawing units
    double m_equalVector = 1e-10;  // length of a difference of vectors
};

struct SG_API AcGeContext {
    // The tolerance of every comparison that is not given one. It never changes.
    static constexpr AcGeTol gTol{};
};
