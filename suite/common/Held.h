#pragma once
// The earlier name of ComReference.
#include "suite/common/ComReference.h"

template <typename Interface>
using Held = suite::ComReference<Interface>;
