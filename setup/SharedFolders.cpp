#include "setup/SharedFolders.h"

#include <windows.h>

#include <sddl.h>

#include <memory>
#include <utility>
#include <vector>

#include "setup/SharedFolderRules.h"
#include "suite/common/Handle.h"
#include "suite/common/HeldFolder.h"
#include "suite/common/UserSid.h"

namespace setup {
namespace {

// Everybody may read and make folders here; what somebody makes is theirs; administrators and the system own the rest.
constexpr wchar_t kRights[] =
    L"O:BAD:P(A;OICI;FA;;;SY)(A;OICI;FA;;;BA)(A;OICI;0x1200a9;;;BU)(A;;0x4;;;BU)"
    L"(A;OICIIO;GA;;;CO)";

struct LocalFreeDeleter {
    void operator()(void* memory) const { LocalFree(memory); }
};
template <typename T>
using LocalMemory = std::unique_ptr<T, LocalFreeDeleter>;

// The right to give a folder to the administrators and to change the rights of somebody else's.
void EnablePrivilege(const wchar_t* name) {
    HANDLE opened = nullptr;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_ADJUST_PRIVILEGES, &opened)) {
        return;
    }
    const suite::Handle token(opened);
    TOKEN_PRIVILEGES privileges{};
    privileges.PrivilegeCount = 1;
    privileges.Privileges[0].Attributes = SE_PRIVILEGE_ENABLED;
    if (LookupPrivilegeValueW(nullptr, name, &privileges.Privileges[0].Luid)) {
        AdjustTokenPrivileges(token.Get(), FALSE, &privileges, 0, nullptr, nullptr);
    }
}

LocalMemory<void> Rights() {
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    ConvertStringSecurityDescriptorToSecurityDescriptorW(kRights, SDDL_REVISION_1, &descriptor, nullptr);
    return LocalMemory<void>(descriptor);
}

Verdict Look(const std::wstring& path) {
    const suite::Handle folder = suite::HoldFolder(path, 0);
    FolderFacts facts;
    facts.error = folder ? 0 : GetLastError();
    return Judge(folder ? suite::FactsOf(folder.Get(), path) : facts, suite::OwnUserSid());
}

bool MayUse(Verdict verdict, bool foreignToo) {
    return verdict == Verdict::kMissing || verdict == Verdict::kSound || (foreignToo && verdict == Verdict::kForeign);
}

// 0 or the system's number.
DWORD MakeFolder(const std::wstring& path) {
    const LocalMemory<void> rights = Rights();
    SECURITY_ATTRIBUTES attributes{sizeof(SECURITY_ATTRIBUTES), rights.get(), FALSE};
    return rights && CreateDirectoryW(path.c_str(), &attributes) ? 0 : GetLastError();
}

// Only the folder itself: what users have in it stays theirs. REQUIRES: the folder above belongs to administrators.
bool TakeOver(const std::wstring& path) {
    const LocalMemory<void> rights = Rights();
    const suite::Handle folder = suite::HoldFolder(path, WRITE_DAC | WRITE_OWNER);
    if (!rights || !folder || suite::FactsOf(folder.Get(), path).isLink) {
        return false;
    }
    return SetKernelObjectSecurity(
               folder.Get(),
               OWNER_SECURITY_INFORMATION | DACL_SECURITY_INFORMATION | PROTECTED_DACL_SECURITY_INFORMATION,
               rights.get()) != FALSE;
}

std::vector<std::wstring> Find(const std::wstring& folder, const wchar_t* pattern) {
    std::vector<std::wstring> names;
    WIN32_FIND_DATAW found{};
    const HANDLE search = FindFirstFileW((folder + L"\\" + pattern).c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) {
        return names;
    }
    do {
        names.push_back(folder + L"\\" + found.cFileName);
    } while (FindNextFileW(search, &found));
    FindClose(search);
    return names;
}

// Open as long as somebody could exchange it for a link; none when it is one already.
suite::Handle HoldTrueFolder(const std::wstring& path) {
    suite::Handle held = suite::HoldFolder(path, 0);
    return held && Judge(suite::FactsOf(held.Get(), path), suite::OwnUserSid()) != Verdict::kPlanted ? std::move(held)
                                                                                                     : suite::Handle();
}

void DeletePicturesIn(const std::wstring& folder) {
    for (const wchar_t* pattern : {L"custom_background_btn_*.jpg", L"custom_background_btn_*.part"}) {
        for (const std::wstring& picture : Find(folder, pattern)) {
            DeleteFileW(picture.c_str());
        }
    }
}

void RemoveFolderOfPictures(const std::wstring& folder) {
    suite::Handle held = HoldTrueFolder(folder);
    if (!held) {
        return;
    }
    DeletePicturesIn(folder);
    held.Reset();
    RemoveDirectoryW(folder.c_str());
}

}  // namespace

SharedFolders::SharedFolders(const std::wstring& programData)
    : comms_(programData + L"\\Comms"), pictures_(comms_ + L"\\LumiCamera") {}

bool SharedFolders::Check(std::wstring& problem) const {
    if (!MayUse(Look(comms_), false)) {
        problem = comms_;
        return false;
    }
    if (!MayUse(Look(pictures_), true)) {
        problem = pictures_;
        return false;
    }
    return true;
}

bool SharedFolders::Make(std::wstring& problem) const {
    for (const wchar_t* privilege : {SE_RESTORE_NAME, SE_TAKE_OWNERSHIP_NAME}) {
        EnablePrivilege(privilege);
    }
    // Made first and looked at then: between the two nobody can put a folder of their own there.
    problem = comms_;
    DWORD error = MakeFolder(comms_);
    if ((error != 0 && error != ERROR_ALREADY_EXISTS) || Look(comms_) != Verdict::kSound) {
        return false;
    }
    problem = pictures_;
    error = MakeFolder(pictures_);
    if (error == ERROR_ALREADY_EXISTS) {
        return MayUse(Look(pictures_), true) && TakeOver(pictures_);
    }
    return error == 0;
}

void SharedFolders::RemovePictures() const {
    const suite::Handle comms = HoldTrueFolder(comms_);
    suite::Handle pictures = HoldTrueFolder(pictures_);
    if (!comms || !pictures) {
        return;
    }
    for (const std::wstring& folder : Find(pictures_, L"S-1-*")) {
        RemoveFolderOfPictures(folder);
    }
    pictures.Reset();
    RemoveFolderOfPictures(pictures_);
}

}  // namespace setup
