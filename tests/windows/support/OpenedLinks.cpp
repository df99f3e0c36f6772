#include "tests/windows/support/OpenedLinks.h"

#include <fstream>

#include "suite/common/LocalFolder.h"
#include "tests/support/Wait.h"

namespace {

constexpr wchar_t kClasses[] = L"SOFTWARE\\PixoraTestLinks";

void SetText(HKEY key, const wchar_t* path, const wchar_t* name, const std::wstring& text) {
    RegSetKeyValueW(key, path, name, REG_SZ, text.c_str(), static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
}

}  // namespace

OpenedLinks::OpenedLinks() {
    wchar_t folder[MAX_PATH] = {};
    GetTempPathW(MAX_PATH, folder);
    file_ = std::wstring(folder) + L"opened-links-" + std::to_wstring(GetCurrentProcessId()) + L".txt";
    DeleteFileW(file_.c_str());

    const std::wstring program = suite::ProgramPath();
    const std::wstring recorder = program.substr(0, program.rfind(L'\\') + 1) + L"link_recorder.exe";
    RegCreateKeyExW(HKEY_CURRENT_USER, kClasses, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &classes_, nullptr);
    for (const wchar_t* scheme : {L"https", L"http"}) {
        SetText(classes_, scheme, L"URL Protocol", L"");
        SetText(classes_, (std::wstring(scheme) + L"\\shell\\open\\command").c_str(), nullptr,
                L"\"" + recorder + L"\" \"" + file_ + L"\" \"%1\"");
    }
    RegOverridePredefKey(HKEY_CLASSES_ROOT, classes_);
}

OpenedLinks::~OpenedLinks() {
    RegOverridePredefKey(HKEY_CLASSES_ROOT, nullptr);
    RegCloseKey(classes_);
    RegDeleteTreeW(HKEY_CURRENT_USER, kClasses);
    DeleteFileW(file_.c_str());
}

std::vector<std::string> OpenedLinks::All() const {
    std::vector<std::string> links;
    std::ifstream file(file_.c_str());
    for (std::string line; std::getline(file, line);)
        links.push_back(line);
    return links;
}

std::vector<std::string> OpenedLinks::WaitFor(std::size_t count) const {
    std::vector<std::string> links;
    harness::WaitUntil([&] { return (links = All()).size() >= count; });
    return links;
}
