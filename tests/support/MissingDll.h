#pragma once
// A DLL of the system that one program does not find, or finds in another shape, as on an edition of the system that
// comes without it. Any thread.
#include <windows.h>

#include <filesystem>
#include <string>

#include "tests/support/WineOnly.h"

// Wine looks in the registry where a program's DLLs come from; Windows cannot be told so.
class DllOrigin {
  public:
    // `program`: its file's name; `dll`: without extension; `origin`: "" for nowhere, "native" for the file in the
    // system's folder. Counts for programs of that name that start while it lives.
    DllOrigin(const std::wstring& program, const wchar_t* dll, const std::wstring& origin)
        : key_(L"Software\\Wine\\AppDefaults\\" + program) {
        RegSetKeyValueW(HKEY_CURRENT_USER, (key_ + L"\\DllOverrides").c_str(), dll, REG_SZ, origin.c_str(),
                        static_cast<DWORD>((origin.size() + 1) * sizeof(wchar_t)));
    }
    ~DllOrigin() { RegDeleteTreeW(HKEY_CURRENT_USER, key_.c_str()); }
    DllOrigin(const DllOrigin&) = delete;
    DllOrigin& operator=(const DllOrigin&) = delete;

    static bool CanBe() { return harness::MayUseWine(); }

  private:
    const std::wstring key_;
};

class MissingDll : public DllOrigin {
  public:
    MissingDll(const std::wstring& program, const wchar_t* dll) : DllOrigin(program, dll, L"") {}
};

// While it lives that program finds `file` in the place of the system's DLL.
class ReplacedDll : public DllOrigin {
  public:
    ReplacedDll(const std::wstring& program, const wchar_t* dll, const std::filesystem::path& file)
        : DllOrigin(program, dll, L"native"), place_(SystemFolder() / (std::wstring(dll) + L".dll")) {
        std::filesystem::rename(place_, Aside());
        std::filesystem::copy_file(file, place_);
    }
    ~ReplacedDll() {
        std::error_code ignored;
        std::filesystem::remove(place_, ignored);
        std::filesystem::rename(Aside(), place_, ignored);
    }

  private:
    static std::filesystem::path SystemFolder() {
        wchar_t folder[MAX_PATH] = {};
        GetSystemDirectoryW(folder, MAX_PATH);
        return folder;
    }
    std::filesystem::path Aside() const { return place_.wstring() + L".aside"; }

    const std::filesystem::path place_;
};
