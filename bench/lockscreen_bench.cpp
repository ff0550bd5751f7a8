#include "lockscreen/lock_screen_view.h"
#include "ping_scene.h"

#include <benchmark/benchmark.h>

#include <QGuiApplication>

namespace brisklet {
namespace {

/// The finished stack shows five of them, the last two from these times on.
const SequenceDocument sixPings = pingScene(6, 700);
constexpr double fifthMs = 3500;
constexpr double sixthMs = 4200;

/// A movie frame whose cards changed since the one before.
void movieFrame(benchmark::State& state) {
  SequencePlayer player(sixPings);
  LockScreenCache cache;
  bool last = false;
  const auto nextFrame = [&] {
    player.setElapsedMs(last ? fifthMs : sixthMs);
    last = !last;
    return captureFrame({sixPings, player, Rendering::Movie}, cache);
  };
  nextFrame();  // with what is made once
  for (auto _ : state) benchmark::DoNotOptimize(nextFrame());
}
BENCHMARK(movieFrame)->Unit(benchmark::kMillisecond);

/// A frame of the stage at two pixels a point, in the default window, while a card arrives and one leaves.
void liveFrame(benchmark::State& state) {
  SequencePlayer player(sixPings);
  const LockScreenView view{sixPings, player, Rendering::Live};
  const double scale = 2 * 727.0 / LockScreenMetrics::canvasHeight;
  QImage stage(672, 1454, QImage::Format_ARGB32_Premultiplied);
  QPainter painter(&stage);
  painter.scale(scale, scale);
  LockScreenCache cache;
  CardStackAnimation animation;
  double nowMs = 0;
  for (auto _ : state) {
    if (animation.settled(nowMs)) {
      player.setElapsedMs(fifthMs);
      animation.reset(view.visiblePings());
      player.setElapsedMs(SequencePlayer::finishedMs);
      animation.update(view.visiblePings(), nowMs);
    }
    nowMs += 1000.0 / 60;
    view.paint(painter, cache, animation.cards(nowMs));
  }
}
BENCHMARK(liveFrame)->Unit(benchmark::kMillisecond);

/// The stage when nothing changed.
void idleFrame(benchmark::State& state) {
  SequencePlayer player(sixPings);
  const LockScreenView view{sixPings, player, Rendering::Live};
  QImage stage(672, 1454, QImage::Format_ARGB32_Premultiplied);
  QPainter painter(&stage);
  painter.scale(1.72, 1.72);
  LockScreenCache cache;
  for (auto _ : state) view.paint(painter, cache, view.restingCards());
}
BENCHMARK(idleFrame)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace brisklet

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QGuiApplication application(argc, argv);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
