// The default program for links while a test runs: appends the address that it is asked to open to the file whose
// name is its first argument.
#include <windows.h>

#include <string>

int wmain(int argc, wchar_t** argv) {
    if (argc != 3)
        return 1;
    const HANDLE file = CreateFileW(argv[1], FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_ALWAYS,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return 2;
    std::string line;
    for (const wchar_t* c = argv[2]; *c != 0; ++c)
        line += *c < 0x80 ? static_cast<char>(*c) : '?';
    line += '\n';
    DWORD written = 0;
    const bool done = WriteFile(file, line.data(), static_cast<DWORD>(line.size()), &written, nullptr) != FALSE;
    CloseHandle(file);
    return done ? 0 : 3;
}
