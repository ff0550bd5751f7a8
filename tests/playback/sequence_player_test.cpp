#include "playback/sequence_player.h"

#include "support/documents.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTest>

namespace brisklet {
namespace {

/// Whether a player plays, and its elapsed time.
using State = std::pair<bool, double>;
constexpr State finished{false, SequencePlayer::finishedMs};

/// A player whose time is set by hand; its run takes 2500 ms.
struct PlayerTest : testing::Test {
  double nowMs = 5000;
  SequencePlayer player{documentOf({700}), [this] { return nowMs; }};

  [[nodiscard]] State state() const { return {player.isPlaying(), player.elapsedMs()}; }
  State stateAfter(double ms) {
    nowMs += ms;
    player.tick();
    return state();
  }
};

TEST_F(PlayerTest, aRunMeasuresTheClockAndEndsFinished) {
  EXPECT_EQ(stateAfter(100), finished) << "as long as nothing was played";
  player.play();
  EXPECT_EQ(state(), State(true, 0));
  EXPECT_EQ(stateAfter(1234.5), State(true, 1234.5));
  player.setDocument(documentOf({1700}));  // moves the end of the next run
  EXPECT_EQ(stateAfter(1265), State(true, 2499.5));

  QList<double> seen;
  QObject::connect(&player, &SequencePlayer::elapsedMsChanged, [&] { seen.append(player.elapsedMs()); });
  EXPECT_EQ(stateAfter(0.5), finished);
  EXPECT_EQ(seen, (QList<double>{2500, SequencePlayer::finishedMs}));

  player.play();
  EXPECT_EQ(stateAfter(3499.5), State(true, 3499.5));
  EXPECT_EQ(stateAfter(0.5), finished);
}

TEST_F(PlayerTest, stoppingKeepsTheMomentAndPlayingStartsFromTheBeginning) {
  player.play();
  stateAfter(1000);
  player.play();
  EXPECT_EQ(state(), State(true, 0));
  EXPECT_EQ(stateAfter(500), State(true, 500));
  player.stop();
  EXPECT_EQ(stateAfter(100), State(false, 500));
}

TEST_F(PlayerTest, anObserverMayStartAnotherRunAtTheLastTick) {
  player.play();
  QObject::connect(&player, &SequencePlayer::elapsedMsChanged, [this] {
    if (player.elapsedMs() == 2500) player.play();
  });
  EXPECT_EQ(stateAfter(2500), State(true, 0));
}

TEST_F(PlayerTest, anObserverMayStopTheRunAsItBegins) {
  for (const auto signal : {&SequencePlayer::isPlayingChanged, &SequencePlayer::elapsedMsChanged}) {
    const auto connection = QObject::connect(&player, signal, [this] { player.stop(); });
    player.play();
    QObject::disconnect(connection);
    const State stopped = state();
    EXPECT_FALSE(stopped.first);
    EXPECT_EQ(stateAfter(100), stopped);
  }
}

TEST(SequencePlayer, ticksByItselfSixtyTimesASecondOfRealTime) {
  SequencePlayer player(documentOf({-1000}));  // lasts 800 ms
  QSignalSpy ticks(&player, &SequencePlayer::elapsedMsChanged);
  QElapsedTimer real;
  real.start();
  player.play();
  ASSERT_TRUE(QTest::qWaitFor([&] { return !player.isPlaying(); }));
  EXPECT_GE(real.elapsed(), 800);
  // A busy machine leaves ticks out, but adds none.
  EXPECT_GT(ticks.size(), 12);
  EXPECT_LE(ticks.size(), real.elapsed() * 60 / 1000 + 3);
}

}  // namespace
}  // namespace brisklet
