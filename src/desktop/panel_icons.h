#pragma once

#include <QFileDialog>
#include <QImage>
#include <QStringList>
#include <functional>

namespace brisklet {

/// Has Qt's own panel show files by their names alone, where it would look into each of them while nobody can
/// do anything, and those with one of the endings by a picture of their content, made on another thread.
/// Nothing changes in a panel that is the desktop's.
void showPreviews(QFileDialog& dialog, const QStringList& suffixes,
                  const std::function<QImage(const QString& path)>& preview);

}  // namespace brisklet
