// PixoraSetupActions.dll: what the MSI does beside its tables. The system's installer loads it from a file that it
// makes of it, and calls CheckFolders before anything changes and MakeFolders, as the system, before files are copied.
#include <windows.h>

#include <msi.h>
#include <msiquery.h>
#include <shlobj.h>

#include <memory>
#include <string>

#include "setup/SharedFolders.h"

namespace setup {
namespace {

std::wstring ProgramData() {
    wchar_t* path = nullptr;
    const HRESULT result = SHGetKnownFolderPath(FOLDERID_ProgramData, 0, nullptr, &path);
    const std::unique_ptr<wchar_t, decltype(&CoTaskMemFree)> owned(path, CoTaskMemFree);
    return SUCCEEDED(result) ? path : std::wstring();
}

// Shown in an open run, and in the log of a silent one.
UINT Tell(MSIHANDLE session, bool sound, const std::wstring& folder) {
    if (sound) {
        return ERROR_SUCCESS;
    }
    const MSIHANDLE record = MsiCreateRecord(1);
    MsiRecordSetStringW(record, 0,
                        L"The folder [1] belongs to another user or leads somewhere else. Rename or remove it first.");
    MsiRecordSetStringW(record, 1, folder.c_str());
    MsiProcessMessage(session, INSTALLMESSAGE_ERROR, record);
    MsiCloseHandle(record);
    return ERROR_INSTALL_FAILURE;
}

template <typename Operation>
UINT OnFolders(MSIHANDLE session, Operation operation) {
    try {
        std::wstring problem;
        const bool sound = operation(SharedFolders(ProgramData()), problem);
        return Tell(session, sound, problem);
    } catch (...) {
        return ERROR_INSTALL_FAILURE;
    }
}

}  // namespace
}  // namespace setup

extern "C" __declspec(dllexport) UINT __stdcall CheckFolders(MSIHANDLE session) {
    return setup::OnFolders(
        session, [](const setup::SharedFolders& folders, std::wstring& problem) { return folders.Check(problem); });
}

extern "C" __declspec(dllexport) UINT __stdcall MakeFolders(MSIHANDLE session) {
    return setup::OnFolders(
        session, [](const setup::SharedFolders& folders, std::wstring& problem) { return folders.Make(problem); });
}
