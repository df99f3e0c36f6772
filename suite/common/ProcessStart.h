#pragma once
// The first statement of each program that is shipped.
//
// From then on libraries are looked for in the system's folder only: not in the folder of the program, which for a
// portable copy may be one that anything is downloaded to, nor in the current one. The libraries that the program
// itself imports were found before, beside it; one that it loads from its own folder later it names with its whole
// path. And a drive without a medium is an error to whoever asked for a file on it, not a box of the system.
// Kept so while the system's file dialog is open, which loads other makers' extensions: each by its whole path, so one
// that has libraries of its own beside it and does not ask for them there is missing in the dialog, and nothing else.
// To allow more for that time would allow it to all threads, where most foreign code comes into the process.
namespace suite {

void PrepareProcess();

}  // namespace suite
