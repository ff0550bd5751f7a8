#pragma once

#include <QImage>

namespace brisklet {

/// A Gaussian blur of `sigma` pixels. Edges continue outwards, so that nothing dark bleeds in from beyond the
/// border. Same size and format as the source (RGB32 or ARGB32 premultiplied; others are converted).
[[nodiscard]] QImage blurred(const QImage& source, double sigma);

}  // namespace brisklet
