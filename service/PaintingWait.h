#pragma once
// Lets a long computation run beside the UI thread, which meanwhile paints and does nothing else.
//
// Why: what the user is adding has to be finished before anything else may happen, but the window that a dialog has
// just uncovered must not stay blank until then. Input and posted messages wait in their queue, so nobody comes in
// between.
// Threads: called on the UI thread; the work runs on a thread of its own with a COM apartment of its own, so it must
// not touch what the UI thread owns.
#include <functional>

// False when the work says so, or when it threw or could not be started, which is logged.
bool RunWhilePainting(const std::function<bool()>& work);
