#include "render/console.h"

#include <cstdio>

using namespace Qt::StringLiterals;

namespace brisklet {

namespace {

std::FILE* const said = stderr;

QString asLine(QString text) {
  for (QChar& unit : text) {
    if (unit.category() == QChar::Other_Control) unit = u' ';
  }
  return text;
}

}  // namespace

void say(const QString& text) {
  const QByteArray bytes = text.toLocal8Bit();
  std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), said);
}

void silenceLibraries() {
  if (std::FILE* nowhere = std::fopen("/dev/null", "we")) stderr = nowhere;
}

void Console::message(const QString& text) {
  clearProgress();
  say(u"brisklet-render: "_s + asLine(text) + u'\n');
}

void Console::progress(const QString& text) {
  if (!showsProgress_ || text == shown_) return;
  shown_ = text;
  say(u"\r\033[K"_s + asLine(text));
}

void Console::clearProgress() {
  if (!shown_.isEmpty()) say(u"\r\033[K"_s);
  shown_.clear();
}

}  // namespace brisklet
