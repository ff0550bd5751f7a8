#include "studio/controls/studio_style.h"

#include "drawing/symbol_image.h"
#include "studio/controls/control_painting.h"
#include "studio/controls/palette.h"

#include <QDialog>
#include <QPainter>
#include <QScrollBar>
#include <QStyleFactory>
#include <QStyleOption>
#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace brisklet {

namespace {

constexpr int tooltipMargin = 5, controlHeight = 32, buttonSideMargin = 6, fieldMargin = 6;  // pt
constexpr int dialogMargin = 16, listRowHeight = 26, menuEntryRoom = 4, menuMargin = 4;      // pt
constexpr int scrollBarWidth = 12, scrollThumbInset = 3, leastScrollThumb = 42;              // pt
constexpr double radius = 7, innerRadius = 5, chevronSize = 11;                              // pt

/// What a file dialog shows in its bars and beside its files.
constexpr std::pair<QStyle::StandardPixmap, QStringView> symbols[] = {
    {QStyle::SP_ArrowBack, u"chevron.left"},
    {QStyle::SP_FileDialogBack, u"chevron.left"},
    {QStyle::SP_ArrowForward, u"chevron.right"},
    {QStyle::SP_FileDialogToParent, u"arrow.up"},
    {QStyle::SP_FileDialogNewFolder, u"folder.plus"},
    {QStyle::SP_FileDialogListView, u"square.grid"},
    {QStyle::SP_FileDialogDetailedView, u"list"},
    {QStyle::SP_DirIcon, u"folder"},
    {QStyle::SP_DirLinkIcon, u"folder"},
    {QStyle::SP_DirHomeIcon, u"folder"},
    {QStyle::SP_FileIcon, u"doc"},
    {QStyle::SP_FileLinkIcon, u"doc"},
    {QStyle::SP_ComputerIcon, u"desktop"},
    {QStyle::SP_DesktopIcon, u"desktop"},
    {QStyle::SP_DriveHDIcon, u"desktop"},
};

/// Sharp at the sizes that dialogs ask for on screens of every scale.
QIcon symbolIcon(const QString& name) {
  QIcon icon;
  for (const int size : {16, 20, 24, 32, 48}) {
    QPixmap pixels(size, size);
    pixels.fill(Qt::transparent);
    QPainter painter(&pixels);
    drawSymbol(painter, name, size, QRectF(pixels.rect()).center(), Studio::mute);
    for (const QIcon::Mode mode : {QIcon::Normal, QIcon::Selected}) icon.addPixmap(pixels, mode);
  }
  return icon;
}

bool isDefault(const QStyleOption* option) {
  const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
  return button && (button->features & QStyleOptionButton::DefaultButton);
}

void paintFocus(QPainter& painter, const QStyleOption& option, double cornerRadius) {
  if ((option.state & QStyle::State_HasFocus) && (option.state & QStyle::State_KeyboardFocusChange))
    paintOutline(painter, {option.rect, cornerRadius, Studio::focus, 2});
}

/// A box that can be pressed or written into, in its state.
void paintControl(QPainter& painter, const QStyleOption& option, bool isSolid = false) {
  const QStyle::State state = option.state;
  const bool isUsable = state & QStyle::State_Enabled;
  const bool isHovered = isUsable && (state & QStyle::State_MouseOver);
  const bool isDown = state & QStyle::State_Sunken;
  RoundedBox box{option.rect, radius};
  if (!isUsable) painter.setOpacity(0.4);
  if (isSolid) {
    paintBox(painter, box, isDown ? Studio::pressedInk : isHovered ? Studio::hoveredInk : Studio::ink);
  } else {
    box.outline = isHovered ? Studio::hoveredLine : Studio::line;
    box.outlineWidth = 1;
    paintBox(painter, box, Studio::white);
    if (isDown) paintBox(painter, {.rect = option.rect, .radius = radius}, Studio::pressVeil);
  }
  paintFocus(painter, option, radius);
}

/// A button without a box of its own.
void paintToolButton(QPainter& painter, const QStyleOption& option) {
  const bool isOn = option.state & (QStyle::State_On | QStyle::State_Sunken);
  const bool isHovered = (option.state & QStyle::State_MouseOver) && (option.state & QStyle::State_Enabled);
  if (isOn || isHovered)
    paintBox(painter, {.rect = option.rect, .radius = innerRadius},
             isOn ? Studio::pressVeil : Studio::hoverVeil);
  paintFocus(painter, option, innerRadius);
}

/// A thumb alone, over what it scrolls.
void paintScrollBar(QPainter& painter, const QStyleOptionComplex& option, const QRectF& slider) {
  const bool isHeld =
      (option.state & QStyle::State_Sunken) && (option.activeSubControls & QStyle::SC_ScrollBarSlider);
  constexpr int inset = scrollThumbInset;
  QColor color = Studio::ink;
  color.setAlphaF(isHeld ? 0.56F : option.state & QStyle::State_MouseOver ? 0.42F : 0.22F);
  painter.setPen(Qt::NoPen);
  painter.setBrush(color);
  painter.drawRoundedRect(slider.adjusted(inset, inset, -inset, -inset), inset, inset);
}

}  // namespace

StudioStyle::StudioStyle() : QProxyStyle(QStyleFactory::create(u"Fusion"_s)) {}

void StudioStyle::polish(QWidget* widget) {
  QProxyStyle::polish(widget);
  // Scroll bars lie over the content.
  if (qobject_cast<QScrollBar*>(widget)) widget->setAttribute(Qt::WA_OpaquePaintEvent, false);
}

void StudioStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                                const QWidget* widget) const {
  painter->save();
  setUpPainter(*painter);
  switch (element) {
    case PE_PanelTipLabel:
      paintBox(*painter, {option->rect, 0, Studio::hoveredLine, 1}, Studio::white);
      break;
    case PE_Frame:
      paintBox(*painter, {option->rect, 0, Studio::line, 1}, Qt::transparent);
      break;
    case PE_PanelButtonCommand:
      paintControl(*painter, *option, isDefault(option));
      break;
    case PE_PanelButtonTool:
      paintToolButton(*painter, *option);
      break;
    case PE_PanelLineEdit: {
      const auto* frame = qstyleoption_cast<const QStyleOptionFrame*>(option);
      if (!frame || frame->lineWidth == 0) break;
      // Fields are always sunken, and marked however they came into focus.
      QStyleOption field(*option);
      field.state = (field.state & ~State_Sunken) | State_KeyboardFocusChange;
      paintControl(*painter, field);
      break;
    }
    case PE_FrameFocusRect:
    case PE_FrameDefaultButton:
      break;
    default:
      painter->restore();
      QProxyStyle::drawPrimitive(element, option, painter, widget);
      return;
  }
  painter->restore();
}

void StudioStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                              const QWidget* widget) const {
  switch (element) {
    case CE_PushButtonLabel: {
      const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
      if (!button || !isDefault(option)) break;
      QStyleOptionButton solid(*button);
      solid.palette.setColor(QPalette::ButtonText, Studio::white);
      QProxyStyle::drawControl(element, &solid, painter, widget);
      return;
    }
    case CE_HeaderSection:
    case CE_HeaderEmptyArea:
      painter->fillRect(option->rect, Studio::white);
      paintRule(*painter, QRectF(option->rect.left(), option->rect.bottom(), option->rect.width(), 1),
                Studio::line);
      return;
    case CE_Splitter:
    case CE_SizeGrip:
      return;
    default:
      break;
  }
  QProxyStyle::drawControl(element, option, painter, widget);
}

void StudioStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                     QPainter* painter, const QWidget* widget) const {
  if (control != CC_ComboBox && control != CC_ScrollBar) {
    QProxyStyle::drawComplexControl(control, option, painter, widget);
    return;
  }
  painter->save();
  setUpPainter(*painter);
  if (control == CC_ComboBox) {
    paintControl(*painter, *option);
    const QRectF arrow = subControlRect(control, option, SC_ComboBoxArrow, widget);
    drawSymbol(*painter, u"chevron.down"_s, chevronSize, arrow.center(), Studio::mute);
  } else {
    paintScrollBar(*painter, *option, subControlRect(control, option, SC_ScrollBarSlider, widget));
  }
  painter->restore();
}

QRect StudioStyle::subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                                  const QWidget* widget) const {
  const auto* bar = qstyleoption_cast<const QStyleOptionSlider*>(option);
  if (control != CC_ScrollBar || !bar) {
    const QRect place = QProxyStyle::subControlRect(control, option, part, widget);
    return part == SC_ComboBoxEditField && control == CC_ComboBox ? place.adjusted(fieldMargin, 0, 0, 0)
                                                                  : place;
  }
  // The arrows at the ends lie outside, and the groove takes their room.
  const QPoint arrow =
      bar->orientation == Qt::Horizontal ? QPoint(scrollBarWidth, 0) : QPoint(0, scrollBarWidth);
  QStyleOptionSlider longer(*bar);
  longer.rect.adjust(0, 0, 2 * arrow.x(), 2 * arrow.y());
  return QProxyStyle::subControlRect(control, &longer, part, widget).translated(-arrow);
}

QRect StudioStyle::subElementRect(SubElement element, const QStyleOption* option,
                                  const QWidget* widget) const {
  const QRect place = QProxyStyle::subElementRect(element, option, widget);
  const auto* frame = qstyleoption_cast<const QStyleOptionFrame*>(option);
  return element == SE_LineEditContents && frame && frame->lineWidth > 0
             ? place.adjusted(fieldMargin, 0, -fieldMargin, 0)
             : place;
}

QSize StudioStyle::sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& contents,
                                    const QWidget* widget) const {
  QSize size = QProxyStyle::sizeFromContents(type, option, contents, widget);
  switch (type) {
    case CT_PushButton:
      size.rwidth() += 2 * buttonSideMargin;
      [[fallthrough]];
    case CT_LineEdit:
    case CT_ComboBox:
      size.setHeight(std::max(size.height(), controlHeight));
      break;
    case CT_ItemViewItem:
      size.setHeight(std::max(size.height(), listRowHeight));
      break;
    case CT_MenuItem:
      size.rheight() += menuEntryRoom;
      break;
    default:
      break;
  }
  return size;
}

int StudioStyle::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const {
  switch (metric) {
    case PM_ToolTipLabelFrameWidth:
      return tooltipMargin;
    case PM_ScrollBarExtent:
      return scrollBarWidth;
    case PM_ScrollBarSliderMin:
      return leastScrollThumb;
    case PM_ScrollView_ScrollBarOverlap: {
      const auto* bar = qobject_cast<const QScrollBar*>(widget);
      return bar && bar->orientation() == Qt::Vertical ? scrollBarWidth : 0;
    }
    case PM_MenuVMargin:
      return menuMargin;
    case PM_ListViewIconSize:
      return pixelMetric(PM_SmallIconSize, option, widget);
    case PM_LayoutLeftMargin:
    case PM_LayoutTopMargin:
    case PM_LayoutRightMargin:
    case PM_LayoutBottomMargin:
      if (qobject_cast<const QDialog*>(widget)) return dialogMargin;
      break;
    default:
      break;
  }
  return QProxyStyle::pixelMetric(metric, option, widget);
}

int StudioStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                           QStyleHintReturn* result) const {
  const bool isRefused = hint == SH_UnderlineShortcut || hint == SH_DialogButtonBox_ButtonsHaveIcons;
  return isRefused ? 0 : QProxyStyle::styleHint(hint, option, widget, result);
}

QIcon StudioStyle::standardIcon(StandardPixmap icon, const QStyleOption* option,
                                const QWidget* widget) const {
  for (const auto& [standard, name] : symbols)
    if (standard == icon) return symbolIcon(name.toString());
  return QProxyStyle::standardIcon(icon, option, widget);
}

}  // namespace brisklet
