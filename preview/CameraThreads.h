#pragma once
// Where cameras are opened and closed, and where Direct3D looks through the adapters for them: drivers may take seconds
// for it, or never come back, so it happens on threads of the system's pool, and who asked for it waits as long as he
// likes.
//
// The threads have joined the multithreaded apartment. What hangs is left alone; while too much does, nothing more is
// begun. Any thread.
#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include "preview/OpenCamera.h"

namespace preview {

// As many openings may hang before a camera counts as one that cannot be used.
constexpr int kMostOpenings = 4;

// Runs the work that opens a camera or prepares it, and that owns what it uses. As a camera can be opened by one at a
// time, it begins when earlier openings and closings have ended, but waits no longer than five seconds for one that
// hangs. False: too many openings hang, or the system refuses; the log tells.
[[nodiscard]] bool BeginOpening(std::function<void()> work);

// Shuts the camera down and waits for that, for a time; sent messages are served meanwhile. False: it takes longer, and
// goes on by itself.
bool CloseCamera(std::shared_ptr<OpenCamera> camera, std::chrono::milliseconds atMost);

// What is under way, in words for the log: which of several waits it is that an opening hangs in.
std::wstring OpeningsUnderWay();

}  // namespace preview
