#pragma once

#include <QFont>
#include <QList>
#include <QString>
#include <QTextLayout>

namespace brisklet {

/// A text as it is laid out, and what is not set in its font.
struct TextWithEmoji {
  QString text;
  QList<QTextLayout::FormatRange> formats;
};

/// Sets the emoji of a text in the colour emoji font: the text font has some of them too, such as the heart
/// and the digits of keycaps, in black and white, and would tear sequences apart. The emoji font does without
/// the selectors of emoji style in them, which are left out.
[[nodiscard]] TextWithEmoji withColorEmoji(const QString& text, const QFont& font);

}  // namespace brisklet
