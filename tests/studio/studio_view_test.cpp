#include "studio/studio_view.h"

#include <gtest/gtest.h>

#include <QCoroTimer>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <chrono>
#include <random>

#include "base/error.h"
#include "platform/file_manager.h"
#include "platform/file_panels.h"
#include "sound/tone_player.h"
#include "support/printing.h"

using namespace std::chrono_literals;

namespace brisklet {
namespace {

/// What is outside the editor: records what it is asked for. Panels stay open until the test answers.
struct Outside : TonePlayer, FilePanels, FileManager {
  void prepare() override {}
  void play(const QString& appId) override { played.append(appId); }
  void reveal(const QString& path) override { revealed.append(path); }
  void save(const SavePanel& panel, Done done) override {
    saves.append(panel);
    pending = std::move(done);
  }
  void open(const OpenPanel& panel, Done done) override {
    opens.append(panel);
    pending = std::move(done);
  }
  void answer(const std::optional<QString>& path) { std::exchange(pending, {})(path); }

  QStringList played, revealed;
  QList<SavePanel> saves;
  QList<OpenPanel> opens;
  Done pending;
};

struct StudioViewTest : testing::Test {
  /// An export that goes on until the test ends it or it is stopped.
  QCoro::Task<> exportUntilTold(SequenceDocument document, QString path, StudioView::Progress progress,
                                std::stop_token stop) {
    exported.append({document, path});
    reportProgress = progress;
    while (!exportEnds) {
      co_await QCoro::sleepFor(1ms);
      if (stop.stop_requested()) throw Error("Stopped.");
    }
    if (!exportFailure.isEmpty()) throw Error(exportFailure);
  }

  StudioView::Services services() {
    return {
        .tones = &outside,
        .panels = &outside,
        .fileManager = &outside,
        .exportMovie = std::bind_front(&StudioViewTest::exportUntilTold, this),
        .decodeImage = [](const QString& path) -> std::optional<QImage> {
          if (path.endsWith("broken.png")) return {};
          return QImage(2, 2, QImage::Format_RGB32);
        },
        .imageSuffixes = {"jpg", "png"},
        .saveWallpaper =
            [this](const QImage&) {
              if (!storeFailure.isEmpty()) throw Error(storeFailure);
              return QString("/stored/%1.jpg").arg(++storedPhotos);
            },
        .clock = [this] { return nowMs; },
    };
  }

  [[nodiscard]] const QList<Ping>& pings() const { return view->document().notifications; }
  [[nodiscard]] const Ping& ping(qsizetype index) const { return pings()[index]; }
  /// What new pings are made from.
  [[nodiscard]] QString choices() const {
    const QStringList parts{view->selectedAppId(), view->selectedTypeId(), view->customAppLabel(),
                            view->draftTitle(), view->draftMessage()};
    return parts.join(" | ");
  }
  void expectBlankSequence() const {
    EXPECT_EQ(view->document(), SequenceDocument::blank());
    EXPECT_EQ(choices(), "tiktok | like | App | @maya | liked your video.");
    EXPECT_FALSE(view->selectedPingId());
    EXPECT_EQ(view->delayText(), "");
    EXPECT_EQ(view->error(), "");
    EXPECT_EQ(view->summary(), "No pings");
    EXPECT_FALSE(view->canPlay() || view->canExport() || view->isPlaying());
    EXPECT_EQ(view->player()->elapsedMs(), SequencePlayer::finishedMs);
  }
  void addPings(int count) {
    for (int i = 0; i < count; ++i) view->addPing();
  }
  /// Adds a ping that lands at a time, and leaves it unselected.
  void addPingAt(const QString& seconds, const QString& appId) {
    view->pickApp(appId);
    view->addPing();
    view->selectPing(pings().last());
    view->setDelayText(seconds);
    view->clearSelection();
  }
  /// The tones that sound up to this moment of the run, since the last look.
  QString tonesUntil(double elapsedMs) {
    nowMs = 1000 + elapsedMs;
    view->player()->tick();
    settle();
    return std::exchange(outside.played, {}).join(' ');
  }
  /// Lets the reactions run that come after a change.
  static void settle() { QCoreApplication::sendPostedEvents(); }
  void beginExport(const QString& path) {
    view->exportMovie();
    outside.answer(path);
  }
  bool exportEnded() {
    return QTest::qWaitFor([this] { return !view->exporting(); });
  }

  const PingType viral = PingType::types("tiktok")[5];
  double nowMs = 1000;
  Outside outside;
  QList<std::pair<SequenceDocument, QString>> exported;
  StudioView::Progress reportProgress;
  bool exportEnds = false;
  QString exportFailure, storeFailure;
  int storedPhotos = 0;
  std::unique_ptr<StudioView> view = std::make_unique<StudioView>(services());
};

TEST_F(StudioViewTest, pingsAreMadeFromTheChoicesAndLandAfterTheLastInTheList) {
  expectBlankSequence();
  addPings(3);
  EXPECT_EQ(ping(2),
            (Ping{ping(2).id, "tiktok", "TikTok", "♪", "#111111", "@maya", "liked your video.", 2100, {}}));
  EXPECT_EQ(ping(2).id.size(), 36);
  EXPECT_EQ(ping(2).id, ping(2).id.toUpper());
  EXPECT_EQ(view->summary(), "3 pings · 3.9s");
  view->selectPing(ping(0));
  view->setDelayText("3");
  view->selectPing(ping(2));
  view->setDelayText("0,5");
  view->addPing();
  EXPECT_EQ(ping(3).delayMs, 1200) << "after the last in the list, not the latest";
  EXPECT_FALSE(view->selectedPingId());
  EXPECT_EQ(view->summary(), "4 pings · 4.8s");
  EXPECT_TRUE(outside.played.isEmpty());
}

TEST_F(StudioViewTest, aCustomAppTakesItsNameAndIconFromTheField) {
  const QString cases[][3] = {
      {"zed", "zed", "Z"},
      {" zed", " zed", " "},
      {"   ", "App", "A"},
      {"", "App", "A"},
      {"\n\t", "App", "A"},
      {"ßa", "ßa", "SS"},
      {"👩‍👧x", "👩‍👧x", "👩‍👧"},
      {"e\u0301a", "e\u0301a", "E\u0301"},
  };
  for (const auto& [typed, label, icon] : cases) {
    view->startNew();
    view->pickCustomApp();
    view->setCustomAppLabel(typed);
    view->addPing();
    EXPECT_EQ(
        ping(0),
        (Ping{ping(0).id, "custom", label, icon, "#111111", "Alex", "sent you a notification", 700, {}}));
  }
}

TEST_F(StudioViewTest, draftsAndTemplatesMakeTheTexts) {
  const auto textsOfNextPing = [this] {
    view->addPing();
    return pings().last().title + ": " + pings().last().message;
  };
  view->setSenderText("@sam");
  view->setMessageText("  ");
  EXPECT_EQ(textsOfNextPing(), "@sam:   ");
  view->setMessageText("");
  EXPECT_EQ(textsOfNextPing(), "@sam: liked your video.");

  // A template's own title wins over what is typed afterwards.
  view->pickType(viral);
  EXPECT_EQ(view->draftTitle(), "TikTok");
  view->setSenderText("@sam");
  EXPECT_EQ(textsOfNextPing(), "TikTok: Your video is popular right now");
  view->pickType(PingType::types("tiktok")[4]);
  EXPECT_EQ(textsOfNextPing(), "@sam: Dueted your video.");
  view->pickApp("snapchat");
  EXPECT_EQ(choices(), "snapchat | snap | App | Jordan | Sent you a Snap");
  EXPECT_EQ(textsOfNextPing(), "Jordan: Sent you a Snap");
}

TEST_F(StudioViewTest, appAndTemplateRewriteTheSelectedPingsTextsOnly) {
  addPings(2);
  QList<Ping> expected = pings();
  view->selectPing(ping(1));
  view->pickApp("instagram");
  expected[1].message = "liked your Reel.";
  EXPECT_EQ(pings(), expected);
  EXPECT_EQ(choices(), "instagram | reel-like | App | jordan | liked your video.");

  view->applyType(viral);
  expected[1].title = "TikTok";
  expected[1].message = viral.message;
  EXPECT_EQ(pings(), expected);
  EXPECT_EQ(view->selectedTypeId(), "reel-like");
}

TEST_F(StudioViewTest, selectingAPingFindsItsAppAndTemplate) {
  view->pickType(viral);
  view->addPing();
  view->pickCustomApp();
  view->setCustomAppLabel("Zed");
  view->setMessageText("my own words");
  view->addPing();
  view->pickApp("snapchat");
  view->setCustomAppLabel("Other");

  view->selectPing(ping(1));
  EXPECT_EQ(view->selectedIndex(), 1);
  EXPECT_EQ(choices(), "custom | note | Zed | Jordan | Sent you a Snap");
  EXPECT_EQ(view->senderText(), "Alex");
  EXPECT_EQ(view->messageText(), "my own words");
  EXPECT_EQ(view->delayText(), "1.4");
  view->selectPing(ping(0));
  EXPECT_EQ(view->selectedTypeId(), "viral");
  view->setMessageText("no template says this");
  view->clearSelection();
  view->selectPing(ping(0));
  EXPECT_EQ(view->selectedTypeId(), "viral") << "found by its title";

  const QString chosen = choices();
  view->selectPing(ping(0));
  EXPECT_FALSE(view->selectedPingId()) << "a second time takes it back";
  EXPECT_EQ(choices(), chosen);
}

TEST_F(StudioViewTest, theFieldsEditTheSelectedPingAndRemovingItEndsTheSelection) {
  addPings(3);
  QList<Ping> expected = pings();
  view->setDelayText("9");
  EXPECT_EQ(pings(), expected);

  view->selectPing(ping(2));
  view->setSenderText("@sam");
  view->setMessageText("");
  view->setDelayText("1,5");
  view->setDelayText("abc");
  expected[2].title = "@sam";
  expected[2].message = "";
  expected[2].delayMs = 1500;
  EXPECT_EQ(pings(), expected);
  view->setDelayText("-3");
  EXPECT_EQ(ping(2).delayMs, 0);
  EXPECT_EQ(choices(), "tiktok | like | App | @maya | liked your video.");

  view->removePing(ping(0).id);
  EXPECT_EQ(view->selectedIndex(), 1);
  view->removePing(ping(1).id);
  EXPECT_FALSE(view->selectedPingId());
  EXPECT_EQ(pings(), expected.mid(1, 1));
}

TEST_F(StudioViewTest, signalsTellOfChangesOnly) {
  addPings(1);
  QSignalSpy document(view.get(), &StudioView::documentChanged);
  QSignalSpy selection(view.get(), &StudioView::selectionChanged);
  QSignalSpy drafts(view.get(), &StudioView::draftsChanged);
  QSignalSpy playing(view.get(), &StudioView::playingChanged);
  const struct {
    const char* command;
    std::function<void()> run;
    QList<qsizetype> told;
  } cases[] = {
      {"same title", [&] { view->setTitle("Untitled"); }, {0, 0, 0, 0}},
      {"same wallpaper", [&] { view->pickWallpaper("one"); }, {0, 0, 0, 0}},
      {"same app", [&] { view->pickApp("tiktok"); }, {0, 0, 0, 0}},
      {"no selection", [&] { view->clearSelection(); }, {0, 0, 0, 0}},
      {"no such ping", [&] { view->removePing("no such ping"); }, {0, 0, 0, 0}},
      {"title", [&] { view->setTitle("Caf\u00e9"); }, {1, 0, 0, 0}},
      {"canonically the same", [&] { view->setTitle("Cafe\u0301"); }, {0, 0, 0, 0}},
      {"select", [&] { view->selectPing(ping(0)); }, {0, 1, 0, 0}},
      {"app", [&] { view->pickApp("messages"); }, {1, 1, 1, 0}},
      {"same delay", [&] { view->setDelayText("0.7"); }, {0, 0, 0, 0}},
      {"play", [&] { view->play(); }, {0, 0, 0, 1}},
      {"add", [&] { view->addPing(); }, {1, 1, 0, 0}},
  };
  for (const auto& [command, run, told] : cases) {
    for (QSignalSpy* spy : {&document, &selection, &drafts, &playing}) spy->clear();
    run();
    EXPECT_EQ((QList{document.size(), selection.size(), drafts.size(), playing.size()}), told) << command;
  }
}

TEST_F(StudioViewTest, startingNewForgetsEverythingButARunningExport) {
  addPings(3);
  view->selectPing(ping(1));
  view->setTitle("Launch");
  view->pickCustomApp();
  view->setCustomAppLabel("Zed");
  beginExport("/movies/launch.mp4");
  view->pickCustomWallpaper();
  outside.answer("/photos/broken.png");
  view->play();
  const QPointer<SequencePlayer> former = view->player();
  QSignalSpy replaced(view.get(), &StudioView::playerReplaced);

  // In answer to a signal of the player that goes away.
  QObject::connect(former, &SequencePlayer::elapsedMsChanged, view.get(), [this] {
    if (view->isPlaying()) view->startNew();
  });
  tonesUntil(100);
  expectBlankSequence();
  EXPECT_EQ(replaced.size(), 1);
  EXPECT_NE(view->player(), former);
  EXPECT_TRUE(view->exporting());
  exportEnds = true;
  EXPECT_TRUE(exportEnded());
}

TEST_F(StudioViewTest, pingsSoundOnceAsTheyComeIntoViewInDocumentOrder) {
  addPingAt("0.5", "cashapp");
  addPingAt("0.2", "instagram");
  addPingAt("0.4", "snapchat");
  view->play();
  EXPECT_EQ(tonesUntil(199), "");
  EXPECT_EQ(tonesUntil(200), "instagram");
  EXPECT_EQ(tonesUntil(217), "");
  EXPECT_EQ(tonesUntil(600), "cashapp snapchat");
  EXPECT_EQ(tonesUntil(2300), "");
  EXPECT_FALSE(view->isPlaying());
}

TEST_F(StudioViewTest, atTheStartSoundsOnlyWhatTheFinishedStackDidNotShow) {
  addPingAt("0", "cashapp");
  view->play();
  EXPECT_EQ(tonesUntil(20), "");
  view->player()->play();  // again, from what the run shows
  EXPECT_EQ(tonesUntil(40), "");
  view->player()->stop();
  addPings(5);
  nowMs = 1000;
  view->play();
  EXPECT_EQ(tonesUntil(0), "cashapp") << "It was pushed off the stack.";
}

TEST_F(StudioViewTest, anEditDuringARunGoesOnWithItAndMaySound) {
  addPingAt("5", "messages");
  view->play();
  EXPECT_EQ(tonesUntil(1000), "");
  view->play();
  view->selectPing(ping(0));
  view->setDelayText("0.9");
  EXPECT_EQ(tonesUntil(1000), "messages");
  EXPECT_TRUE(view->isPlaying());
  EXPECT_EQ(view->player()->elapsedMs(), 1000);
  // Beyond the length that the run had when it started, nothing sounds in it.
  view->setDelayText("6.805");
  EXPECT_EQ(tonesUntil(6810), "");
  EXPECT_FALSE(view->isPlaying());
}

TEST_F(StudioViewTest, withoutSoundEverythingElseWorks) {
  StudioView::Services silent = services();
  silent.tones = nullptr;
  view = std::make_unique<StudioView>(silent);
  addPings(1);
  view->play();
  EXPECT_EQ(tonesUntil(800), "");
  EXPECT_TRUE(view->isPlaying());
}

TEST_F(StudioViewTest, anExportWritesTheDocumentOfThatMomentAndRevealsIt) {
  view->exportMovie();
  EXPECT_TRUE(outside.saves.isEmpty()) << "there is nothing to export";
  view->setTitle("Launch Day #2");
  addPings(2);
  view->exportMovie();
  view->exportMovie();
  view->pickCustomWallpaper();
  ASSERT_EQ(outside.saves.size(), 1);
  EXPECT_TRUE(outside.opens.isEmpty()) << "another panel is open";
  EXPECT_EQ(outside.saves[0].title, "Export notification video");
  EXPECT_EQ(outside.saves[0].proposedName, "launch-day-2.mp4");
  EXPECT_EQ(outside.saves[0].suffix, "mp4");
  EXPECT_FALSE(view->exporting());

  QList<double> progress;
  QObject::connect(view.get(), &StudioView::exportProgressChanged,
                   [&] { progress.append(view->exportProgress()); });
  const QString path = "/movies/launch.mp4";
  outside.answer(path);
  EXPECT_TRUE(view->exporting());
  EXPECT_FALSE(view->canExport());
  const SequenceDocument document = view->document();
  view->addPing();
  reportProgress(1, 4);
  reportProgress(4, 4);
  exportEnds = true;
  ASSERT_TRUE(exportEnded());
  ASSERT_EQ(exported.size(), 1);
  EXPECT_TRUE(exported[0] == std::pair(document, path));
  EXPECT_EQ(progress, (QList<double>{0.25, 1, 0}));
  EXPECT_EQ(outside.revealed, QStringList{path});
}

TEST_F(StudioViewTest, aFailedExportSaysWhyAndRevealsNothing) {
  addPings(1);
  exportEnds = true;
  exportFailure = "The disk is full.";
  QSignalSpy errors(view.get(), &StudioView::errorChanged);
  beginExport("/movies/a.mp4");
  ASSERT_TRUE(exportEnded());
  EXPECT_EQ(view->error(), "The disk is full.");
  EXPECT_TRUE(outside.revealed.isEmpty());
  EXPECT_EQ(errors.size(), 1);

  // Cancelling keeps the message; the next export that starts clears it, and so does its reader.
  view->exportMovie();
  outside.answer({});
  EXPECT_FALSE(view->exporting());
  EXPECT_EQ(view->error(), "The disk is full.");
  exportEnds = false;
  beginExport("/movies/a.mp4");
  EXPECT_EQ(view->error(), "");
  exportEnds = true;
  ASSERT_TRUE(exportEnded());
  EXPECT_EQ(view->error(), "The disk is full.");
  view->dismissError();
  EXPECT_EQ(view->error(), "");
}

TEST_F(StudioViewTest, aStoppedExportRemovesWhatItWroteAndIsNoFailure) {
  const QTemporaryDir folder;
  const QString path = folder.filePath("a.mp4");
  addPings(1);
  for (const bool hasBegun : {false, true}) {
    ASSERT_TRUE(QFile(path).open(QIODevice::WriteOnly));
    beginExport(path);
    if (hasBegun) reportProgress(1, 100);
    view->stopExport();
    ASSERT_TRUE(exportEnded());
    EXPECT_EQ(view->error(), "");
    EXPECT_TRUE(outside.revealed.isEmpty());
    EXPECT_EQ(QFile::exists(path), !hasBegun) << "before the first frame the file is somebody else's";
  }
  // So does closing the editor, also while a panel is open.
  ASSERT_TRUE(QFile(path).open(QIODevice::WriteOnly));
  beginExport(path);
  reportProgress(1, 100);
  view->pickCustomWallpaper();
  view.reset();
  outside.answer("/photos/a.jpg");
  reportProgress(2, 100);
  EXPECT_TRUE(QTest::qWaitFor([&] { return !QFile::exists(path); }));
}

TEST_F(StudioViewTest, aPhotoBecomesTheWallpaperByItsStoredCopy) {
  const auto wallpaper = [this] { return view->document().wallpaper + ' ' + view->document().wallpaperUrl; };
  view->pickPhotoChip();
  ASSERT_EQ(outside.opens.size(), 1);
  EXPECT_EQ(outside.opens[0].title, "Choose a lock screen photo");
  EXPECT_EQ(outside.opens[0].suffixes, (QStringList{"jpg", "png"}));
  outside.answer("/photos/a.png");
  EXPECT_EQ(wallpaper(), "custom /stored/1.jpg");

  view->pickWallpaper("two");
  EXPECT_EQ(wallpaper(), "two /stored/1.jpg");
  view->pickPhotoChip();
  EXPECT_EQ(outside.opens.size(), 1) << "the stored photo needs no panel";
  EXPECT_EQ(wallpaper(), "custom /stored/1.jpg");
  view->pickPhotoChip();
  outside.answer({});
  view->pickPhotoChip();
  outside.answer("/photos/broken.png");
  EXPECT_EQ(view->error(), "Could not open that photo.");
  storeFailure = "disk full";
  view->pickPhotoChip();
  outside.answer("/photos/a.png");
  EXPECT_EQ(view->error(), "Could not save that photo.");
  EXPECT_EQ(wallpaper(), "custom /stored/1.jpg");
}

/// Any order of commands leaves a state that hangs together.
TEST_F(StudioViewTest, anyOrderOfCommandsKeepsTheStateWhole) {
  const unsigned seed = qEnvironmentVariableIsSet("BRISKLET_SEED")
                            ? static_cast<unsigned>(qEnvironmentVariableIntValue("BRISKLET_SEED"))
                            : std::random_device()();
  SCOPED_TRACE("BRISKLET_SEED=" + std::to_string(seed));
  std::mt19937 random(seed);
  const auto anyOf = [&random](const auto& list) -> const auto& {
    return list[static_cast<qsizetype>(random() % static_cast<unsigned>(list.size()))];
  };
  const QStringList texts{"", " ", "1,5", "-2", "abc", "0", "é", "e\u0301", "👍🏽x", "3e2"};
  const auto text = [&] { return anyOf(texts); };
  const auto anyType = [&] { return anyOf(PingType::types(view->selectedAppId())); };
  const auto withAnyPing = [&](auto command) {
    if (!pings().isEmpty()) command(Ping(anyOf(pings())));
  };

  SequenceDocument lastTold = view->document();
  QObject::connect(view.get(), &StudioView::documentChanged, [&] {
    EXPECT_FALSE(view->document() == lastTold);
    EXPECT_EQ(view->player()->document(), view->document());
    lastTold = view->document();
  });

  const QList<std::function<void()>> commands{
      [&] { view->addPing(); },
      [&] { view->addPing(); },
      [&] { withAnyPing([&](const Ping& each) { view->selectPing(each); }); },
      [&] { withAnyPing([&](const Ping& each) { view->selectPing(each); }); },
      [&] { withAnyPing([&](const Ping& each) { view->removePing(each.id); }); },
      [&] { view->clearSelection(); },
      [&] { view->pickApp(anyOf(AppPreset::all()).id); },
      [&] { view->pickCustomApp(); },
      [&] { view->pickType(anyType()); },
      [&] { view->applyType(anyType()); },
      [&] { view->setTitle(text()); },
      [&] { view->setCustomAppLabel(text()); },
      [&] { view->setSenderText(text()); },
      [&] { view->setMessageText(text()); },
      [&] { view->setDelayText(text()); },
      [&] { view->pickWallpaper(anyOf(Studio::wallpapers()).id); },
      [&] {
        view->pickPhotoChip();
        if (outside.pending) outside.answer("/photos/a.png");
      },
      [&] { view->play(); },
      [&] { nowMs += static_cast<double>(random() % 900); },
      [&] {
        if (random() % 8 == 0) view->startNew();
      },
  };

  for (int step = 0; step < 4000 && !HasFailure(); ++step) {
    const SequenceDocument before = view->document();
    const qsizetype tonesBefore = outside.played.size();
    const auto selectedBefore = view->selectedPingId();
    anyOf(commands)();
    view->player()->tick();
    settle();

    EXPECT_EQ(view->document(), lastTold);
    EXPECT_EQ(view->player()->document(), view->document());
    EXPECT_EQ(view->player()->elapsedMs() == SequencePlayer::finishedMs, !view->isPlaying());
    EXPECT_EQ(view->selectedPingId().has_value(), view->selectedIndex().has_value());
    EXPECT_EQ(view->canPlay(), !pings().isEmpty() && !view->isPlaying());
    EXPECT_EQ(view->delayText().isEmpty(), !view->selectedPingId());
    EXPECT_EQ(view->senderText(),
              view->selectedPingId() ? ping(*view->selectedIndex()).title : view->draftTitle());
    EXPECT_TRUE(view->isPlaying() || outside.played.size() == tonesBefore);
    QStringList typeIds;
    for (const PingType& type : PingType::types(view->selectedAppId())) typeIds.append(type.id);
    EXPECT_TRUE(typeIds.contains(view->selectedTypeId()));
    QHash<QString, Ping> now;
    for (const Ping& each : pings()) {
      EXPECT_TRUE(std::isfinite(each.delayMs) && each.delayMs >= 0);
      now.insert(each.id, each);
    }
    EXPECT_EQ(now.size(), pings().size());
    // Only the selected ping is ever edited; the others stay as they are, or go.
    for (const Ping& each : before.notifications)
      EXPECT_TRUE(!now.contains(each.id) || each.id == selectedBefore || now[each.id] == each);
  }
}

}  // namespace
}  // namespace brisklet
