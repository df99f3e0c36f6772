#pragma once
// The feature configuration file that ships beside the program: integers by the machine's product name, or by default.
//
// Why: which picture of a camera fits depends on the machine. The file is read anew on every call. Threads: any.
#include <string>

// 0 for everything that is missing or broken, which is logged in the name of HomePage.
int ReadFeatureConfig(const std::string& key);
