#pragma once
// A DLL of the system that one program does not find, as on an edition of the system that comes without it. Any thread.
#include <windows.h>

#include <string>

// While it lives, programs of that name that start do without the DLL. Only Wine can be told so.
class MissingDll {
  public:
    // `program`: its file's name; `dll`: without extension.
    MissingDll(const std::wstring& program, const wchar_t* dll) : key_(L"Software\\Wine\\AppDefaults\\" + program) {
        RegSetKeyValueW(HKEY_CURRENT_USER, (key_ + L"\\DllOverrides").c_str(), dll, REG_SZ, L"", sizeof(wchar_t));
    }
    ~MissingDll() { RegDeleteTreeW(HKEY_CURRENT_USER, key_.c_str()); }
    MissingDll(const MissingDll&) = delete;
    MissingDll& operator=(const MissingDll&) = delete;

    static bool CanBe() { return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr; }

  private:
    const std::wstring key_;
};
