// Links and other people's folders where the user's own backgrounds belong: not followed, not copied, not deleted.
// What the system says of links and owners is a double's word, for not every system that the tests run on makes links.
#include <windows.h>

#include <sddl.h>

#include <cstring>
#include <fstream>
#include <set>

#include "service/pictures/CustomFolder.h"
#include "tests/support/ImportHook.h"
#include "tests/windows/service/OwnBackgrounds.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
namespace fs = std::filesystem;

// Makes the system call these paths links.
class Links {
  public:
    explicit Links(std::set<std::wstring> paths) {
        paths_ = std::move(paths);
        current_ = this;
    }
    ~Links() { current_ = nullptr; }

  private:
    static DWORD WINAPI Attributes(const wchar_t* path) {
        const DWORD attributes = current_->attributes_.Original<decltype(&GetFileAttributesW)>()(path);
        const bool isLink = attributes != INVALID_FILE_ATTRIBUTES && paths_.contains(path);
        return isLink ? attributes | FILE_ATTRIBUTE_REPARSE_POINT : attributes;
    }
    static BOOL WINAPI FindNext(HANDLE search, WIN32_FIND_DATAW* entry) {
        const BOOL found = current_->findNext_.Original<decltype(&FindNextFileW)>()(search, entry);
        for (const fs::path path : paths_) {
            // The shared folder is the only one whose listing tells links.
            if (found && path.parent_path() == pictures::CustomFolder::kBase && path.filename() == entry->cFileName) {
                entry->dwFileAttributes |= FILE_ATTRIBUTE_REPARSE_POINT;
            }
        }
        return found;
    }

    static inline Links* current_ = nullptr;
    static inline std::set<std::wstring> paths_;

    const harness::ImportHook attributes_{nullptr, "GetFileAttributesW", &Attributes};
    const harness::ImportHook findNext_{nullptr, "FindNextFileW", &FindNext};
};

// Makes everything belong to that account.
class Owner {
  public:
    explicit Owner(const wchar_t* account) { account_ = account; }

  private:
    static BOOL WINAPI Security(HANDLE, SECURITY_INFORMATION, PSECURITY_DESCRIPTOR out, DWORD size, DWORD* needed) {
        PSECURITY_DESCRIPTOR made = nullptr;
        ConvertStringSecurityDescriptorToSecurityDescriptorW((L"O:" + account_).c_str(), SDDL_REVISION_1, &made,
                                                             needed);
        const bool fits = size >= *needed;
        if (fits) {
            std::memcpy(out, made, *needed);
        }
        LocalFree(made);
        return fits;
    }

    static inline std::wstring account_;

    const harness::ImportHook security_{nullptr, "GetKernelObjectSecurity", &Security};
};

constexpr char kRefused[] = "a link, or somebody else's, is not used: ";

class OwnLinkTest : public OwnBackgroundsTest {
  protected:
    void SetUp() override {
        OwnBackgroundsTest::SetUp();
        Start();
        ASSERT_TRUE(Model().AddCustomBackground(Media(L"red.jpg")));
        TakeKinds();
    }
    // A start, and an addition, in which nothing may change.
    void ExpectNothingIsUsed() {
        Expect(kRefused);
        const Values before = AllValues();
        const std::vector<char> picture = Content(Picture(0));
        Start();
        EXPECT_THAT(gallery_, IsEmpty());
        EXPECT_FALSE(Model().AddCustomBackground(Media(L"blue.png")));
        EXPECT_THAT(TakeKinds(), ElementsAre(10));
        EXPECT_EQ(AllValues(), before);
        EXPECT_EQ(Content(Picture(0)), picture);
        EXPECT_FALSE(fs::exists(Picture(1)));
    }
};

TEST_F(OwnLinkTest, ASharedFolderThatLeadsElsewhereIsNotUsed) {
    const Links links({Base().wstring()});
    ExpectNothingIsUsed();
    EXPECT_GE(LogLines(std::string(kRefused) + "C:\\ProgramData\\Comms\\LumiCamera, owner "), 1);
}

TEST_F(OwnLinkTest, AUsersFolderThatLeadsElsewhereIsNotUsed) {
    const Links links({UserFolder().wstring()});
    ExpectNothingIsUsed();
}

TEST_F(OwnLinkTest, AUsersFolderOfSomebodyElseIsNotUsed) {
    const Owner owner(L"S-1-5-21-9-9-9-1002");
    ExpectNothingIsUsed();
    EXPECT_GE(LogLines(", owner S-1-5-21-9-9-9-1002, error 0(OwnFolders::Open)"), 1);
}

TEST_F(OwnLinkTest, OneOfTheAdministratorsIs) {
    const Owner owner(L"S-1-5-32-544");
    Start();
    EXPECT_TRUE(Model().AddCustomBackground(Media(L"blue.png")));
    EXPECT_THAT(GalleryNames(), ElementsAre(Name(0), Name(1)));
}

// Between the look at it and the writing into it.
TEST_F(OwnLinkTest, TheFolderCannotBeExchangedWhileAPictureIsAdded) {
    int tries = 0;
    Model().SetAddCustomItem([&](const std::wstring&, const wchar_t*, bool) {
        for (const fs::path& folder : {UserFolder(), Base()}) {
            ++tries;
            EXPECT_FALSE(MoveFileW(folder.c_str(), (folder.wstring() + L"-aside").c_str())) << folder;
        }
        return 15;
    });
    EXPECT_TRUE(Model().AddCustomBackground(Media(L"blue.png")));
    EXPECT_EQ(tries, 2);
    EXPECT_TRUE(MoveFileW(UserFolder().c_str(), (UserFolder().wstring() + L"-aside").c_str())) << "and not for longer";
}

TEST_F(OwnLinkTest, NothingIsWrittenThroughALink) {
    Expect("No picture is written through a link(BackgroundPicture::Make)");
    const fs::path part = Picture(1).wstring() + L".part";
    std::ofstream(part) << "somebody's";
    const Links links({part.wstring()});
    const Values before = AllValues();
    for (const wchar_t* medium : {L"blue.png", L"clip.mp4"}) {
        EXPECT_FALSE(Model().AddCustomBackground(Media(medium)));
        EXPECT_THAT(TakeKinds(), ElementsAre(10));
    }
    EXPECT_EQ(AllValues(), before);
    EXPECT_EQ(fs::file_size(part), 10u);
}

TEST_F(OwnLinkTest, ALinkIsNotExchangedForAPicture) {
    Expect("No picture is stored: 1920(BackgroundPicture::Make)");
    std::ofstream(Picture(1)) << "somebody's";
    const Links links({Picture(1).wstring()});
    EXPECT_FALSE(Model().AddCustomBackground(Media(L"blue.png")));
    EXPECT_THAT(TakeKinds(), ElementsAre(10));
    EXPECT_EQ(fs::file_size(Picture(1)), 10u);
    EXPECT_FALSE(fs::exists(Picture(1).wstring() + L".part"));
}

TEST_F(OwnLinkTest, ALinkIsNotDeleted) {
    const fs::path part = Picture(1).wstring() + L".part";
    std::ofstream(part) << "somebody's";
    {
        const Links links({Picture(0).wstring(), part.wstring()});
        Start();
        EXPECT_TRUE(Model().DeleteCustomBackground(Name(0)));
    }
    EXPECT_TRUE(fs::exists(Picture(0)));
    EXPECT_TRUE(fs::exists(part));
    EXPECT_THAT(Saved(), IsEmpty());
}

TEST_F(OwnLinkTest, ALinkIsNotCopied) {
    for (const wchar_t* name : {L"a.jpg", L"secret.jpg", L"z.jpg"}) {
        std::ofstream(Base() / name) << "content";
    }
    Write(L"sync_custom", 0);
    const Links links({(Base() / L"secret.jpg").wstring(), (UserFolder() / L"z.jpg").wstring()});
    std::ofstream(UserFolder() / L"z.jpg") << "old";
    Start();
    EXPECT_TRUE(fs::exists(UserFolder() / L"a.jpg"));
    EXPECT_FALSE(fs::exists(UserFolder() / L"secret.jpg"));
    EXPECT_EQ(fs::file_size(UserFolder() / L"z.jpg"), 3u) << "nor written through";
    EXPECT_EQ(LogLines("a link is not copied: secret.jpg(HomeService::SyncCustomImg)"), 1);
    EXPECT_EQ(Number(L"sync_custom"), 1);
}

}  // namespace
