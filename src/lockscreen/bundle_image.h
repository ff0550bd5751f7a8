#pragma once

#include <QImage>
#include <QString>
#include <optional>

namespace brisklet {

namespace BundleImage {

/// The picture of this name among the program's resources: embedded first, then `images` beside the
/// executable, then `share/brisklet/images` of its prefix, with the endings jpg, jpeg, png in this order.
/// Nothing when there is none or it cannot be decoded. Names are file names: one that could leave the folder
/// is never found.
[[nodiscard]] std::optional<QImage> named(const QString& name);

}  // namespace BundleImage

}  // namespace brisklet
