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
#include "model/text.h"
#include "platform/file_manager.h"
#include "platform/file_panels.h"
#include "sound/tone_player.h"
#include "support/printing.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace brisklet {
namespace {

struct RecordedTones : TonePlayer {
  void prepare() override {}
  void play(const QString& appId) override { played.append(appId); }
  QStringList played;
};

/// Panels that stay open until the test answers.
struct HeldPanels : FilePanels {
  void save(const SavePanel& panel, Done done) override {
    saves.append(panel);
    pending = std::move(done);
  }
  void open(const OpenPanel& panel, Done done) override {
    opens.append(panel);
    pending = std::move(done);
  }
  void answer(const std::optional<QString>& path) { std::exchange(pending, {})(path); }

  QList<SavePanel> saves;
  QList<OpenPanel> opens;
  Done pending;
};

struct RecordedFileManager : FileManager {
  void reveal(const QString& path) override { revealed.append(path); }
  QStringList revealed;
};

struct StudioViewTest : testing::Test {
  /// An export that goes on until the test ends it or it is stopped.
  QCoro::Task<> exportUntilTold(SequenceDocument document, QString path, StudioView::Progress progress,
                                std::stop_token stop) {
    exported.append(document);
    exportPath = path;
    reportProgress = progress;
    while (!exportEnds) {
      co_await QCoro::sleepFor(1ms);
      if (stop.stop_requested()) throw Error(u"Stopped."_s);
    }
    if (!exportFailure.isEmpty()) throw Error(exportFailure);
  }

  StudioView::Services services() {
    return {
        .tones = &tones,
        .panels = &panels,
        .fileManager = &fileManager,
        .exportMovie =
            [this](SequenceDocument document, QString path, StudioView::Progress progress,
                   std::stop_token stop) {
              return exportUntilTold(std::move(document), std::move(path), std::move(progress),
                                     std::move(stop));
            },
        .decodeImage = [](const QString& path) -> std::optional<QImage> {
          if (path.endsWith(u"broken.png")) return {};
          return QImage(2, 2, QImage::Format_RGB32);
        },
        .imageSuffixes = {u"jpg"_s, u"png"_s},
        .saveWallpaper =
            [this](const QImage&) {
              if (!storeFailure.isEmpty()) throw Error(storeFailure);
              return u"/stored/%1.jpg"_s.arg(++storedPhotos);
            },
        .clock = [this] { return nowMs; },
    };
  }

  [[nodiscard]] const QList<Ping>& pings() const { return view->document().notifications; }
  [[nodiscard]] const Ping& ping(qsizetype index) const { return view->document().notifications[index]; }
  void addPings(int count) {
    for (int i = 0; i < count; ++i) view->addPing();
  }
  /// Adds a ping that lands at a time, and leaves it unselected.
  void addPingAt(const QString& seconds, const QString& appId = u"tiktok"_s) {
    view->pickApp(appId);
    view->addPing();
    view->selectPing(pings().last());
    view->setDelayText(seconds);
    view->clearSelection();
  }
  void tickAt(double elapsedMs) {
    nowMs = 1000 + elapsedMs;
    view->player()->tick();
    settle();
  }
  /// Lets the reactions run that come after a change.
  static void settle() { QCoreApplication::sendPostedEvents(); }
  static const PingType& type(const QString& appId, const QString& id) {
    const QList<PingType>& types = PingType::types(appId);
    return *std::find_if(types.begin(), types.end(), [&](const PingType& t) { return t.id == id; });
  }
  bool exportEnded() {
    return QTest::qWaitFor([this] { return !view->exporting(); });
  }

  double nowMs = 1000;
  RecordedTones tones;
  HeldPanels panels;
  RecordedFileManager fileManager;
  QList<SequenceDocument> exported;
  QString exportPath;
  StudioView::Progress reportProgress;
  bool exportEnds = false;
  QString exportFailure;
  QString storeFailure;
  int storedPhotos = 0;
  std::unique_ptr<StudioView> view = std::make_unique<StudioView>(services());
};

TEST_F(StudioViewTest, opensOnTheBlankSequence) {
  EXPECT_EQ(view->document(), SequenceDocument::blank());
  EXPECT_EQ(view->selectedAppId(), u"tiktok");
  EXPECT_EQ(view->selectedTypeId(), u"like");
  EXPECT_EQ(view->customAppLabel(), u"App");
  EXPECT_EQ(view->draftTitle(), u"@maya");
  EXPECT_EQ(view->draftMessage(), u"liked your video.");
  EXPECT_FALSE(view->selectedPingId());
  EXPECT_FALSE(view->exporting());
  EXPECT_EQ(view->error(), u"");
  EXPECT_EQ(view->summary(), u"No pings");
  EXPECT_EQ(view->delayText(), u"");
  EXPECT_FALSE(view->canPlay());
  EXPECT_FALSE(view->canExport());
  EXPECT_FALSE(view->player()->isPlaying());
  EXPECT_EQ(view->player()->elapsedMs(), SequencePlayer::finishedMs);
}

TEST_F(StudioViewTest, theFirstPingIsMadeFromTheFirstChoices) {
  view->addPing();
  Ping expected{.id = ping(0).id,
                .appId = u"tiktok"_s,
                .appLabel = u"TikTok"_s,
                .icon = u"♪"_s,
                .color = u"#111111"_s,
                .title = u"@maya"_s,
                .message = u"liked your video."_s,
                .delayMs = 700,
                .sound = {}};
  EXPECT_EQ(ping(0), expected);
  EXPECT_EQ(ping(0).id.size(), 36);
  EXPECT_EQ(ping(0).id, ping(0).id.toUpper());
  EXPECT_FALSE(view->selectedPingId());
  EXPECT_EQ(view->summary(), u"1 ping · 2.5s");
  EXPECT_TRUE(tones.played.isEmpty());
}

TEST_F(StudioViewTest, pingsLandAfterTheLastInTheListNotTheLatest) {
  addPings(3);
  EXPECT_EQ(ping(2).delayMs, 2100);
  EXPECT_NE(ping(0).id, ping(1).id);
  EXPECT_EQ(view->summary(), u"3 pings · 3.9s");
  view->selectPing(ping(0));
  view->setDelayText(u"3"_s);
  view->selectPing(ping(2));
  view->setDelayText(u"0,5"_s);
  view->addPing();
  EXPECT_EQ(ping(3).delayMs, 1200);
  EXPECT_FALSE(view->selectedPingId());
}

TEST_F(StudioViewTest, aCustomAppTakesItsNameAndIconFromTheField) {
  const struct {
    QString typed, label, icon;
  } cases[] = {
      {u"zed"_s, u"zed"_s, u"Z"_s},
      {u" zed"_s, u" zed"_s, u" "_s},
      {u"   "_s, u"App"_s, u"A"_s},
      {u""_s, u"App"_s, u"A"_s},
      {u"\n\t"_s, u"App"_s, u"A"_s},
      {u"ßa"_s, u"ßa"_s, u"SS"_s},
      {u"e\u0301a"_s, u"e\u0301a"_s, u"E\u0301"_s},
      {u"👩‍👧x"_s, u"👩‍👧x"_s, u"👩‍👧"_s},
  };
  view->pickCustomApp();
  EXPECT_EQ(view->draftTitle(), u"Alex");
  EXPECT_EQ(view->selectedTypeId(), u"note");
  for (const auto& [typed, label, icon] : cases) {
    view->setCustomAppLabel(typed);
    view->addPing();
    EXPECT_EQ(pings().last().appId, u"custom");
    EXPECT_EQ(pings().last().appLabel, label);
    EXPECT_EQ(pings().last().icon, icon);
    EXPECT_EQ(pings().last().color, u"#111111");
  }
}

TEST_F(StudioViewTest, draftsAndTemplatesMakeTheTexts) {
  view->setSenderText(u"@sam"_s);
  view->setMessageText(u"  "_s);
  view->addPing();
  EXPECT_EQ(ping(0).title, u"@sam");
  EXPECT_EQ(ping(0).message, u"  ");

  view->setMessageText(u""_s);
  view->addPing();
  EXPECT_EQ(ping(1).message, u"liked your video.");

  // A template's own title wins over what is typed afterwards.
  view->pickType(type(u"tiktok"_s, u"viral"_s));
  EXPECT_EQ(view->draftTitle(), u"TikTok");
  view->setSenderText(u"@sam"_s);
  view->addPing();
  EXPECT_EQ(ping(2).title, u"TikTok");
  EXPECT_EQ(ping(2).message, u"Your video is popular right now");

  view->pickType(type(u"tiktok"_s, u"duet"_s));
  EXPECT_EQ(view->draftTitle(), u"@sam");
  EXPECT_EQ(view->draftMessage(), u"Dueted your video.");
}

TEST_F(StudioViewTest, pickingAnAppFillsInItsFirstTemplate) {
  for (const AppPreset& app : AppPreset::all()) {
    view->pickApp(app.id);
    EXPECT_EQ(view->selectedAppId(), app.id);
    EXPECT_EQ(view->selectedTypeId(), PingType::types(app.id).first().id);
    EXPECT_EQ(view->draftTitle(), PingType::defaultSender(app.id));
    EXPECT_EQ(view->draftMessage(), PingType::types(app.id).first().message);
    view->addPing();
    EXPECT_EQ(pings().last().appLabel, app.label);
    EXPECT_EQ(pings().last().icon, app.icon);
    EXPECT_EQ(pings().last().color, app.color);
  }
}

TEST_F(StudioViewTest, appAndTemplateRewriteTheSelectedPingsTextsOnly) {
  addPings(2);
  view->selectPing(ping(1));
  view->pickApp(u"instagram"_s);
  EXPECT_EQ(ping(1).message, u"liked your Reel.");
  EXPECT_EQ(ping(1).title, u"@maya");
  EXPECT_EQ(ping(1).appId, u"tiktok");
  EXPECT_EQ(ping(1).delayMs, 1400);
  EXPECT_EQ(view->draftTitle(), u"jordan");
  EXPECT_EQ(view->draftMessage(), u"liked your video.");
  EXPECT_EQ(ping(0).message, u"liked your video.");

  view->applyType(type(u"tiktok"_s, u"viral"_s));
  EXPECT_EQ(ping(1).title, u"TikTok");
  EXPECT_EQ(view->selectedTypeId(), u"reel-like");
}

TEST_F(StudioViewTest, selectingAPingFindsItsAppAndTemplate) {
  view->pickType(type(u"tiktok"_s, u"viral"_s));
  view->addPing();
  view->pickCustomApp();
  view->setCustomAppLabel(u"Zed"_s);
  view->setMessageText(u"my own words"_s);
  view->addPing();
  view->pickApp(u"snapchat"_s);
  view->setCustomAppLabel(u"Other"_s);

  view->selectPing(ping(1));
  EXPECT_EQ(view->selectedIndex(), 1);
  EXPECT_EQ(view->selectedAppId(), u"custom");
  EXPECT_EQ(view->customAppLabel(), u"Zed");
  EXPECT_EQ(view->selectedTypeId(), u"note");
  EXPECT_EQ(view->senderText(), u"Alex");
  EXPECT_EQ(view->messageText(), u"my own words");
  EXPECT_EQ(view->delayText(), u"1.4");
  EXPECT_EQ(view->draftTitle(), u"Jordan");

  view->selectPing(ping(0));
  EXPECT_EQ(view->selectedTypeId(), u"viral");
  view->setMessageText(u"no template says this"_s);
  view->clearSelection();
  view->selectPing(ping(0));
  EXPECT_EQ(view->selectedTypeId(), u"viral") << "found by its title";

  QSignalSpy drafts(view.get(), &StudioView::draftsChanged);
  view->selectPing(ping(0));
  EXPECT_FALSE(view->selectedPingId());
  EXPECT_EQ(view->selectedAppId(), u"tiktok");
  EXPECT_EQ(view->selectedTypeId(), u"viral");
  EXPECT_TRUE(drafts.isEmpty());
}

TEST_F(StudioViewTest, theFieldsEditTheSelectedPing) {
  addPings(2);
  view->setDelayText(u"9"_s);
  EXPECT_EQ(ping(0).delayMs, 700);

  view->selectPing(ping(0));
  view->setSenderText(u"@sam"_s);
  view->setMessageText(u""_s);
  view->setDelayText(u"1,5"_s);
  EXPECT_EQ(ping(0).title, u"@sam");
  EXPECT_EQ(ping(0).message, u"");
  EXPECT_EQ(ping(0).delayMs, 1500);
  EXPECT_EQ(view->draftTitle(), u"@maya");
  for (const QString& text : {u"abc"_s, u" 2"_s, u"inf"_s, u"nan"_s, u""_s}) view->setDelayText(text);
  EXPECT_EQ(ping(0).delayMs, 1500);
  view->setDelayText(u"-3"_s);
  EXPECT_EQ(ping(0).delayMs, 0);
  EXPECT_EQ(ping(1).delayMs, 1400);
}

TEST_F(StudioViewTest, removingAPingKeepsAnotherSelection) {
  addPings(3);
  const QString last = ping(2).id;
  view->selectPing(ping(2));
  view->removePing(ping(0).id);
  EXPECT_EQ(view->selectedPingId(), last);
  EXPECT_EQ(view->selectedIndex(), 1);
  view->removePing(last);
  EXPECT_FALSE(view->selectedPingId());
  EXPECT_EQ(pings().size(), 1);
  view->removePing(u"no such ping"_s);
  EXPECT_EQ(pings().size(), 1);
}

TEST_F(StudioViewTest, everyEditReachesThePlayer) {
  addPings(2);
  EXPECT_EQ(view->player()->document(), view->document());
  view->play();
  tickAt(900);
  view->setTitle(u"Launch"_s);
  view->pickWallpaper(u"three"_s);
  view->addPing();
  EXPECT_TRUE(view->isPlaying());
  EXPECT_EQ(view->player()->elapsedMs(), 900);
  EXPECT_EQ(view->player()->document(), view->document());
  view->player()->stop();
  view->removePing(ping(0).id);
  EXPECT_EQ(view->player()->elapsedMs(), SequencePlayer::finishedMs);
}

TEST_F(StudioViewTest, signalsTellOfChangesOnly) {
  addPings(1);
  QSignalSpy document(view.get(), &StudioView::documentChanged);
  QSignalSpy selection(view.get(), &StudioView::selectionChanged);
  QSignalSpy drafts(view.get(), &StudioView::draftsChanged);
  QSignalSpy playing(view.get(), &StudioView::playingChanged);
  const auto told = [&] {
    const QList<qsizetype> counts{document.size(), selection.size(), drafts.size(), playing.size()};
    for (QSignalSpy* spy : {&document, &selection, &drafts, &playing}) spy->clear();
    return counts;
  };
  using Counts = QList<qsizetype>;

  view->setTitle(u"Untitled"_s);
  view->pickWallpaper(u"one"_s);
  view->pickApp(u"tiktok"_s);
  view->clearSelection();
  view->removePing(u"no such ping"_s);
  view->dismissError();
  EXPECT_EQ(told(), (Counts{0, 0, 0, 0}));

  view->setTitle(u"Caf\u00e9"_s);
  EXPECT_EQ(told(), (Counts{1, 0, 0, 0}));
  view->setTitle(u"Cafe\u0301"_s);
  EXPECT_EQ(told(), (Counts{0, 0, 0, 0})) << "canonically the same text";
  view->selectPing(ping(0));
  EXPECT_EQ(told(), (Counts{0, 1, 0, 0}));
  view->pickApp(u"messages"_s);
  EXPECT_EQ(told(), (Counts{1, 1, 1, 0}));
  view->setDelayText(u"0.7"_s);
  EXPECT_EQ(told(), (Counts{0, 0, 0, 0}));
  view->play();
  EXPECT_EQ(told(), (Counts{0, 0, 0, 1}));
  view->addPing();
  EXPECT_EQ(told(), (Counts{1, 1, 0, 0}));
}

TEST_F(StudioViewTest, observersSeeThePlayerInStepWithTheDocument) {
  QObject::connect(view.get(), &StudioView::documentChanged,
                   [this] { EXPECT_EQ(view->player()->document(), view->document()); });
  addPings(1);
  view->setTitle(u"Launch"_s);
  view->startNew();
}

TEST_F(StudioViewTest, startingNewForgetsEverythingButARunningExport) {
  addPings(3);
  view->selectPing(ping(1));
  view->setTitle(u"Launch"_s);
  view->pickCustomApp();
  view->setCustomAppLabel(u"Zed"_s);
  view->exportMovie();
  panels.answer(u"/movies/launch.mp4"_s);
  view->play();
  const QPointer<SequencePlayer> former = view->player();
  QSignalSpy replaced(view.get(), &StudioView::playerReplaced);

  view->startNew();
  EXPECT_EQ(view->document(), SequenceDocument::blank());
  EXPECT_EQ(replaced.size(), 1);
  EXPECT_NE(view->player(), former);
  EXPECT_FALSE(former->isPlaying());
  EXPECT_FALSE(view->isPlaying());
  EXPECT_EQ(view->selectedAppId(), u"tiktok");
  EXPECT_EQ(view->selectedTypeId(), u"like");
  EXPECT_EQ(view->customAppLabel(), u"App");
  EXPECT_EQ(view->draftTitle(), u"@maya");
  EXPECT_EQ(view->draftMessage(), u"liked your video.");
  EXPECT_FALSE(view->selectedPingId());
  EXPECT_TRUE(view->exporting());
  exportEnds = true;
  EXPECT_TRUE(exportEnded());
}

TEST_F(StudioViewTest, startingNewInAnswerToThePlayersSignalIsSafe) {
  addPings(1);
  QObject::connect(view->player(), &SequencePlayer::elapsedMsChanged, view.get(), [this] {
    if (view->isPlaying() && view->player()->elapsedMs() > 0) view->startNew();
  });
  view->play();
  tickAt(100);
  EXPECT_EQ(view->document(), SequenceDocument::blank());
}

TEST_F(StudioViewTest, pingsSoundOnceAsTheyComeIntoViewInDocumentOrder) {
  addPingAt(u"0.5"_s, u"cashapp"_s);
  addPingAt(u"0.2"_s, u"instagram"_s);
  addPingAt(u"0.4"_s, u"snapchat"_s);
  EXPECT_TRUE(tones.played.isEmpty());
  view->play();
  settle();
  EXPECT_TRUE(tones.played.isEmpty());
  tickAt(199);
  EXPECT_TRUE(tones.played.isEmpty());
  tickAt(200);
  tickAt(217);
  EXPECT_EQ(tones.played, (QStringList{u"instagram"_s}));
  tickAt(600);
  EXPECT_EQ(tones.played, (QStringList{u"instagram"_s, u"cashapp"_s, u"snapchat"_s}));
  tickAt(2300);
  EXPECT_FALSE(view->isPlaying());
  EXPECT_EQ(tones.played.size(), 3);
}

TEST_F(StudioViewTest, aPingInTheFinishedStackAndAtTheStartIsSilent) {
  addPingAt(u"0"_s);
  view->play();
  tickAt(20);
  EXPECT_TRUE(tones.played.isEmpty());
  // Playing again during a run starts from what the run shows.
  view->player()->play();
  settle();
  EXPECT_TRUE(tones.played.isEmpty());
}

TEST_F(StudioViewTest, aPingPushedOffTheStackSoundsAtTheStart) {
  addPingAt(u"0"_s, u"cashapp"_s);
  addPings(5);
  view->play();
  settle();
  EXPECT_EQ(tones.played, (QStringList{u"cashapp"_s}));
}

TEST_F(StudioViewTest, anEditThatBringsAPingIntoViewDuringARunSounds) {
  addPingAt(u"5"_s, u"messages"_s);
  view->play();
  tickAt(1000);
  view->selectPing(ping(0));
  view->setDelayText(u"0.9"_s);
  settle();
  EXPECT_EQ(tones.played, (QStringList{u"messages"_s}));
  tickAt(1100);
  EXPECT_EQ(tones.played.size(), 1);
}

TEST_F(StudioViewTest, aPingBeyondTheRunsLengthNeverSoundsInIt) {
  addPingAt(u"0.1"_s);
  view->play();
  tickAt(1000);
  EXPECT_EQ(tones.played.size(), 1);
  addPingAt(u"1.905"_s);
  tickAt(1910);  // the run was 1900 ms long when it started
  EXPECT_FALSE(view->isPlaying());
  EXPECT_EQ(tones.played.size(), 1);
}

TEST_F(StudioViewTest, withoutSoundEverythingElseWorks) {
  StudioView::Services silent = services();
  silent.tones = nullptr;
  view = std::make_unique<StudioView>(silent);
  addPings(1);
  view->play();
  tickAt(800);
  EXPECT_TRUE(view->isPlaying());
}

TEST_F(StudioViewTest, playNeedsPingsAndARestingPlayer) {
  view->play();
  EXPECT_FALSE(view->isPlaying());
  addPings(1);
  EXPECT_TRUE(view->canPlay());
  view->play();
  EXPECT_FALSE(view->canPlay());
  tickAt(300);
  view->play();
  EXPECT_EQ(view->player()->elapsedMs(), 300);
}

TEST_F(StudioViewTest, anExportWritesTheDocumentOfThatMomentAndRevealsIt) {
  view->exportMovie();
  EXPECT_TRUE(panels.saves.isEmpty()) << "there is nothing to export";
  view->setTitle(u"Launch Day #2"_s);
  addPings(2);
  view->exportMovie();
  view->exportMovie();
  view->pickCustomWallpaper();
  ASSERT_EQ(panels.saves.size(), 1);
  EXPECT_TRUE(panels.opens.isEmpty()) << "another panel is open";
  EXPECT_EQ(panels.saves[0].title, u"Export notification video");
  EXPECT_EQ(panels.saves[0].proposedName, u"launch-day-2.mp4");
  EXPECT_EQ(panels.saves[0].suffix, u"mp4");
  EXPECT_FALSE(view->exporting());

  QList<double> progress;
  QObject::connect(view.get(), &StudioView::exportProgressChanged,
                   [&] { progress.append(view->exportProgress()); });
  panels.answer(u"/movies/launch.mp4"_s);
  EXPECT_TRUE(view->exporting());
  EXPECT_FALSE(view->canExport());
  const SequenceDocument document = view->document();
  view->addPing();
  reportProgress(1, 4);
  reportProgress(4, 4);
  exportEnds = true;
  ASSERT_TRUE(exportEnded());
  EXPECT_EQ(exported, (QList<SequenceDocument>{document}));
  EXPECT_EQ(exportPath, u"/movies/launch.mp4");
  EXPECT_EQ(progress, (QList<double>{0.25, 1, 0}));
  EXPECT_EQ(fileManager.revealed, (QStringList{u"/movies/launch.mp4"_s}));
  EXPECT_EQ(view->error(), u"");
}

TEST_F(StudioViewTest, aFailedExportSaysWhyAndRevealsNothing) {
  addPings(1);
  exportEnds = true;
  exportFailure = u"The disk is full."_s;
  QSignalSpy errors(view.get(), &StudioView::errorChanged);
  view->exportMovie();
  panels.answer(u"/movies/a.mp4"_s);
  ASSERT_TRUE(exportEnded());
  EXPECT_EQ(view->error(), u"The disk is full.");
  EXPECT_TRUE(fileManager.revealed.isEmpty());
  EXPECT_EQ(errors.size(), 1);

  // Cancelling keeps the message; the next export that starts clears it.
  view->exportMovie();
  panels.answer({});
  EXPECT_FALSE(view->exporting());
  EXPECT_EQ(view->error(), u"The disk is full.");
  exportFailure.clear();
  view->exportMovie();
  panels.answer(u"/movies/a.mp4"_s);
  EXPECT_EQ(view->error(), u"");
  ASSERT_TRUE(exportEnded());

  exportFailure = u"Again."_s;
  view->exportMovie();
  panels.answer(u"/movies/a.mp4"_s);
  ASSERT_TRUE(exportEnded());
  view->dismissError();
  EXPECT_EQ(view->error(), u"");
}

TEST_F(StudioViewTest, aStoppedExportRemovesWhatItWroteAndIsNoFailure) {
  const QTemporaryDir folder;
  for (const bool hasBegun : {false, true}) {
    const QString path = folder.filePath(u"a.mp4"_s);
    ASSERT_TRUE(QFile(path).open(QIODevice::WriteOnly));
    view->startNew();
    addPings(1);
    view->exportMovie();
    panels.answer(path);
    if (hasBegun) reportProgress(1, 100);
    view->stopExport();
    ASSERT_TRUE(exportEnded());
    EXPECT_EQ(view->error(), u"");
    EXPECT_TRUE(fileManager.revealed.isEmpty());
    EXPECT_EQ(QFile::exists(path), !hasBegun) << "before the first frame the file is somebody else's";
  }
}

TEST_F(StudioViewTest, closingTheEditorStopsItsExportAndItsPanels) {
  const QTemporaryDir folder;
  const QString path = folder.filePath(u"a.mp4"_s);
  ASSERT_TRUE(QFile(path).open(QIODevice::WriteOnly));
  addPings(1);
  view->exportMovie();
  panels.answer(path);
  reportProgress(1, 100);
  view->pickCustomWallpaper();
  view.reset();
  panels.answer(u"/photos/a.jpg"_s);
  reportProgress(2, 100);
  EXPECT_TRUE(QTest::qWaitFor([&] { return !QFile::exists(path); }));
}

TEST_F(StudioViewTest, aPhotoBecomesTheWallpaperByItsStoredCopy) {
  view->pickPhotoChip();
  ASSERT_EQ(panels.opens.size(), 1);
  EXPECT_EQ(panels.opens[0].title, u"Choose a lock screen photo");
  EXPECT_EQ(panels.opens[0].suffixes, (QStringList{u"jpg"_s, u"png"_s}));
  QSignalSpy documents(view.get(), &StudioView::documentChanged);
  panels.answer(u"/photos/a.png"_s);
  EXPECT_EQ(view->document().wallpaper, u"custom");
  EXPECT_EQ(view->document().wallpaperUrl, u"/stored/1.jpg");
  EXPECT_EQ(view->player()->document().wallpaperUrl, u"/stored/1.jpg");
  EXPECT_EQ(documents.size(), 1);

  view->pickWallpaper(u"two"_s);
  EXPECT_EQ(view->document().wallpaperUrl, u"/stored/1.jpg");
  view->pickPhotoChip();
  EXPECT_EQ(view->document().wallpaper, u"custom");
  EXPECT_EQ(panels.opens.size(), 1) << "the stored photo needs no panel";
  view->pickPhotoChip();
  EXPECT_EQ(panels.opens.size(), 2);
  panels.answer({});
  EXPECT_EQ(view->document().wallpaperUrl, u"/stored/1.jpg");
}

TEST_F(StudioViewTest, aPhotoThatCannotBeUsedLeavesTheDocument) {
  view->pickCustomWallpaper();
  panels.answer(u"/photos/broken.png"_s);
  EXPECT_EQ(view->error(), u"Could not open that photo.");
  storeFailure = u"disk full"_s;
  view->pickCustomWallpaper();
  panels.answer(u"/photos/a.png"_s);
  EXPECT_EQ(view->error(), u"Could not save that photo.");
  EXPECT_EQ(view->document(), SequenceDocument::blank());
}

/// Any order of commands leaves a state that hangs together.
TEST_F(StudioViewTest, anyOrderOfCommandsKeepsTheStateWhole) {
  const unsigned seed = qEnvironmentVariableIsSet("BRISKLET_SEED")
                            ? static_cast<unsigned>(qEnvironmentVariableIntValue("BRISKLET_SEED"))
                            : std::random_device()();
  SCOPED_TRACE("BRISKLET_SEED=" + std::to_string(seed));
  std::mt19937 random(seed);
  const auto pick = [&random](qsizetype count) {
    return static_cast<qsizetype>(random() % static_cast<unsigned>(count));
  };
  const QStringList texts{u""_s,  u" "_s, u"1,5"_s,     u"-2"_s,        u"abc"_s,
                          u"0"_s, u"é"_s, u"e\u0301"_s, u"👍🏽x"_s, u"3e2"_s};
  const auto text = [&] { return texts[pick(texts.size())]; };
  const auto anyType = [&]() -> const PingType& {
    const QList<PingType>& types = PingType::types(view->selectedAppId());
    return types[pick(types.size())];
  };
  const auto anyPing = [&] { return ping(pick(pings().size())); };

  SequenceDocument lastTold = view->document();
  QObject::connect(view.get(), &StudioView::documentChanged, [&] {
    EXPECT_FALSE(view->document() == lastTold);
    lastTold = view->document();
  });

  const std::vector<std::function<void()>> commands{
      [&] { view->addPing(); },
      [&] { view->addPing(); },
      [&] {
        if (!pings().isEmpty()) view->selectPing(anyPing());
      },
      [&] {
        if (!pings().isEmpty()) view->selectPing(anyPing());
      },
      [&] {
        if (!pings().isEmpty()) view->removePing(anyPing().id);
      },
      [&] { view->clearSelection(); },
      [&] { view->pickApp(AppPreset::all()[pick(5)].id); },
      [&] { view->pickCustomApp(); },
      [&] { view->pickType(anyType()); },
      [&] { view->applyType(anyType()); },
      [&] { view->setTitle(text()); },
      [&] { view->setCustomAppLabel(text()); },
      [&] { view->setSenderText(text()); },
      [&] { view->setMessageText(text()); },
      [&] { view->setDelayText(text()); },
      [&] { view->pickWallpaper(Studio::wallpapers()[pick(4)].id); },
      [&] {
        view->pickPhotoChip();
        if (panels.pending) panels.answer(u"/photos/a.png"_s);
      },
      [&] { view->play(); },
      [&] {
        nowMs += static_cast<double>(pick(900));
        view->player()->tick();
      },
      [&] {
        nowMs += static_cast<double>(pick(900));
        view->player()->tick();
      },
      [&] {
        if (pick(8) == 0) view->startNew();
      },
  };

  for (int step = 0; step < 4000 && !HasFailure(); ++step) {
    const SequenceDocument before = view->document();
    const qsizetype tonesBefore = tones.played.size();
    const auto selectedBefore = view->selectedPingId();
    commands[static_cast<std::size_t>(pick(static_cast<qsizetype>(commands.size())))]();
    settle();

    EXPECT_EQ(view->document(), lastTold);
    EXPECT_EQ(view->player()->document(), view->document());
    EXPECT_EQ(view->player()->elapsedMs() == SequencePlayer::finishedMs, !view->isPlaying());
    EXPECT_EQ(view->selectedPingId().has_value(), view->selectedIndex().has_value());
    EXPECT_EQ(view->canPlay(), !pings().isEmpty() && !view->isPlaying());
    EXPECT_EQ(view->delayText().isEmpty(), !view->selectedPingId());
    EXPECT_EQ(view->senderText(),
              view->selectedPingId() ? ping(*view->selectedIndex()).title : view->draftTitle());
    EXPECT_TRUE(view->isPlaying() || tones.played.size() == tonesBefore);
    const QList<PingType>& types = PingType::types(view->selectedAppId());
    EXPECT_TRUE(std::any_of(types.begin(), types.end(),
                            [&](const PingType& t) { return t.id == view->selectedTypeId(); }));
    QSet<QString> ids;
    for (const Ping& each : pings()) {
      EXPECT_TRUE(std::isfinite(each.delayMs) && each.delayMs >= 0);
      ids.insert(each.id);
    }
    EXPECT_EQ(ids.size(), pings().size());
    // Only the selected ping is ever edited; the others stay as they are, or go.
    for (const Ping& each : before.notifications) {
      const auto now = std::find_if(pings().begin(), pings().end(),
                                    [&each](const Ping& other) { return other.id == each.id; });
      EXPECT_TRUE(now == pings().end() || each.id == selectedBefore || *now == each);
    }
  }
}

}  // namespace
}  // namespace brisklet
