#include "sheets.h"
#include "studio/brisklet_app.h"

#include <QApplication>
#include <QDir>
#include <QTemporaryDir>
#include <QTextStream>

using namespace brisklet;

namespace {

struct NamedSheet {
  const char* name;
  QImage (*make)(const QString& scratch);
};

const NamedSheet sheets[] = {
    {"wallpapers", wallpaperSheet}, {"glass", glassSheet},      {"rims", rimSheet},
    {"scripts", scriptSheet},       {"arrival", arrivalSheet},  {"symbols", symbolSheet},
    {"icons", iconSheet},           {"controls", controlSheet}, {"studio", studioSheet},
    {"dialogs", dialogSheet},
};

}  // namespace

/// Renders everything that can be seen into a few pictures: `brisklet_contact_sheet OUT_DIR [SHEET...]`, all
/// of them without a name. Needs no display.
int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application(argc, argv);
  BriskletApp::setUp(application);
  QTextStream messages(stderr);
  QStringList names = QApplication::arguments().mid(1);
  if (names.isEmpty()) {
    messages << "usage: brisklet_contact_sheet OUT_DIR [SHEET...]\n";
    return 2;
  }
  const QDir directory(names.takeFirst());
  const QTemporaryDir scratch;
  if (!directory.mkpath(QStringLiteral(".")) || !scratch.isValid()) {
    messages << "brisklet_contact_sheet: " << directory.path() << " cannot be made\n";
    return 1;
  }
  for (const NamedSheet& sheet : sheets) {
    const QString name = QString::fromLatin1(sheet.name);
    if (!names.isEmpty() && !names.contains(name)) continue;
    const QString path = directory.filePath(name + QStringLiteral(".png"));
    if (!sheet.make(scratch.path()).save(path)) {
      messages << "brisklet_contact_sheet: " << path << " could not be written\n";
      return 1;
    }
  }
  return 0;
}
