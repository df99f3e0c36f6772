#pragma once
// What each kind of message box says. Pure logic.
#include "service/GlobalUtils.h"

// The key of the kind's text; null for a number that has none.
const wchar_t* MessageTextKey(GlobalUtils::MessageBoxKind kind);
