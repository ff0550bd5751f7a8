#include "studio/controls/studio_style.h"

#include "drawing/symbol_image.h"
#include "studio/controls/control_painting.h"
#include "studio/controls/palette.h"

#include <QPainter>
#include <QScrollBar>
#include <QStyleFactory>
#include <QStyleOption>
#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace brisklet {

namespace {

constexpr int tooltipMargin = 5, controlHeight = 32, buttonSideMargin = 6, fieldMargin = 6,
              listRowHeight = 26;                                                // pt
constexpr int scrollBarWidth = 12, scrollThumbInset = 3, leastScrollThumb = 42;  // pt
constexpr double radius = 7, chevronSize = 11;                                   // pt

/// What a file dialog shows in its bars and beside its files.
constexpr std::pair<QStyle::StandardPixmap, QStringView> symbols[] = {
    {QStyle::SP_ArrowBack, u"chevron.left"},
    {QStyle::SP_ArrowForward, u"chevron.right"},
    {QStyle::SP_FileDialogToParent, u"arrow.up"},
    {QStyle::SP_FileDialogNewFolder, u"folder.plus"},
    {QStyle::SP_FileDialogListView, u"square.grid"},
    {QStyle::SP_FileDialogDetailedView, u"list"},
    {QStyle::SP_DirIcon, u"folder"},
    {QStyle::SP_DirHomeIcon, u"folder"},
    {QStyle::SP_FileIcon, u"doc"},
    {QStyle::SP_ComputerIcon, u"desktop"},
};

bool isDefault(const QStyleOption* option) {
  const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
  return button && (button->features & QStyleOptionButton::DefaultButton);
}

/// A box that can be pressed or written into, in its state.
void paintControl(QPainter& painter, const QStyleOption& option, bool isSolid = false) {
  const bool isUsable = option.state & QStyle::State_Enabled;
  const bool isHovered = isUsable && (option.state & QStyle::State_MouseOver);
  const bool isDown = option.state & QStyle::State_Sunken;
  RoundedBox box{option.rect, radius, isHovered ? Studio::hoveredLine : Studio::line, isSolid ? 0.0 : 1.0};
  if (!isUsable) painter.setOpacity(0.4);
  paintBox(painter, box,
           !isSolid    ? Studio::white
           : isDown    ? Studio::pressedInk
           : isHovered ? Studio::hoveredInk
                       : Studio::ink);
  if (isDown && !isSolid) paintBox(painter, {.rect = option.rect, .radius = radius}, Studio::pressVeil);
  if ((option.state & QStyle::State_HasFocus) && (option.state & QStyle::State_KeyboardFocusChange))
    paintOutline(painter, {option.rect, radius, Studio::focus, 2});
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
  const auto* frame = qstyleoption_cast<const QStyleOptionFrame*>(option);
  QStyleOption field(*option);
  painter->save();
  setUpPainter(*painter);
  switch (element) {
    case PE_PanelTipLabel:
      paintBox(*painter, {option->rect, 0, Studio::hoveredLine, 1}, Studio::white);
      break;
    case PE_PanelButtonCommand:
      paintControl(*painter, *option, isDefault(option));
      break;
    case PE_PanelLineEdit:
      // Fields are always sunken, and marked however they came into focus.
      field.state = (field.state & ~State_Sunken) | State_KeyboardFocusChange;
      if (frame && frame->lineWidth > 0) paintControl(*painter, field);
      break;
    case PE_FrameFocusRect:
    case PE_FrameDefaultButton:
      break;
    default:
      QProxyStyle::drawPrimitive(element, option, painter, widget);
  }
  painter->restore();
}

void StudioStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                              const QWidget* widget) const {
  const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
  if (element != CE_PushButtonLabel || !isDefault(option))
    return QProxyStyle::drawControl(element, option, painter, widget);
  QStyleOptionButton solid(*button);
  solid.palette.setColor(QPalette::ButtonText, Studio::white);
  QProxyStyle::drawControl(element, &solid, painter, widget);
}

void StudioStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                     QPainter* painter, const QWidget* widget) const {
  painter->save();
  if (control == CC_ComboBox || control == CC_ScrollBar) setUpPainter(*painter);
  if (control == CC_ComboBox) {
    paintControl(*painter, *option);
    const QRectF arrow = subControlRect(control, option, SC_ComboBoxArrow, widget);
    drawSymbol(*painter, u"chevron.down"_s, chevronSize, arrow.center(), Studio::mute);
  } else if (control == CC_ScrollBar) {
    paintScrollBar(*painter, *option, subControlRect(control, option, SC_ScrollBarSlider, widget));
  } else {
    QProxyStyle::drawComplexControl(control, option, painter, widget);
  }
  painter->restore();
}

QRect StudioStyle::subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                                  const QWidget* widget) const {
  const auto* bar = qstyleoption_cast<const QStyleOptionSlider*>(option);
  if (control != CC_ScrollBar || !bar) return QProxyStyle::subControlRect(control, option, part, widget);
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
  const bool isBox = element == SE_LineEditContents && frame && frame->lineWidth > 0;
  return isBox ? place.adjusted(fieldMargin, 0, -fieldMargin, 0) : place;
}

QSize StudioStyle::sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& contents,
                                    const QWidget* widget) const {
  QSize size = QProxyStyle::sizeFromContents(type, option, contents, widget);
  if (type == CT_PushButton) size.rwidth() += 2 * buttonSideMargin;
  if (type == CT_ItemViewItem) size.setHeight(std::max(size.height(), listRowHeight));
  if (type == CT_PushButton || type == CT_LineEdit || type == CT_ComboBox)
    size.setHeight(std::max(size.height(), controlHeight));
  return size;
}

int StudioStyle::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const {
  const auto* bar = qobject_cast<const QScrollBar*>(widget);
  switch (metric) {
    case PM_ToolTipLabelFrameWidth:
      return tooltipMargin;
    case PM_ScrollBarExtent:
      return scrollBarWidth;
    case PM_ScrollBarSliderMin:
      return leastScrollThumb;
    case PM_ListViewIconSize:
      return QProxyStyle::pixelMetric(PM_SmallIconSize, option, widget);
    case PM_ScrollView_ScrollBarOverlap:
      return bar && bar->orientation() == Qt::Vertical ? scrollBarWidth : 0;
    default:
      return QProxyStyle::pixelMetric(metric, option, widget);
  }
}

int StudioStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                           QStyleHintReturn* result) const {
  const bool isRefused = hint == SH_UnderlineShortcut || hint == SH_DialogButtonBox_ButtonsHaveIcons;
  return isRefused ? 0 : QProxyStyle::styleHint(hint, option, widget, result);
}

QIcon StudioStyle::standardIcon(StandardPixmap icon, const QStyleOption* option,
                                const QWidget* widget) const {
  const auto* known = std::find_if(std::begin(symbols), std::end(symbols),
                                   [icon](const auto& symbol) { return symbol.first == icon; });
  if (known == std::end(symbols)) return QProxyStyle::standardIcon(icon, option, widget);
  // Sharp at the sizes that dialogs ask for on screens of every scale.
  QIcon drawn;
  for (const int size : {16, 20, 24, 32, 48}) {
    QPixmap pixels(size, size);
    pixels.fill(Qt::transparent);
    QPainter painter(&pixels);
    drawSymbol(painter, known->second.toString(), size, QRectF(pixels.rect()).center(), Studio::mute);
    for (const QIcon::Mode mode : {QIcon::Normal, QIcon::Selected}) drawn.addPixmap(pixels, mode);
  }
  return drawn;
}

}  // namespace brisklet
