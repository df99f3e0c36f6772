#pragma once
// Who uses the machine: the user of the interactive session, not the account that the program runs under.
//
// Why: the program may run elevated or for somebody else, and the backgrounds belong to the person at the screen.
// Asks no network. Any thread.
#include <string>

// The string form of the user's security identifier ("S-1-5-21-..."); empty when it cannot be had.
std::wstring InteractiveUserSid();
