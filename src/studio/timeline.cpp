#include "studio/timeline.h"

#include "studio/controls/inspector_block.h"
#include "studio/controls/palette.h"
#include "studio/controls/studio_text.h"
#include "studio/timeline_list.h"

#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace brisklet {

namespace {

constexpr int emptyTextMargin = 8;  // pt

}  // namespace

Timeline::Timeline(QWidget* parent)
    : QWidget(parent), block_(new InspectorBlock({})), emptyText_(new QWidget), list_(new TimelineList) {
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(0);
  column->addWidget(block_);
  column->addStretch();

  auto* text = new StudioText({13, FontWeight::Regular}, Studio::mute);
  text->setText(u"Add a ping to start the stack."_s);
  auto* around = new QVBoxLayout(emptyText_);
  around->setContentsMargins(0, emptyTextMargin, 0, emptyTextMargin);
  around->addWidget(text);
  block_->content()->addWidget(emptyText_);
  block_->content()->addWidget(list_);
  list_->hide();

  connect(list_, &TimelineList::rowPressed, this, &Timeline::pingPressed);
  connect(list_, &TimelineList::removePressed, this, &Timeline::removePressed);
  connect(list_, &TimelineList::revealRequested, this, [this](const QRect& rect) {
    Q_EMIT revealRequested(rect.translated(list_->mapTo(this, QPoint())));
  });
}

void Timeline::setState(const QString& summary, const QList<Ping>& pings,
                        const std::optional<QString>& selectedId) {
  block_->setTitle(summary);
  const bool hasGrown = pings.size() == list_->rowCount() + 1;
  list_->setPings(pings, selectedId);
  emptyText_->setVisible(pings.isEmpty());
  list_->setVisible(!pings.isEmpty());
  if (hasGrown) Q_EMIT list_->revealRequested(list_->rowRect(list_->rowCount() - 1));
}

}  // namespace brisklet
