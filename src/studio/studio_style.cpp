#include "studio/studio_style.h"

#include <QAbstractItemView>
#include <QDialog>
#include <QIconEngine>
#include <QPainter>
#include <QPushButton>
#include <QStyleFactory>
#include <QStyleOption>
#include <algorithm>

#include "platform/symbol_image.h"
#include "studio/control_painting.h"
#include "studio/palette.h"

namespace brisklet {

namespace {

constexpr int tooltipMargin = 5, controlHeight = 32, buttonSideMargin = 6, fieldMargin = 6;  // pt
constexpr int dialogMargin = 16, listRowHeight = 26;                                         // pt
constexpr int menuEntryHeight = 28, menuSeparatorHeight = 9, menuMargin = 4, menuInset = 4;  // pt
constexpr int scrollBarWidth = 12, scrollThumbInset = 3, leastScrollThumb = 36;              // pt
constexpr double radius = 7, innerRadius = 5, chevronSize = 11;                              // pt

/// A symbol as an icon of any size.
class SymbolIcon : public QIconEngine {
 public:
  explicit SymbolIcon(const QString& name) : name_(name) {}

  void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
    drawSymbol(*painter, name_, std::min(rect.width(), rect.height()), QRectF(rect).center(),
               mode == QIcon::Disabled ? Studio::hoveredLine : Studio::mute);
  }
  QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
    QPixmap pixels(size);
    pixels.fill(Qt::transparent);
    QPainter painter(&pixels);
    paint(&painter, pixels.rect(), mode, state);
    return pixels;
  }
  QIconEngine* clone() const override { return new SymbolIcon(name_); }

 private:
  QString name_;
};

const char* symbolOf(QStyle::StandardPixmap icon) {
  switch (icon) {
    case QStyle::SP_ArrowBack:
    case QStyle::SP_FileDialogBack:
      return "chevron.left";
    case QStyle::SP_ArrowForward:
      return "chevron.right";
    case QStyle::SP_FileDialogToParent:
      return "arrow.up";
    case QStyle::SP_FileDialogNewFolder:
      return "folder.plus";
    case QStyle::SP_FileDialogListView:
      return "square.grid";
    case QStyle::SP_FileDialogDetailedView:
      return "list";
    case QStyle::SP_DirIcon:
    case QStyle::SP_DirLinkIcon:
    case QStyle::SP_DirHomeIcon:
      return "folder";
    case QStyle::SP_FileIcon:
    case QStyle::SP_FileLinkIcon:
      return "doc";
    case QStyle::SP_ComputerIcon:
    case QStyle::SP_DesktopIcon:
    case QStyle::SP_DriveHDIcon:
      return "desktop";
    default:
      return nullptr;
  }
}

bool isDefault(const QStyleOption* option) {
  const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
  return button && (button->features & QStyleOptionButton::DefaultButton);
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
  if ((state & QStyle::State_HasFocus) && (state & QStyle::State_KeyboardFocusChange))
    paintOutline(painter, {option.rect, radius, Studio::focus, 2});
}

/// A button without a box of its own.
void paintToolButton(QPainter& painter, const QStyleOption& option) {
  const bool isOn = option.state & (QStyle::State_On | QStyle::State_Sunken);
  const bool isHovered = (option.state & QStyle::State_MouseOver) && (option.state & QStyle::State_Enabled);
  if (isOn || isHovered)
    paintBox(painter, {.rect = option.rect, .radius = innerRadius},
             isOn ? Studio::pressVeil : Studio::hoverVeil);
}

void paintScrollBar(QPainter& painter, const QStyleOption& option, const QRect& slider) {
  constexpr int inset = scrollThumbInset;
  painter.fillRect(option.rect, Studio::white);
  QColor color = Studio::ink;
  color.setAlphaF(option.state & (QStyle::State_MouseOver | QStyle::State_Sunken) ? 0.42F : 0.22F);
  paintBox(painter, {.rect = QRectF(slider).adjusted(inset, inset, -inset, -inset), .radius = 3}, color);
}

}  // namespace

StudioStyle::StudioStyle() : QProxyStyle(QStyleFactory::create(QStringLiteral("Fusion"))) {}

void StudioStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                                const QWidget* widget) const {
  painter->save();
  setUpPainter(*painter);
  switch (element) {
    case PE_PanelTipLabel:
    case PE_PanelMenu:
    case PE_FrameMenu:
      paintBox(*painter, {option->rect, 0, Studio::hoveredLine, 1},
               element == PE_FrameMenu ? Qt::transparent : Studio::white);
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
      if (frame && frame->lineWidth > 0) {
        // Fields are always sunken, and marked however they came into focus.
        QStyleOption plain(*option);
        plain.state &= ~State_Sunken;
        if (plain.state & State_HasFocus) plain.state |= State_KeyboardFocusChange;
        paintControl(*painter, plain);
      } else {
        QProxyStyle::drawPrimitive(element, option, painter, widget);
      }
      break;
    }
    case PE_FrameFocusRect:
      // Buttons and rows are marked by themselves.
      if (!qobject_cast<const QPushButton*>(widget) && !qobject_cast<const QAbstractItemView*>(widget) &&
          (option->state & State_KeyboardFocusChange))
        paintOutline(*painter, {option->rect, innerRadius, Studio::focus, 2});
      break;
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
    case CE_MenuItem: {
      const auto* entry = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
      if (!entry) break;
      if (entry->menuItemType == QStyleOptionMenuItem::Separator) {
        QRectF line = entry->rect.adjusted(menuInset, 0, -menuInset, -entry->rect.height() / 2);
        paintRule(*painter, {line.left(), line.bottom() - 1, line.width(), 1}, Studio::line);
        return;
      }
      QStyleOptionMenuItem plain(*entry);
      plain.state &= ~State_Selected;
      if ((entry->state & State_Selected) && (entry->state & State_Enabled)) {
        painter->save();
        setUpPainter(*painter);
        paintBox(*painter, {.rect = entry->rect.adjusted(menuInset, 0, -menuInset, 0), .radius = innerRadius},
                 Studio::pressVeil);
        painter->restore();
      }
      QProxyStyle::drawControl(element, &plain, painter, widget);
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
    drawSymbol(*painter, QStringLiteral("chevron.down"), chevronSize, arrow.center(), Studio::mute);
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
  // A thumb in a groove without arrows.
  const bool isHorizontal = bar->orientation == Qt::Horizontal;
  const int room = isHorizontal ? bar->rect.width() : bar->rect.height();
  const int content = bar->maximum - bar->minimum + bar->pageStep;
  const int length = content <= 0 ? room
                                  : std::clamp(int(qint64(room) * bar->pageStep / content),
                                               std::min(leastScrollThumb, room), room);
  const int start = sliderPositionFromValue(bar->minimum, bar->maximum, bar->sliderPosition, room - length,
                                            bar->upsideDown);
  const auto between = [&](int from, int to) {
    return isHorizontal ? QRect(from, 0, to - from, bar->rect.height())
                        : QRect(0, from, bar->rect.width(), to - from);
  };
  switch (part) {
    case SC_ScrollBarSlider:
      return between(start, start + length);
    case SC_ScrollBarGroove:
      return between(0, room);
    case SC_ScrollBarSubPage:
      return between(0, start);
    case SC_ScrollBarAddPage:
      return between(start + length, room);
    default:
      return {};
  }
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
    case CT_MenuItem: {
      const auto* entry = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
      const bool isSeparator = entry && entry->menuItemType == QStyleOptionMenuItem::Separator;
      size.setHeight(isSeparator ? menuSeparatorHeight : menuEntryHeight);
      break;
    }
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
    case PM_ListViewIconSize:
      return pixelMetric(PM_SmallIconSize, option, widget);
    case PM_MenuVMargin:
      return menuMargin;
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
  const char* symbol = symbolOf(icon);
  return symbol ? QIcon(new SymbolIcon(QString::fromLatin1(symbol)))
                : QProxyStyle::standardIcon(icon, option, widget);
}

}  // namespace brisklet
