#pragma once

#include "model/catalogue.h"

#include <QString>
#include <QWidget>
#include <optional>

namespace brisklet {

class ChipGrid;
class PictureChip;
class StudioButton;
class StudioField;
class StudioText;

/// The choices from which pings are made, and the fields of the selected ping. Shows what it is given and
/// tells what the user wants.
class Inspector : public QWidget {
  Q_OBJECT

 public:
  struct State {
    QString wallpaper;
    QString wallpaperUrl;
    QString selectedAppId;
    QString selectedTypeId;
    QString customAppLabel;
    QString sender;
    QString message;
    std::optional<QString> selectedPingId;
    /// The selected ping's landing time in seconds.
    QString delay;
  };

  explicit Inspector(QWidget* parent = nullptr);

  void setState(const State& state);
  void focusAddPing(Qt::FocusReason reason);
  /// Has the next text typed over the present one.
  void focusMessage(Qt::FocusReason reason);

 Q_SIGNALS:
  void wallpaperPicked(const QString& id);
  void photoChipPressed();
  void appPicked(const QString& id);
  void customAppLabelEdited(const QString& text);
  void typePicked(const PingType& type);
  void senderEdited(const QString& text);
  void messageEdited(const QString& text);
  void delayEdited(const QString& text);
  void addPingPressed();
  /// Enter in the sender or the text.
  void enterPressed();
  /// A field has been left, or Enter was pressed in it.
  void editingFinished();

 private:
  void addWallpapers(ChipGrid* grid);
  void addApps(ChipGrid* grid);
  void showPhotoRemark();
  void showTypes(const QString& appId);
  void showDelay(const State& state);

  ChipGrid* wallpapers_;
  PictureChip* photo_ = nullptr;
  StudioText* photoRemark_;
  ChipGrid* apps_;
  StudioField* customAppLabel_;
  /// Holds the field and the space above it.
  QWidget* customAppLabelArea_;
  ChipGrid* types_;
  QString typesOfApp_;
  StudioField* sender_;
  StudioField* message_;
  StudioField* delay_;
  StudioButton* addPing_;
  std::optional<QString> delayOfPing_;
  /// The stored landing time, for the field when its editing ends.
  QString storedDelay_;
};

}  // namespace brisklet
