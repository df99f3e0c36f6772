#include "diagnostics/SignatureState.h"

#include <windows.h>

#include <softpub.h>
#include <wintrust.h>

#include "suite/common/FolderListing.h"
#include "suite/common/SystemLibrary.h"
#include "suite/common/Utf8.h"

namespace diagnostics {

namespace {

constinit suite::SystemLibrary wintrust(L"wintrust.dll");
constinit suite::SystemFunction<LONG(WINAPI*)(HWND, GUID*, LPVOID)> verifyTrust(wintrust, "WinVerifyTrust");

LONG Verify(const std::wstring& path) {
    WINTRUST_FILE_INFO file{};
    file.cbStruct = sizeof file;
    file.pcwszFilePath = path.c_str();
    WINTRUST_DATA data{};
    data.cbStruct = sizeof data;
    data.dwUIChoice = WTD_UI_NONE;
    data.fdwRevocationChecks = WTD_REVOKE_NONE;
    data.dwUnionChoice = WTD_CHOICE_FILE;
    data.pFile = &file;
    data.dwStateAction = WTD_STATEACTION_VERIFY;
    data.dwProvFlags = WTD_CACHE_ONLY_URL_RETRIEVAL;
    GUID action = WINTRUST_ACTION_GENERIC_VERIFY_V2;
    // No window: INVALID_HANDLE_VALUE stands for "nobody is there to be asked".
    const HWND nobody = static_cast<HWND>(INVALID_HANDLE_VALUE);
    const LONG result = verifyTrust.CallOr(TRUST_E_PROVIDER_UNKNOWN, nobody, &action, &data);
    data.dwStateAction = WTD_STATEACTION_CLOSE;
    verifyTrust.CallOr(TRUST_E_PROVIDER_UNKNOWN, nobody, &action, &data);
    return result;
}

bool IsUnsigned(LONG result) {
    return result == TRUST_E_NOSIGNATURE || result == TRUST_E_SUBJECT_FORM_UNKNOWN ||
           result == TRUST_E_PROVIDER_UNKNOWN;
}

}  // namespace

void AddSignatures(Report& report, const std::wstring& folder) {
    int trusted = 0;
    int plain = 0;
    for (const wchar_t* pattern : {L"\\*.exe", L"\\*.dll"}) {
        for (suite::FolderListing entry(folder + pattern); entry; entry.Next()) {
            const LONG result = Verify(folder + L"\\" + std::wstring(entry.Name()));
            if (result == ERROR_SUCCESS) {
                ++trusted;
            } else if (IsUnsigned(result)) {
                ++plain;
            } else {
                report.Wrong("the signature of " + suite::ToUtf8(entry.Name()) + " does not hold",
                             "Install Pixora again, from where its maker offers it.");
            }
        }
    }
    report.Note("signed files: " + std::to_string(trusted) + ", files without a signature: " + std::to_string(plain));
}

}  // namespace diagnostics
