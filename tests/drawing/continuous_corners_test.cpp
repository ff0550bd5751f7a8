#include "drawing/continuous_corners.h"

#include <gtest/gtest.h>

#include <QPainterPath>
#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace brisklet {

namespace {

struct Shape {
  double width, height, radius;
};

constexpr std::array shapes{Shape{354, 76, 28}, Shape{38, 38, 10}, Shape{390, 844, 44},
                            Shape{134, 5, 2.5}, Shape{58, 58, 29}, Shape{100, 60, 28}};

struct Sample {
  QPointF at;
  double curvature;  // times the radius, positive to the inside
};

/// Samples along the outline; straight parts have their two ends.
std::vector<Sample> outline(const QPainterPath& path, double radius) {
  std::vector<Sample> samples;
  QPointF at;
  for (int i = 0; i < path.elementCount(); ++i) {
    const QPainterPath::Element element = path.elementAt(i);
    if (element.type != QPainterPath::CurveToElement) {
      const QPointF next = element;
      if (element.type == QPainterPath::LineToElement && next != at)
        samples.insert(samples.end(), {{at, 0}, {next, 0}});
      at = next;
      continue;
    }
    const QPointF b = element, c = path.elementAt(i + 1), d = path.elementAt(i + 2);
    for (int step = 0; step <= 64; ++step) {
      const double t = step / 64.0, s = 1 - t;
      const QPointF place = s * s * s * at + 3 * s * s * t * b + 3 * s * t * t * c + t * t * t * d;
      const QPointF first = 3 * (s * s * (b - at) + 2 * s * t * (c - b) + t * t * (d - c));
      const QPointF second = 6 * (s * (c - 2 * b + at) + t * (d - 2 * c + b));
      const double speed = std::hypot(first.x(), first.y());
      samples.push_back(
          {place, radius * (first.x() * second.y() - first.y() * second.x()) / std::pow(speed, 3)});
    }
    at = d;
    i += 2;
  }
  return samples;
}

TEST(ContinuousCorners, theCurvatureOfTheOutlineNeverJumps) {
  for (const Shape& shape : shapes) {
    const auto samples =
        outline(continuousRoundedRect({0, 0, shape.width, shape.height}, shape.radius), shape.radius);
    for (std::size_t i = 0; i < samples.size(); ++i) {
      const double next = samples[(i + 1) % samples.size()].curvature;
      EXPECT_NEAR(samples[i].curvature, next, 0.06) << shape.width << " x " << shape.height << " at " << i;
      EXPECT_GE(samples[i].curvature, -1e-6) << shape.width << " x " << shape.height;
    }
  }
}

TEST(ContinuousCorners, aSquareOfTwiceTheRadiusIsACircle) {
  for (const double radius : {29.0, 500.0})
    for (const Sample& sample : outline(continuousRoundedRect({0, 0, 58, 58}, radius), 29))
      EXPECT_NEAR(std::hypot(sample.at.x() - 29, sample.at.y() - 29), 29, 0.001);
}

TEST(ContinuousCorners, noRadiusGivesARectangleAndNoAreaGivesNoCurve) {
  EXPECT_TRUE(continuousRoundedRect({0, 0, 40, 20}, 0).contains(QPointF(0.01, 0.01)));
  EXPECT_TRUE(continuousRoundedRect({0, 0, 0, 20}, 5).boundingRect().isEmpty());
}

}  // namespace

}  // namespace brisklet
