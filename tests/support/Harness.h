#pragma once
// The entry of every Windows test program: GoogleTest, a local data folder of the program's own, its log, and the
// listener by which a line of level 4 that a test has not announced fails that test.
//
// The folder lies below the temporary one and is named by the environment variable LOCALAPPDATA, so that every program
// that a test starts logs there too; it goes at the end. Thread: the test's.
#include <filesystem>
#include <string>

namespace harness {

enum class End {
    kReturn,
    // Without the cleaning up of the system's libraries: threads of the software that draws may be in the midst of
    // something, and some systems crash then. Everything of ours has been looked at.
    kAtOnce
};

// The exit code of the program.
int RunTests(int argc, char** argv, End end = End::kReturn);

// The local data folder of this test program.
const std::filesystem::path& LocalDataFolder();
// Where the test programs and the program under test are, with a trailing backslash.
std::wstring ProgramFolder();
// Removes what can be removed, in one pass: a file that is still open in this process keeps its name, and
// std::filesystem::remove_all would try to empty its folder for ever.
void RemoveTree(const std::filesystem::path& folder);

}  // namespace harness
