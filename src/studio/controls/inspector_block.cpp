#include "studio/controls/inspector_block.h"

#include "studio/controls/control_painting.h"
#include "studio/controls/palette.h"
#include "studio/controls/studio_text.h"

#include <QPainter>

namespace brisklet {

InspectorBlock::InspectorBlock(const QString& title, QWidget* parent)
    : QWidget(parent), title_(new StudioLabel(title, this)), content_(new QVBoxLayout(this)) {
  content_->setContentsMargins(margin, margin, margin, margin);
  content_->setSpacing(spacing);
  content_->addWidget(title_);
}

void InspectorBlock::setTitle(const QString& title) {
  title_->setText(title);
}

void InspectorBlock::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  paintRule(painter, QRectF(0, height() - 1, width(), 1), Studio::line);
}

}  // namespace brisklet
