#include "studio/inspector.h"

#include "studio/app_chip.h"
#include "studio/controls/chip_grid.h"
#include "studio/controls/inspector_block.h"
#include "studio/controls/palette.h"
#include "studio/controls/studio_button.h"
#include "studio/controls/studio_field.h"
#include "studio/controls/studio_text.h"
#include "studio/editor/delay_text.h"
#include "studio/picture_chip.h"
#include "studio/type_chip.h"

#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace brisklet {

namespace {

/// Shows or hides a field with what is around it. One that disappears leaves the focus to the window.
void setShown(QWidget* area, StudioField* field, bool shown) {
  if (!shown && field->window()->focusWidget() == field->edit())
    field->window()->setFocus(Qt::OtherFocusReason);
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
      wallpapers_(new ChipGrid(u"Lock screen"_s, wallpaperRows)),
      photoRemark_(new StudioText({12, FontWeight::Regular}, Studio::mute)),
      apps_(new ChipGrid(u"App"_s, appRows)),
      customAppLabel_(new StudioField(u"App name"_s)),
      customAppLabelArea_(new QWidget),
      types_(new ChipGrid(u"Type"_s, typeRows)),
      sender_(new StudioField(u"Sender"_s)),
      message_(new StudioField(u"Text"_s)),
      delay_(new StudioField(u"Lands at (seconds)"_s)),
      addPing_(new StudioButton(u"Add ping"_s, {}, ButtonLook::Wide)) {
  addPing_->setToolTip(u"Ctrl+Enter"_s);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(0);

  auto* lockScreen = new InspectorBlock(u"Lock screen"_s);
  lockScreen->content()->addWidget(wallpapers_);
  addWallpapers(wallpapers_);
  photoRemark_->setText(u"This photo is too light for the clock."_s);
  photoRemark_->hide();
  lockScreen->content()->addWidget(photoRemark_);
  column->addWidget(lockScreen);

  auto* app = new InspectorBlock(u"App"_s);
  app->content()->addWidget(apps_);
  addApps(apps_);
  auto* appName = new QVBoxLayout(customAppLabelArea_);
  appName->setContentsMargins(0, appNameMargin, 0, 0);
  appName->addWidget(customAppLabel_);
  app->content()->addWidget(customAppLabelArea_);
  customAppLabelArea_->hide();
  column->addWidget(app);

  auto* type = new InspectorBlock(u"Type"_s);
  type->content()->addWidget(types_);
  column->addWidget(type);

  auto* ping = new InspectorBlock(u"Ping"_s);
  auto* fields = new QVBoxLayout;
  fields->setSpacing(fieldSpacing);
  for (QWidget* field : {sender_, message_, delay_}) fields->addWidget(field);
  fields->addWidget(addPing_);
  ping->content()->addLayout(fields);
  delay_->hide();
  column->addWidget(ping);
  column->addStretch();

  connect(customAppLabel_, &StudioField::textEdited, this, &Inspector::customAppLabelEdited);
  connect(sender_, &StudioField::textEdited, this, &Inspector::senderEdited);
  connect(message_, &StudioField::textEdited, this, &Inspector::messageEdited);
  connect(delay_, &StudioField::textEdited, this, &Inspector::delayEdited);
  connect(delay_, &StudioField::editingFinished, this, [this] { delay_->setText(storedDelay_); });
  connect(addPing_, &QAbstractButton::clicked, this, &Inspector::addPingPressed);
  for (const StudioField* field : {sender_, message_, delay_})
    connect(field, &StudioField::editingFinished, this, &Inspector::editingFinished);
  for (const StudioField* field : {customAppLabel_, delay_}) field->edit()->leaveOnEnter();
  for (const StudioField* field : {sender_, message_})
    connect(field->edit(), &QLineEdit::returnPressed, this, &Inspector::enterPressed);
}

void Inspector::addWallpapers(ChipGrid* grid) {
  for (const Studio::Wallpaper& wallpaper : Studio::wallpapers()) {
    auto* chip = new PictureChip(wallpaper.id, wallpaper.label);
    grid->add(chip);
    connect(chip, &QAbstractButton::clicked, this, [this, chip] { Q_EMIT wallpaperPicked(chip->id()); });
  }
  photo_ = new PictureChip(customId, u"Upload lock screen photo"_s);
  photo_->setToolTip(u"Upload photo"_s);
  grid->add(photo_);
  connect(photo_, &QAbstractButton::clicked, this, &Inspector::photoChipPressed);
  connect(photo_, &PictureChip::photoRead, this, &Inspector::showPhotoRemark);
}

void Inspector::addApps(ChipGrid* grid) {
  for (const AppPreset& preset : AppPreset::all()) {
    auto* chip = new AppChip(preset);
    grid->add(chip);
    connect(chip, &QAbstractButton::clicked, this, [this, chip] { Q_EMIT appPicked(chip->id()); });
  }
  auto* custom = new PictureChip(customId, u"Custom app"_s);
  grid->add(custom);
  connect(custom, &QAbstractButton::clicked, this, [this] { Q_EMIT appPicked(customId); });
}

void Inspector::focusAddPing(Qt::FocusReason reason) {
  addPing_->setFocus(reason);
}

void Inspector::focusMessage(Qt::FocusReason reason) {
  for (const StudioField* field : {sender_, message_}) field->edit()->forgetHistory();
  message_->edit()->setFocus(reason);
  message_->edit()->selectAll();
}

void Inspector::setState(const State& state) {
  for (Chip* chip : wallpapers_->chips())
    chip->setSelected(state.wallpaper == static_cast<PictureChip*>(chip)->id());
  wallpapers_->selectionChanged();
  photo_->setPhoto(state.wallpaperUrl);
  showPhotoRemark();

  for (Chip* chip : apps_->chips()) {
    const auto* builtIn = qobject_cast<AppChip*>(chip);
    chip->setSelected(state.selectedAppId == (builtIn ? builtIn->id() : customId));
  }
  apps_->selectionChanged();
  customAppLabel_->setText(state.customAppLabel);
  setShown(customAppLabelArea_, customAppLabel_, state.selectedAppId == customId);

  showTypes(state.selectedAppId);
  for (Chip* chip : types_->chips())
    chip->setSelected(static_cast<TypeChip*>(chip)->type().id == state.selectedTypeId);
  types_->selectionChanged();

  sender_->setText(state.sender);
  message_->setText(state.message);
  showDelay(state);
}

void Inspector::showPhotoRemark() {
  photoRemark_->setVisible(photo_->isSelected() && photo_->isTooLight());
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
  // While somebody types, the text stays theirs: it is written anew when they are done, or when the time is
  // changed by other means.
  const std::optional<double> typed = readSeconds(delay_->edit()->text());
  const bool typing = delay_->edit()->hasFocus() && delayOfPing_ == state.selectedPingId &&
                      (state.delay == storedDelay_ || (typed && secondsText(*typed) == state.delay));
  delayOfPing_ = state.selectedPingId;
  storedDelay_ = state.delay;
  if (!typing) delay_->setText(state.delay);
  setShown(delay_, delay_, state.selectedPingId.has_value());
}

}  // namespace brisklet
