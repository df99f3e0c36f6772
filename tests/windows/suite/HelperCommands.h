#pragma once
// The commands of suite_helper.exe. Each gets the whole command line (its own name first) and returns the exit code.
#include <string>
#include <vector>

using Arguments = std::vector<std::wstring>;

// log <name> <threads> <lines> <length>: each thread logs so many lines "<name>-<thread>-<line> xxx" of that length,
// and looks whether its last error is kept.
int LogMany(const Arguments& arguments);
// Logs before, at and after InitProcessLogger, and after a second call.
int LogEarly(const Arguments& arguments);
// forever [<pause in ms>]: logs until it is ended.
int LogForever(const Arguments& arguments);

// Reports two texts and one event with fields.
int Report(const Arguments& arguments);
// report-many <threads> <events> [wait]: each thread reports so many; "wait" ends when all of them are in the file.
int ReportMany(const Arguments& arguments);
// Queues an event while somebody keeps the spool file's lock, asks for it to be written out, and is ended.
int ReportWriteOut(const Arguments& arguments);
// The same while the writer never gets the lock.
int ReportWriteOutInVain(const Arguments& arguments);
// Takes the spool file away as an uploader does, and reports again.
int ReportUploader(const Arguments& arguments);
// Holds the writer up and reports until the queue is full.
int ReportFull(const Arguments& arguments);
// Reports when no thread can be started, then messages of the longest length and of one more.
int ReportLimits(const Arguments& arguments);

// url <address>: writes the address into "url.txt" of the local application data folder.
int ReceiveUrl(const Arguments& arguments);

// crash <kind> <plain|registered|disabled|early|thread|unloaded|others> [<product>]: ends in that way, without the
// crash handler; with it; with the handler's enable flag 0; before the log is open; on another thread; after the
// library was let go; with handlers that were there before. Those end with 91 for an exception of the system, 92 for
// std::terminate and 93 for abort.
int Crash(const Arguments& arguments);
