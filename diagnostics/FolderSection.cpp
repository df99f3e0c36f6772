#include <windows.h>

#include <aclapi.h>
#include <sddl.h>

#include <string>

#include "diagnostics/Sections.h"
#include "service/UserIdentity.h"
#include "suite/common/Handle.h"
#include "suite/common/LocalFolder.h"
#include "suite/common/Utf8.h"

namespace diagnostics {

namespace {

constexpr wchar_t kShared[] = L"C:\\ProgramData\\Comms";
constexpr wchar_t kBackgrounds[] = L"C:\\ProgramData\\Comms\\LumiCamera";
constexpr ULONGLONG kLeastFreeBytes = 100ULL * 1024 * 1024;

bool IsFolder(const std::wstring& path) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

std::wstring ProbeName(const std::wstring& folder) {
    return folder + L"\\PixoraDiagnostics-" + std::to_wstring(GetCurrentProcessId());
}

bool CanMakeFolder(const std::wstring& folder) {
    const std::wstring probe = ProbeName(folder);
    return CreateDirectoryW(probe.c_str(), nullptr) && RemoveDirectoryW(probe.c_str());
}

bool CanMakeFile(const std::wstring& folder) {
    const suite::Handle probe(CreateFileW(ProbeName(folder).c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                          FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr));
    return static_cast<bool>(probe);
}

std::string Rights(const std::wstring& folder, const PersonalData& personal) {
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    wchar_t* text = nullptr;
    if (GetNamedSecurityInfoW(folder.c_str(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr, nullptr,
                              nullptr, &descriptor) != ERROR_SUCCESS ||
        !ConvertSecurityDescriptorToStringSecurityDescriptorW(descriptor, SDDL_REVISION_1, DACL_SECURITY_INFORMATION,
                                                              &text, nullptr)) {
        LocalFree(descriptor);
        return "rights cannot be read";
    }
    const std::string rights = "rights " + suite::ToUtf8(personal.Mask(text));
    LocalFree(text);
    LocalFree(descriptor);
    return rights;
}

void AddFolder(Report& report, const std::wstring& path, const PersonalData& personal,
               bool (*usable)(const std::wstring&), const char* use) {
    const std::string name = suite::ToUtf8(personal.Mask(path));
    if (!usable(path)) {
        report.Wrong("in " + name + " this user cannot " + use, "Give users the right to " + std::string(use) + ".");
    } else {
        report.Fine(name + ": this user can " + use);
    }
    report.Note(Rights(path, personal));
}

void AddFreeSpace(Report& report) {
    ULARGE_INTEGER free{};
    if (!GetDiskFreeSpaceExW(L"C:\\", &free, nullptr, nullptr)) {
        return;
    }
    const std::string text = std::to_string(free.QuadPart / (1024 * 1024)) + " MiB are free on drive C";
    if (free.QuadPart < kLeastFreeBytes) {
        report.Wrong(text, "Free some space.");
    } else {
        report.Fine(text);
    }
}

}  // namespace

void AddFolders(Report& report, const PersonalData& personal) {
    report.Section("Folders");
    if (!IsFolder(kShared)) {
        report.Wrong("C:\\ProgramData\\Comms is missing, so own backgrounds cannot be kept", "Install Pixora again.");
    } else if (!IsFolder(kBackgrounds)) {
        AddFolder(report, kShared, personal, CanMakeFolder, "make folders");
        report.Note("LumiCamera is not in there yet; the first start of Pixora makes it");
    } else {
        AddFolder(report, kBackgrounds, personal, CanMakeFolder, "make folders");
    }
    const std::wstring sid = InteractiveUserSid();
    const std::wstring own = std::wstring(kBackgrounds) + L"\\" + sid;
    if (sid.empty()) {
        report.Wrong("the user of this session cannot be told, so own backgrounds cannot be kept",
                     "Sign out and in again.");
    } else if (IsFolder(own)) {
        AddFolder(report, own, personal, CanMakeFile, "make files");
    }
    const std::wstring logs = suite::LocalDataFolder() + L"\\Velmora\\Quillon\\Logs";
    if (IsFolder(logs)) {
        AddFolder(report, logs, personal, CanMakeFile, "make files");
    }
    AddFreeSpace(report);
}

}  // namespace diagnostics
