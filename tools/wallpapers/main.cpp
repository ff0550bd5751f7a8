#include "phone_photo.h"
#include "picture.h"

#include <QDir>
#include <QTextStream>

using namespace brisklet;

namespace {

/// A wallpaper is for the whole screen; a photo has the shape that phones take, and less of a lens's charm.
enum class Use { Wallpaper, Photo };

struct Scene {
  const char* name;
  Picture (*render)(int width, int height);
  Film film;
  Use use = Use::Wallpaper;
};

const Scene scenes[] = {
    {"one", dawn, {.exposure = 0.66f, .bloom = 0.10f, .grain = 1.9f}},
    {"two", night, {.exposure = 1, .bloom = 0.12f, .grain = 1.9f}},
    {"three", dunes, {.exposure = 1, .bloom = 0.06f, .grain = 1.9f}},
    {"four", glass, {.exposure = 1, .bloom = 0.08f, .grain = 1.9f}},
    {"photo", sea, {.exposure = 0.8f, .bloom = 0.07f, .grain = 1.3f, .vignette = 0.08f}, Use::Photo},
};

struct Format {
  int width, height, jpegQuality;
};
constexpr Format wallpaperFormat{1170, 2532, 95}, photoFormat{1200, 1600, 90};

}  // namespace

/// Renders the built-in wallpapers and the example's photo: `brisklet_wallpapers OUT_DIR [--draft]
/// [NAME...]`, all of them without a name, at a third of the size with --draft.
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
  for (const Scene& scene : scenes) {
    ++seed;
    const QString name = QString::fromLatin1(scene.name);
    if (!arguments.isEmpty() && !arguments.contains(name)) continue;
    const Format& format = scene.use == Use::Photo ? photoFormat : wallpaperFormat;
    const QImage print =
        developed(scene.render(format.width / divisor, format.height / divisor), scene.film, seed);
    const QString path = directory.filePath(name + QStringLiteral(".jpg"));
    const bool written = scene.use == Use::Photo ? writePhonePhoto(print, path, format.jpegQuality)
                                                 : print.save(path, "jpg", format.jpegQuality);
    if (!written) {
      messages << "brisklet_wallpapers: " << path << " could not be written\n";
      return 1;
    }
  }
  return 0;
}
