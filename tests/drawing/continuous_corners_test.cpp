#include "drawing/continuous_corners.h"

#include <gtest/gtest.h>

#include <QPainterPath>
#include <cmath>

namespace brisklet {

namespace {

TEST(ContinuousCorners, theCurvatureOfTheOutlineNeverJumps) {
  constexpr int samples = 4000;
  for (const auto& [width, height, corner] : {std::array{354.0, 76.0, 28.0}, std::array{38.0, 38.0, 10.0},
                                              std::array{390.0, 844.0, 44.0}, std::array{58.0, 58.0, 29.0}}) {
    const double radius = corner;  // which a lambda may capture
    const QPainterPath path = continuousRoundedRect({0, 0, width, height}, radius);
    const double step = path.length() / samples;
    // The turn from one sample to the next, times the radius.
    const auto curvature = [&](int i) {
      const auto angle = [&](int at) { return path.angleAtPercent((at % samples + 0.5) / samples); };
      return std::remainder(angle(i) - angle(i + 1), 360) * M_PI / 180 / step * radius;
    };
    for (int i = 0; i < samples; ++i) {
      EXPECT_GE(curvature(i), -0.01) << width << " x " << height << " at " << i;
      EXPECT_NEAR(curvature(i), curvature(i + 1), 0.25) << width << " x " << height << " at " << i;
    }
  }
}

TEST(ContinuousCorners, aSquareOfTwiceTheRadiusIsACircle) {
  for (const double radius : {29.0, 500.0})
    for (double share = 0; share < 1; share += 0.01) {
      const QPointF at = continuousRoundedRect({0, 0, 58, 58}, radius).pointAtPercent(share);
      EXPECT_NEAR(std::hypot(at.x() - 29, at.y() - 29), 29, 0.01);
    }
}

}  // namespace

}  // namespace brisklet
