#pragma once

#include "model/catalogue.h"
#include "model/movie_style.h"
#include "model/sequence_document.h"
#include "playback/sequence_player.h"

#include <QCoroTask>
#include <QImage>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <functional>
#include <optional>
#include <stop_token>

namespace brisklet {

class FileManager;
class FilePanels;
class TonePlayer;

/// The editor of one window: the sequence being edited, the player that shows it, and what new pings are made
/// from. It needs no widget; widgets read it and call its commands. Every command takes effect at once, then
/// the signals tell what differs: each at most once a command, and only when a value changed. Confined to the
/// user-interface thread.
class StudioView : public QObject {
  Q_OBJECT

 public:
  /// Called with the frames written so far and the frames in all.
  using Progress = std::function<void(qint64 framesDone, qint64 frames)>;
  using ExportMovie = std::function<QCoro::Task<>(SequenceDocument document, MovieStyle style, QString path,
                                                  Progress progress, std::stop_token stop)>;

  /// What the editor reaches outside itself. Objects are not owned and outlive the editor.
  struct Services {
    TonePlayer* tones = nullptr;  // none: silent
    FilePanels* panels = nullptr;
    FileManager* fileManager = nullptr;
    ExportMovie exportMovie = {};
    /// This and `saveWallpaper` are called on another thread.
    std::function<std::optional<QImage>(const QString& path)> decodeImage = {};
    /// The file name endings that `decodeImage` reads, without dots.
    QStringList imageSuffixes = {};
    /// Stores a copy of a photo and returns its path; throws `Error`.
    std::function<QString(const QImage& image)> saveWallpaper = {};
    SequencePlayer::ClockMs clock = SequencePlayer::steadyClockMs;
  };

  explicit StudioView(Services services, QObject* parent = nullptr);
  /// Stops a running export. The export ends by itself, in its own time, if the event loop goes on.
  ~StudioView() override;

  // State.

  [[nodiscard]] const SequenceDocument& document() const { return state_.document; }
  /// Never null. Another object after `startNew`; `playerReplaced` tells.
  [[nodiscard]] SequencePlayer* player() const { return player_; }
  /// The app of new pings: the id of a preset, or "custom".
  [[nodiscard]] const QString& selectedAppId() const { return state_.selectedAppId; }
  /// The message template of new pings.
  [[nodiscard]] const QString& selectedTypeId() const { return state_.selectedTypeId; }
  [[nodiscard]] const QString& customAppLabel() const { return state_.customAppLabel; }
  [[nodiscard]] const QString& draftTitle() const { return state_.draftTitle; }
  [[nodiscard]] const QString& draftMessage() const { return state_.draftMessage; }
  [[nodiscard]] const std::optional<QString>& selectedPingId() const { return state_.selectedPingId; }
  [[nodiscard]] bool exporting() const { return exporting_; }
  /// The part of the running export's frames that is done, 0 to 1; 0 when none runs.
  [[nodiscard]] double exportProgress() const { return exportProgress_; }
  /// What went wrong last, for the user; empty when there is nothing to show.
  [[nodiscard]] const QString& error() const { return error_; }

  // Derived.

  /// The place of the selected ping in the document; nothing when none is selected or it has gone.
  [[nodiscard]] std::optional<qsizetype> selectedIndex() const;
  /// "No pings", "1 ping · 2.5s", "3 pings · 3.9s".
  [[nodiscard]] QString summary() const;
  [[nodiscard]] bool isPlaying() const { return player_->isPlaying(); }
  /// The document has pings and the player is not playing.
  [[nodiscard]] bool canPlay() const;
  /// The document has pings and no export runs.
  [[nodiscard]] bool canExport() const;

  // Texts of the inspector's fields. They are those of the selected ping, or else the drafts.

  [[nodiscard]] QString senderText() const;
  void setSenderText(const QString& text);
  [[nodiscard]] QString messageText() const;
  void setMessageText(const QString& text);
  /// The selected ping's landing time in seconds; empty when none is selected.
  [[nodiscard]] QString delayText() const;
  /// Moves the selected ping; a text that says no finite number changes nothing.
  void setDelayText(const QString& text);

  // Commands.

  /// Appends a ping made from the chosen app, template and drafts, 700 ms after the last in the list.
  void addPing();
  /// Writes a template's texts into the selected ping, or else into the drafts.
  void applyType(const PingType& type);
  /// Selects a ping; clears the selection when it is selected already.
  void selectPing(const Ping& ping);
  void clearSelection();
  void removePing(const QString& id);
  /// Appends a copy under a new id, 700 ms after the last in the list, and selects it.
  void duplicatePing(const QString& id);
  /// The ping as a scene of its own, in JSON; empty when there is none.
  [[nodiscard]] QByteArray copiedPing(const QString& id) const;
  /// Appends the pings of a scene under new ids, the first 700 ms after the last in the list, and selects the
  /// last. `error` tells what a text says that is no scene.
  void pastePings(const QByteArray& scene);
  /// Moves a ping's landing; never before the start.
  void nudgePing(const QString& id, double byMs);
  /// Starts over with the blank sequence, a new player and the first choices. A running export goes on.
  void startNew();
  /// Goes back to the state before the last change of the sequence, or forward again. What is typed into one
  /// field without a pause is one change.
  void undo();
  void redo();
  /// What is typed next is a change of its own.
  void endTyping() { typedInto_.clear(); }
  /// Hands the document to the player. Every change of the document does this by itself.
  void syncPlayer();
  /// Plays from the beginning; nothing unless `canPlay()`.
  void play();

  void setTitle(const QString& title);
  void setCustomAppLabel(const QString& label);
  /// What the chips do.
  void pickApp(const QString& id);
  void pickType(const PingType& type);
  void pickWallpaper(const QString& id);
  /// Goes back to the stored photo, or asks for a new one when there is none or it is shown already.
  void pickPhotoChip();

  /// Asks where to, writes the movie of the document as it is at that moment, and reveals it. Nothing unless
  /// `canExport()` and no panel is open.
  void exportMovie();
  /// Ends the running export soon; `exporting` turns false when it has ended, without an error. What was
  /// written of the movie is removed.
  void stopExport();
  /// Asks for a photo, stores a copy and makes it the wallpaper.
  void pickCustomWallpaper();
  /// Stores a copy of a photo, in the background, and makes it the wallpaper.
  void usePhoto(const QString& path);
  void usePhoto(const QImage& photo);
  /// Whether the photo panel would offer this file.
  [[nodiscard]] bool isOffered(const QString& path) const;
  /// Shows that something went wrong, in place of what `error` said before.
  void setError(const QString& error);
  void dismissError();

 Q_SIGNALS:
  void documentChanged();
  /// `selectedAppId`, `selectedTypeId` or `selectedPingId`.
  void selectionChanged();
  /// `draftTitle`, `draftMessage` or `customAppLabel`.
  void draftsChanged();
  /// There is another player. The former one, stopped, lives until control returns to the event loop.
  void playerReplaced();
  /// The player began or ended a run.
  void playingChanged();
  void exportingChanged();
  void exportProgressChanged();
  void errorChanged();

 private:
  /// What the commands edit: a plain value.
  struct State {
    SequenceDocument document;
    QString selectedAppId;
    QString selectedTypeId;
    QString customAppLabel;
    QString draftTitle;
    QString draftMessage;
    std::optional<QString> selectedPingId;

    friend bool operator==(const State&, const State&) = default;
  };

  [[nodiscard]] static State firstState();
  /// Edits the state, then tells what differs. `typedInto` names the field whose text the edit is.
  template <typename Edit>
  void change(Edit edit, const QString& typedInto = {});
  void remember(const State& former, const QString& typedInto);
  /// Goes to the last state of one list, and leaves the present one in the other.
  void travel(QList<State>& from, QList<State>& to);
  void announceChanges(const State& former);
  /// Writes a template's texts into the selected ping, or else into the drafts.
  static void fillIn(State& state, const PingType& type);
  static void select(State& state, const Ping& ping);
  /// When a ping lands that is appended.
  [[nodiscard]] double nextLandingMs() const;
  void append(QList<Ping> pings);
  [[nodiscard]] bool isSelected(const QString& id) const;
  void setExporting(bool exporting);
  void setExportProgress(double progress);
  /// Replaces the player by a new one over the document.
  void makePlayer();
  void watchVisiblePings();
  /// Sounds the pings that have come into view since the last look.
  void lookAtVisiblePings();
  void startExport(const QString& path, const MovieStyle& style);
  static QCoro::Task<> runExport(QPointer<StudioView> view, ExportMovie exportMovie,
                                 SequenceDocument document, MovieStyle style, QString path,
                                 std::stop_token stop);
  void store(std::function<std::optional<QImage>()> decode);

  Services services_;
  State state_;
  /// Oldest first.
  QList<State> past_, future_;
  /// The field that is being typed into, and where its changes begin.
  QString typedInto_;
  qsizetype typedFrom_ = 0;
  double typedAtMs_ = 0;
  SequencePlayer* player_ = nullptr;
  QStringList visibleIds_;
  bool looksSoon_ = false;
  bool panelOpen_ = false;
  /// Counts the photos asked for: one that comes too late is not used.
  int photosAsked_ = 0;
  bool exporting_ = false;
  double exportProgress_ = 0;
  std::stop_source exportStop_{std::nostopstate};
  QCoro::Task<> export_;
  QString error_;
};

}  // namespace brisklet
