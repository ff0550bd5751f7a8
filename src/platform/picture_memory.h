#pragma once

#include <QImage>
#include <new>
#include <utility>

#include "platform/spare_memory.h"

namespace brisklet {

// A QImage whose memory cannot be had becomes null, and what is painted on it is lost without a word.
// Pictures that must be complete are made, copied and written through these, which throw `std::bad_alloc`
// instead, while there is still some left for what comes with them.

/// The image that a conversion of another one gave.
[[nodiscard]] inline QImage whole(QImage image) {
  if (image.isNull()) throw std::bad_alloc();
  // Small ones are what a message about missing memory is painted with.
  if (image.sizeInBytes() >= 1 << 20) requireSpareMemory();
  return image;
}

/// Not initialised.
[[nodiscard]] inline QImage newPicture(const QSize& size, QImage::Format format) {
  QImage image(size, format);
  return size.isEmpty() ? image : whole(std::move(image));
}

/// Gives an image memory of its own, for a painter or for rows to be written.
inline void makeWritable(QImage& image) {
  image.detach();
  if (image.isNull()) throw std::bad_alloc();
}

}  // namespace brisklet
