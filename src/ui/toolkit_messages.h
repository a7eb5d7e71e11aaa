// What the toolkit writes to standard error.
#pragma once

namespace txs {

// Drops the complaints of the toolkit below wxWidgets about sizes of its own: controls are laid out
// once before the form has a size, with less than nothing left for them. All else is written as
// before. To be called once, before the toolkit is initialised.
void DropSizeComplaints();

}  // namespace txs
