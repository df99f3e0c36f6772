#pragma once
// Reads the results of the single cases out of what a test program printed. A program that prints none, as the fuzz
// targets, is one case. Pure functions, any thread.
#include <string>
#include <vector>

namespace proof {

enum class Result { kPassed, kFailed, kSkipped };

struct Case {
    std::string name;
    Result result = Result::kPassed;
    std::string text;  // what it printed; of a passed one nothing is kept
};

// How a program ended.
struct Ending {
    enum class How { kByItself, kNotStarted, kTooLong, kStopped };
    How how = How::kByItself;
    unsigned long code = 0;  // exit code, or the system's error when it did not start
};

// The cases of the program `name`. An ending that the cases do not explain is one more failed case; so is a program
// whose cases were all passed, and that began one and did not end it.
std::vector<Case> ReadCases(const std::string& name, const std::string& output, const Ending& ending);

}  // namespace proof
