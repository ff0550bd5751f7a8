#include "drawing/image_decoder.h"
#include "offscreen.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <QBuffer>
#include <QImageReader>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

using namespace brisklet;

namespace {

/// What claims to be larger takes its time and finds nothing that smaller pictures do not.
constexpr qint64 mostPixels = 1 << 22;

bool isLarge(QByteArray bytes) {
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::ReadOnly);
  const QSize size = QImageReader(&buffer).size();
  return size.isValid() && qint64{size.width()} * size.height() > mostPixels;
}

}  // namespace

/// Decodes any bytes as a photo, from a file in memory.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  if (isLarge(QByteArray(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)))) return -1;
  static const int file = memfd_create("picture", MFD_CLOEXEC);
  static const QString path = QStringLiteral("/proc/self/fd/%1").arg(file);
  if (ftruncate(file, 0) != 0 || pwrite(file, data, size, 0) != static_cast<ssize_t>(size)) std::abort();

  if (const auto photo = decodeImageFile(path)) {
    if (photo->isNull() || photo->format() != QImage::Format_RGB32) std::abort();
  }
  if (const auto picture = decodeImageFile(path, Transparency::Kept)) {
    if (picture->isNull() || picture->format() != QImage::Format_ARGB32_Premultiplied) std::abort();
  }
  return 0;
}
