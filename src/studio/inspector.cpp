#include "studio/inspector.h"

#include <QVBoxLayout>

#include "studio/add_ping_button.h"
#include "studio/app_chip.h"
#include "studio/chip_grid.h"
#include "studio/custom_app_chip.h"
#include "studio/custom_wallpaper_chip.h"
#include "studio/inspector_block.h"
#include "studio/studio_field.h"
#include "studio/type_chip.h"
#include "studio/wallpaper_chip.h"

namespace brisklet {

namespace {

/// Shows or hides a field with what is around it. One that disappears leaves the focus to nobody.
void setShown(QWidget* area, StudioField* field, bool shown) {
  if (!shown && field->edit()->hasFocus()) field->edit()->clearFocus();
  area->setVisible(shown);
}

using Shape = ChipRows::Shape;

constexpr ChipRows wallpaperRows{.shape = Shape::Square, .spacing = 8, .columns = 5};
constexpr ChipRows appRows{.shape = Shape::Square, .spacing = 8, .columns = 6};
constexpr ChipRows typeRows{
    .shape = Shape::Strip, .spacing = 6, .minColumnWidth = 88, .height = TypeChip::chipHeight};
constexpr int appNameMargin = 10, fieldSpacing = 10;  // pt

}  // namespace

Inspector::Inspector(QWidget* parent)
    : QWidget(parent),
      wallpapers_(new ChipGrid(tr("Lock screen"), wallpaperRows)),
      apps_(new ChipGrid(tr("App"), appRows)),
      customAppLabel_(new StudioField(tr("App name"))),
      customAppLabelArea_(new QWidget),
      types_(new ChipGrid(tr("Type"), typeRows)),
      sender_(new StudioField(tr("Sender"))),
      message_(new StudioField(tr("Text"))),
      delay_(new StudioField(tr("Lands at (seconds)"))) {
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(0);

  auto* lockScreen = new InspectorBlock(tr("Lock screen"));
  lockScreen->content()->addWidget(wallpapers_);
  addWallpapers(wallpapers_);
  column->addWidget(lockScreen);

  auto* app = new InspectorBlock(tr("App"));
  app->content()->addWidget(apps_);
  addApps(apps_);
  auto* appName = new QVBoxLayout(customAppLabelArea_);
  appName->setContentsMargins(0, appNameMargin, 0, 0);
  appName->addWidget(customAppLabel_);
  app->content()->addWidget(customAppLabelArea_);
  customAppLabelArea_->hide();
  column->addWidget(app);

  auto* type = new InspectorBlock(tr("Type"));
  type->content()->addWidget(types_);
  column->addWidget(type);

  auto* ping = new InspectorBlock(tr("Ping"));
  auto* fields = new QVBoxLayout;
  fields->setSpacing(fieldSpacing);
  for (QWidget* field : {sender_, message_, delay_}) fields->addWidget(field);
  auto* addPing = new AddPingButton;
  fields->addWidget(addPing);
  ping->content()->addLayout(fields);
  delay_->hide();
  column->addWidget(ping);
  column->addStretch();

  connect(customAppLabel_, &StudioField::textEdited, this, &Inspector::customAppLabelEdited);
  connect(sender_, &StudioField::textEdited, this, &Inspector::senderEdited);
  connect(message_, &StudioField::textEdited, this, &Inspector::messageEdited);
  connect(delay_, &StudioField::textEdited, this, &Inspector::delayEdited);
  connect(delay_, &StudioField::editingFinished, this, [this] { delay_->setText(storedDelay_); });
  connect(addPing, &QAbstractButton::clicked, this, &Inspector::addPingPressed);
}

void Inspector::addWallpapers(ChipGrid* grid) {
  for (const Studio::Wallpaper& wallpaper : Studio::wallpapers()) {
    auto* chip = new WallpaperChip(wallpaper.id, wallpaper.label);
    grid->add(chip);
    connect(chip, &QAbstractButton::clicked, this, [this, chip] { Q_EMIT wallpaperPicked(chip->id()); });
  }
  photo_ = new CustomWallpaperChip;
  grid->add(photo_);
  connect(photo_, &QAbstractButton::clicked, this, &Inspector::photoChipPressed);
}

void Inspector::addApps(ChipGrid* grid) {
  for (const AppPreset& preset : AppPreset::all()) {
    auto* chip = new AppChip(preset);
    grid->add(chip);
    connect(chip, &QAbstractButton::clicked, this, [this, chip] { Q_EMIT appPicked(chip->id()); });
  }
  customApp_ = new CustomAppChip;
  grid->add(customApp_);
  connect(customApp_, &QAbstractButton::clicked, this, &Inspector::customAppPicked);
}

void Inspector::setState(const State& state) {
  const QString custom = QStringLiteral("custom");
  for (Chip* chip : wallpapers_->chips()) {
    const auto* builtIn = qobject_cast<WallpaperChip*>(chip);
    chip->setSelected(state.wallpaper == (builtIn ? builtIn->id() : custom));
  }
  wallpapers_->selectionChanged();
  photo_->setPhoto(state.wallpaperUrl);

  for (Chip* chip : apps_->chips()) {
    const auto* builtIn = qobject_cast<AppChip*>(chip);
    chip->setSelected(state.selectedAppId == (builtIn ? builtIn->id() : custom));
  }
  apps_->selectionChanged();
  customAppLabel_->setText(state.customAppLabel);
  setShown(customAppLabelArea_, customAppLabel_, state.selectedAppId == custom);

  showTypes(state.selectedAppId);
  for (Chip* chip : types_->chips())
    chip->setSelected(static_cast<TypeChip*>(chip)->type().id == state.selectedTypeId);
  types_->selectionChanged();

  sender_->setText(state.sender);
  message_->setText(state.message);
  showDelay(state);
}

void Inspector::showTypes(const QString& appId) {
  if (appId == typesOfApp_) return;
  typesOfApp_ = appId;
  types_->clear();
  QWidget* before = customAppLabel_->edit();
  for (const PingType& type : PingType::types(appId)) {
    auto* chip = new TypeChip(type);
    types_->add(chip);
    setTabOrder(before, chip);
    before = chip;
    connect(chip, &QAbstractButton::clicked, this, [this, chip] { Q_EMIT typePicked(chip->type()); });
  }
}

void Inspector::showDelay(const State& state) {
  // While somebody types, the text stays theirs: it is written anew when they are done.
  const bool typing = delay_->edit()->hasFocus() && delayOfPing_ == state.selectedPingId;
  delayOfPing_ = state.selectedPingId;
  storedDelay_ = state.delay;
  if (!typing) delay_->setText(state.delay);
  setShown(delay_, delay_, state.selectedPingId.has_value());
}

}  // namespace brisklet
