#pragma once
// Whether the system has Media Foundation: some editions come without it until their user adds it.
//
// Its DLLs are loaded when they are first called, and a call to one that is missing would end the program. Whoever
// calls Media Foundation first asks here. Any thread.

// Loads it at the first call; a line of the log when it is missing.
bool HasMediaFoundation();
