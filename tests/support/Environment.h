#pragma once
// Numbers that a person gives to a test through the environment. Any thread.
#include <cstdlib>

// The variable's number; `otherwise` when it is not set.
inline int FromEnvironment(const char* name, int otherwise) {
    const char* text = std::getenv(name);
    return text ? static_cast<int>(std::strtol(text, nullptr, 10)) : otherwise;
}
