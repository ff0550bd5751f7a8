#pragma once

#include <QImage>
#include <QString>

namespace brisklet {

// What the program shows, case by case. Sheets that need photos write them into `scratch`.

/// Each built-in wallpaper with 0, 1 and 5 cards, captured, with the least contrast of the texts that stand
/// on it.
[[nodiscard]] QImage wallpaperSheet(const QString& scratch);
/// Plates over the wallpapers and over hard photos, captured and live, with the least contrast of their
/// texts.
[[nodiscard]] QImage glassSheet(const QString& scratch);
/// Corners and rims of plates, enlarged.
[[nodiscard]] QImage rimSheet(const QString& scratch);
/// Titles, messages, labels and custom tiles in many scripts.
[[nodiscard]] QImage scriptSheet(const QString& scratch);
/// Twelve moments in which a card joins five others.
[[nodiscard]] QImage arrivalSheet(const QString& scratch);

/// Symbols beside text, at all sizes and scales.
[[nodiscard]] QImage symbolSheet(const QString& scratch);
/// App icons, the mark and the program's icon, at all sizes and scales.
[[nodiscard]] QImage iconSheet(const QString& scratch);

/// Each control of the studio in each of its states.
[[nodiscard]] QImage controlSheet(const QString& scratch);
/// The studio's window in several states.
[[nodiscard]] QImage studioSheet(const QString& scratch);
/// Tooltips, menus and dialogs, which the toolkit draws in the studio's style.
[[nodiscard]] QImage dialogSheet(const QString& scratch);

}  // namespace brisklet
