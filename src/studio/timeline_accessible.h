#pragma once

#include <QtGlobal>

namespace brisklet {

class TimelineList;

// The timeline's rows for assistive technology: items of a list, each with a button that removes it. They are
// made when they are asked for.

/// Has the timeline's list answered for by its rows. To be called before the first list is asked.
void installTimelineAccessibility();
/// Tells that there are other rows.
void announceTimelineRows(TimelineList& list);
/// Tells that the keys now act on another row.
void announceCurrentTimelineRow(TimelineList& list);
/// Tells that a row has been selected, or is no longer.
void announceTimelineSelection(TimelineList& list, qsizetype row);

}  // namespace brisklet
