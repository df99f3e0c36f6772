// What the report says of folders that are missing or may not be written to, of their rights, and of a full drive.
#include <gmock/gmock.h>
#include <windows.h>

#include <aclapi.h>
#include <sddl.h>

#include <map>
#include <set>
#include <string>
#include <vector>

#include "diagnostics/Sections.h"
#include "service/UserIdentity.h"
#include "suite/common/LocalFolder.h"
#include "suite/common/Utf8.h"
#include "tests/support/ImportHook.h"

namespace diagnostics {
namespace {

using harness::ImportHook;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

const std::wstring kShared = L"C:\\ProgramData\\Comms";
const std::wstring kBackgrounds = kShared + L"\\LumiCamera";
constexpr ULONGLONG kMiB = 1024 * 1024;

// A machine that has only what a test puts there.
class FolderSectionTest : public testing::Test {
  protected:
    FolderSectionTest() {
        attributes_.clear();
        made_.clear();
        removed_.clear();
        freed_.clear();
        rights_ = nullptr;
        makes_ = removes_ = true;
        free_ = 5000 * kMiB;
    }
    static Report Folders() {
        Report report;
        AddFolders(report, PersonalData({}));
        return report;
    }
    // As the report shows it, without anybody's name.
    static std::string Shown(const std::wstring& path) { return suite::ToUtf8(PersonalData({}).Mask(path)); }
    static void Put(const std::wstring& folder) { attributes_[folder] = FILE_ATTRIBUTE_DIRECTORY; }
    static std::wstring ProbeIn(const std::wstring& folder) {
        return folder + L"\\PixoraDiagnostics-" + std::to_wstring(GetCurrentProcessId());
    }
    static std::wstring Logs() { return suite::LocalDataFolder() + L"\\Velmora\\Quillon\\Logs"; }

    static DWORD WINAPI Attributes(LPCWSTR path) {
        const auto found = attributes_.find(path);
        return found == attributes_.end() ? INVALID_FILE_ATTRIBUTES : found->second;
    }
    static BOOL WINAPI MakeFolder(LPCWSTR path, LPSECURITY_ATTRIBUTES) {
        made_.emplace_back(path);
        return makes_ ? TRUE : FALSE;
    }
    static BOOL WINAPI RemoveFolder(LPCWSTR path) {
        removed_.emplace_back(path);
        return removes_ ? TRUE : FALSE;
    }
    static HANDLE WINAPI MakeFile(LPCWSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES, DWORD disposition,
                                  DWORD flags, HANDLE) {
        made_.emplace_back(path);
        EXPECT_EQ(access, DWORD{GENERIC_WRITE});
        EXPECT_EQ(share, 0u);
        EXPECT_EQ(disposition, DWORD{CREATE_NEW}) << "nobody's file is written over";
        EXPECT_TRUE(flags & FILE_FLAG_DELETE_ON_CLOSE) << "nothing is left behind";
        return makes_ ? CreateEventW(nullptr, TRUE, FALSE, nullptr) : INVALID_HANDLE_VALUE;
    }
    static DWORD WINAPI Security(LPCWSTR, SE_OBJECT_TYPE type, SECURITY_INFORMATION what, PSID*, PSID*, PACL*, PACL*,
                                 PSECURITY_DESCRIPTOR* descriptor) {
        EXPECT_EQ(type, SE_FILE_OBJECT);
        EXPECT_EQ(what, SECURITY_INFORMATION{DACL_SECURITY_INFORMATION});
        if (!rights_ ||
            !ConvertStringSecurityDescriptorToSecurityDescriptorW(rights_, SDDL_REVISION_1, descriptor, nullptr)) {
            return ERROR_ACCESS_DENIED;
        }
        descriptor_ = *descriptor;
        return ERROR_SUCCESS;
    }
    static HLOCAL WINAPI Free(HLOCAL memory) {
        freed_.insert(memory);
        return localFree_(memory);
    }
    static BOOL WINAPI FreeSpace(LPCWSTR drive, PULARGE_INTEGER free, PULARGE_INTEGER, PULARGE_INTEGER) {
        EXPECT_STREQ(drive, L"C:\\");
        free->QuadPart = free_;
        return free_ > 0 ? TRUE : FALSE;
    }
    static BOOL WINAPI NoSidText(PSID, LPWSTR*) { return FALSE; }

    static inline std::map<std::wstring, DWORD> attributes_;
    static inline std::vector<std::wstring> made_, removed_;
    static inline std::set<HLOCAL> freed_;
    static inline PSECURITY_DESCRIPTOR descriptor_ = nullptr;
    static inline const wchar_t* rights_ = nullptr;
    static inline bool makes_ = true, removes_ = true;
    static inline ULONGLONG free_ = 0;  // none: the system cannot tell
    static inline decltype(&LocalFree) localFree_ = nullptr;

  private:
    const ImportHook attributesHook_{nullptr, "GetFileAttributesW", &Attributes};
    const ImportHook makeHook_{nullptr, "CreateDirectoryW", &MakeFolder};
    const ImportHook removeHook_{nullptr, "RemoveDirectoryW", &RemoveFolder};
    const ImportHook fileHook_{nullptr, "CreateFileW", &MakeFile};
    const ImportHook securityHook_{nullptr, "GetNamedSecurityInfoW", &Security};
    const ImportHook spaceHook_{nullptr, "GetDiskFreeSpaceExW", &FreeSpace};
};

TEST_F(FolderSectionTest, WithoutTheSharedFolderOwnBackgroundsCannotBeKept) {
    for (const bool isFile : {false, true}) {
        if (isFile) {
            attributes_[kShared] = FILE_ATTRIBUTE_ARCHIVE;
        }
        const Report report = Folders();
        EXPECT_EQ(report.WrongCount(), 1);
        EXPECT_THAT(report.Text(), testing::StartsWith("Folders\n"));
        EXPECT_THAT(report.Text(), HasSubstr("1. C:\\ProgramData\\Comms is missing, so own backgrounds cannot be kept\n"
                                             "    Install Pixora again.\n"));
    }
    EXPECT_THAT(made_, testing::IsEmpty());
}

TEST_F(FolderSectionTest, BeforeTheFirstStartTheSharedFolderIsTried) {
    Put(kShared);
    const Report report = Folders();
    EXPECT_EQ(report.WrongCount(), 0);
    EXPECT_THAT(report.Text(), HasSubstr("ok     C:\\ProgramData\\Comms: this user can make folders\n"));
    EXPECT_THAT(report.Text(), HasSubstr("LumiCamera is not in there yet; the first start of Pixora makes it\n"));
    EXPECT_THAT(made_, ElementsAre(ProbeIn(kShared)));
    EXPECT_EQ(removed_, made_);
}

TEST_F(FolderSectionTest, AFolderThatCannotBeMadeOrNotBeRemovedIsWrong) {
    Put(kShared);
    Put(kBackgrounds);
    for (bool* const may : {&makes_, &removes_}) {
        *may = false;
        const Report report = Folders();
        EXPECT_EQ(report.WrongCount(), 1);
        EXPECT_THAT(report.Text(), HasSubstr("1. in C:\\ProgramData\\Comms\\LumiCamera this user cannot make folders\n"
                                             "    Give users the right to make folders.\n"));
        EXPECT_THAT(report.Text(), Not(HasSubstr("not in there yet")));
        *may = true;
    }
}

TEST_F(FolderSectionTest, FilesAreTriedInTheUsersOwnFolderAndInTheLogs) {
    const std::wstring own = kBackgrounds + L"\\" + InteractiveUserSid();
    Put(kShared);
    Put(kBackgrounds);
    Put(own);
    Put(Logs());
    const Report fine = Folders();
    EXPECT_EQ(fine.WrongCount(), 0);
    EXPECT_THAT(fine.Text(), AllOf(HasSubstr("ok     C:\\ProgramData\\Comms\\LumiCamera: this user can make folders\n"),
                                   HasSubstr("ok     " + Shown(own) + ": this user can make files\n"),
                                   HasSubstr("ok     " + Shown(Logs()) + ": this user can make files\n")));
    EXPECT_THAT(made_, ElementsAre(ProbeIn(kBackgrounds), ProbeIn(own), ProbeIn(Logs())));
    makes_ = false;
    const Report wrong = Folders();
    EXPECT_EQ(wrong.WrongCount(), 3);
    EXPECT_THAT(wrong.Text(), HasSubstr("this user cannot make files\n    Give users the right to make files.\n"));
}

TEST_F(FolderSectionTest, AUserWhoCannotBeToldIsWrong) {
    Put(kShared);
    const ImportHook noText(nullptr, "ConvertSidToStringSidW", &NoSidText);
    const Report report = Folders();
    EXPECT_EQ(report.WrongCount(), 1);
    EXPECT_THAT(report.Text(),
                HasSubstr("1. the user of this session cannot be told, so own backgrounds cannot be kept\n"
                          "    Sign out and in again.\n"));
}

TEST_F(FolderSectionTest, RightsAreShownOrCannotBeRead) {
    Put(kShared);
    const ImportHook free(nullptr, "LocalFree", &Free);
    localFree_ = free.Original<decltype(&LocalFree)>();
    EXPECT_THAT(Folders().Text(), HasSubstr("         rights cannot be read\n"));
    rights_ = L"D:(A;;FA;;;WD)";
    EXPECT_THAT(Folders().Text(), HasSubstr("         rights D:(A;;FA;;;WD)\n"));
    EXPECT_THAT(freed_, testing::Contains(descriptor_));
}

TEST_F(FolderSectionTest, LessThanAHundredMebibytesAreTooFew) {
    Put(kShared);
    free_ = 100 * kMiB;
    EXPECT_THAT(Folders().Text(), HasSubstr("  ok     100 MiB are free on drive C\n"));
    free_ -= 1;
    EXPECT_THAT(Folders().Text(), HasSubstr("1. 99 MiB are free on drive C\n    Free some space.\n"));
    free_ = 0;
    EXPECT_THAT(Folders().Text(), Not(HasSubstr("drive C")));
}

}  // namespace
}  // namespace diagnostics
