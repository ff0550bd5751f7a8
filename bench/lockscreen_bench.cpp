#include <benchmark/benchmark.h>

#include <QGuiApplication>

#include "lockscreen/lock_screen_view.h"
#include "model/catalogue.h"

namespace brisklet {
namespace {

/// Six pings of the catalogue's apps; the finished stack shows five.
SequenceDocument sixPings() {
  SequenceDocument document = SequenceDocument::blank();
  for (int i = 0; i < 6; ++i) {
    const AppPreset& app = AppPreset::all().at(i % AppPreset::all().size());
    document.notifications.append({QString::number(i),
                                   app.id,
                                   app.label,
                                   app.icon,
                                   app.color,
                                   PingType::defaultSender(app.id),
                                   PingType::types(app.id).first().message,
                                   i * 700.0,
                                   {}});
  }
  return document;
}

/// A movie frame whose cards changed since the one before.
void movieFrame(benchmark::State& state) {
  const SequenceDocument document = sixPings();
  SequencePlayer player(document);
  LockScreenCache cache;
  bool last = false;
  for (auto _ : state) {
    player.setElapsedMs(last ? 2800 : 3500);
    last = !last;
    benchmark::DoNotOptimize(captureFrame({document, player, CaptureMode::Capture}, cache));
  }
}
BENCHMARK(movieFrame)->Unit(benchmark::kMillisecond);

/// A frame of the stage at two pixels a point, in the default window, while a card arrives and one leaves.
void liveFrame(benchmark::State& state) {
  const SequenceDocument document = sixPings();
  SequencePlayer player(document);
  const LockScreenView view{document, player, CaptureMode::Live};
  const double scale = 2 * 727.0 / LockScreenMetrics::canvasHeight;
  QImage stage(672, 1454, QImage::Format_ARGB32_Premultiplied);
  QPainter painter(&stage);
  painter.scale(scale, scale);
  LockScreenCache cache;
  CardStackAnimation animation;
  double nowMs = 0;
  for (auto _ : state) {
    if (animation.settled(nowMs)) {
      player.setElapsedMs(2800);
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
  const SequenceDocument document = sixPings();
  SequencePlayer player(document);
  const LockScreenView view{document, player, CaptureMode::Live};
  QImage stage(672, 1454, QImage::Format_ARGB32_Premultiplied);
  QPainter painter(&stage);
  painter.scale(1.72, 1.72);
  LockScreenCache cache;
  for (auto _ : state) view.paint(painter, cache);
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
