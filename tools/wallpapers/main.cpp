#include "picture.h"

#include <QDir>
#include <QTextStream>

using namespace brisklet;

namespace {

struct Wallpaper {
  const char* name;
  Picture (*render)(int width, int height);
  Film film;
};

const Wallpaper wallpapers[] = {
    {"one", dawn, {.exposure = 0.66f, .bloom = 0.10f, .grain = 1.9f}},
    {"two", night, {.exposure = 1, .bloom = 0.12f, .grain = 1.9f}},
    {"three", dunes, {.exposure = 1, .bloom = 0.06f, .grain = 1.9f}},
    {"four", glass, {.exposure = 1, .bloom = 0.08f, .grain = 1.9f}},
};

constexpr int fullWidth = 1290, fullHeight = 2796, jpegQuality = 95;

}  // namespace

/// Renders the built-in wallpapers: `brisklet_wallpapers OUT_DIR [--draft] [NAME...]`, all four without a
/// name, at a third of the size with --draft.
int main(int argc, char** argv) {
  QStringList arguments;
  for (int i = 1; i < argc; ++i) arguments << QString::fromLocal8Bit(argv[i]);
  const int divisor = arguments.removeAll(QStringLiteral("--draft")) > 0 ? 3 : 1;
  QTextStream messages(stderr);
  if (arguments.isEmpty()) {
    messages << "usage: brisklet_wallpapers OUT_DIR [--draft] [NAME...]\n";
    return 2;
  }
  const QDir directory(arguments.takeFirst());
  std::uint32_t seed = 0;
  for (const Wallpaper& wallpaper : wallpapers) {
    ++seed;
    const QString name = QString::fromLatin1(wallpaper.name);
    if (!arguments.isEmpty() && !arguments.contains(name)) continue;
    const QImage print =
        developed(wallpaper.render(fullWidth / divisor, fullHeight / divisor), wallpaper.film, seed);
    const QString path = directory.filePath(name + QStringLiteral(".jpg"));
    if (!print.save(path, "jpg", jpegQuality)) {
      messages << "brisklet_wallpapers: " << path << " could not be written\n";
      return 1;
    }
  }
  return 0;
}
