// Adding and deleting: the order of things, files that vanish, folders that refuse.
#include <atomic>
#include <fstream>
#include <iterator>
#include <utility>

#include "service/pictures/BackgroundPicture.h"
#include "service/pictures/CustomItemNames.h"
#include "service/pictures/PaintingWait.h"
#include "tests/support/ImportHook.h"
#include "tests/windows/service/OwnBackgrounds.h"
#include "tests/windows/support/HangingDecoder.h"
#include "tests/windows/support/TimeOfWaits.h"

namespace CustomItemNames = pictures::CustomItemNames;

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
namespace fs = std::filesystem;

constexpr char kNotStored[] = "No picture is stored";

class OwnAddTest : public OwnBackgroundsTest {
  protected:
    void SetUp() override {
        OwnBackgroundsTest::SetUp();
        Start();
    }
    // The system below, where the tests run on one that has a file of which nothing can be written: makes the path a
    // link to that file, or takes the link away.
    static bool SetFullDisk(const fs::path& path, bool full) {
        using UnixName = char*(CDECL*)(const wchar_t*);
        const auto unixName = reinterpret_cast<UnixName>(
            reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "wine_get_unix_file_name")));
        char* const name = unixName ? unixName(path.c_str()) : nullptr;
        if (!name) {
            return false;
        }
        const std::string quoted = "\"" + std::string(name) + "\"";
        HeapFree(GetProcessHeap(), 0, name);
        std::string command = full ? "ln -s /dev/full " + quoted : "rm " + quoted;
        const char* const program = full ? R"(\\?\unix\bin\ln)" : R"(\\?\unix\bin\rm)";
        STARTUPINFOA startup{};
        startup.cb = sizeof(startup);
        PROCESS_INFORMATION info{};
        if (!CreateProcessA(program, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &info)) {
            ADD_FAILURE() << "no process: " << GetLastError();
            return false;
        }
        CloseHandle(info.hThread);
        CloseHandle(info.hProcess);
        // It is none of this system's processes, so its end cannot be waited for.
        return harness::WaitUntil([&] { return IsFullDisk(path) == full; });
    }
    static bool IsFullDisk(const fs::path& path) {
        const suite::Handle file(
            CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
        DWORD written = 0;
        return file && !WriteFile(file.Get(), "x", 1, &written, nullptr) && GetLastError() == ERROR_DISK_FULL;
    }
    // Nothing of list, gallery, choice and folder has changed since `before`.
    void ExpectUnchanged(const Values& before) {
        EXPECT_EQ(AllValues(), before);
        EXPECT_EQ(gallery_.size(), Saved().size());
        for (const auto& entry : fs::directory_iterator(UserFolder())) {
            EXPECT_NE(entry.path().extension(), L".part") << entry.path();
        }
    }
};

TEST_F(OwnAddTest, AnAddedPictureIsListedShownAndChosen) {
    const fs::path photo = Own(L"red.jpg", L"photo.jpg");
    EXPECT_TRUE(Model().AddCustomBackground(photo));
    EXPECT_EQ(gallery_, (std::vector<Cell>{{Name(0), Picture(0), false}}));
    EXPECT_EQ(Text(L"lumi_camera_background_image_path"), Picture(0).wstring());
    EXPECT_EQ(Number(L"lumi_camera_background_replacement"), 5);
    EXPECT_EQ(Text(L"background_selected_btnName"), Name(0));
    EXPECT_EQ(Text(L"lumi_camera_custom_img_group"), Name(0) + L"[(&,f!=)]14[(&,f!=)]0[(&,f!=)]" +
                                                         Picture(0).wstring() + L"[(&,f!=)]" + photo.wstring() +
                                                         L"[(&;i!-)]");
    EXPECT_THAT(TakeKinds(), IsEmpty());
}

TEST_F(OwnAddTest, TheFirstFreeNumberIsTaken) {
    for (int i = 0; i < 4; ++i) {
        Model().AddCustomBackground(Media(L"red.jpg"));
    }
    EXPECT_TRUE(Model().DeleteCustomBackground(Name(2)));
    EXPECT_TRUE(Model().AddCustomBackground(Media(L"green.jpg")));
    EXPECT_THAT(GalleryNames(), ElementsAre(Name(0), Name(1), Name(3), Name(2)));
    EXPECT_TRUE(IsAbout(Decode(Picture(2)).At(9, 9), 0x20A040));
    ExpectAllAgree();
}

TEST_F(OwnAddTest, TheOriginalsAreNeverTouched) {
    const fs::path photo = Own(L"red.jpg", L"photo.jpg");
    const fs::path clip = Own(L"clip.mp4", L"clip.mp4");
    const std::vector<char> photoBefore = Content(photo), clipBefore = Content(clip);
    Model().AddCustomBackground(photo);
    Model().AddCustomBackground(clip);
    EXPECT_TRUE(Model().SelectCustomBackground(Name(0)));
    EXPECT_TRUE(Model().SelectCustomBackground(Name(1)));
    EXPECT_TRUE(Model().DeleteCustomBackground(Name(0)));
    EXPECT_TRUE(Model().DeleteCustomBackground(Name(1)));
    EXPECT_EQ(Content(photo), photoBefore);
    EXPECT_EQ(Content(clip), clipBefore);
    EXPECT_TRUE(fs::is_empty(UserFolder()));
}

TEST_F(OwnAddTest, AFileThatVanishedAfterTheChoiceIsShownAsSuch) {
    const fs::path photo = Own(L"red.jpg", L"photo.jpg");
    const fs::path clip = Own(L"clip.mp4", L"clip.mp4");
    EXPECT_TRUE(HomeService::CheckImageFile(photo));
    EXPECT_TRUE(HomeService::CheckVideoFile(clip));
    fs::remove(photo);
    fs::remove(clip);
    EXPECT_TRUE(Model().AddCustomBackground(photo));
    EXPECT_TRUE(Model().AddCustomBackground(clip));
    EXPECT_TRUE(IsJpeg(Picture(0)));
    EXPECT_EQ(Content(Picture(0)), Content(Picture(1))) << "the picture that stands for a file that is gone";
    EXPECT_GE(LogLines("The file cannot be made a picture: -"), 1);
    EXPECT_EQ(LogLines("[L3] The video has no cover(BackgroundPicture::Make)"), 1);
    ExpectAllAgree();
    EXPECT_FALSE(Model().SelectCustomBackground(Name(1)));
    EXPECT_THAT(TakeKinds(), ElementsAre(1));
    EXPECT_THAT(GalleryNames(), ElementsAre(Name(0)));
}

TEST_F(OwnAddTest, ATruncatedPictureDoesNoHarm) {
    const fs::path photo = Own(L"plain24.png", L"cut.png");
    fs::resize_file(photo, fs::file_size(photo) / 2);
    Model().AddCustomBackground(photo);
    ExpectAllAgree();
    EXPECT_TRUE(Model().DeleteCustomBackground(Name(0)));
}

void* WINAPI CannotBeLocked(HGLOBAL) {
    return nullptr;
}

TEST_F(OwnAddTest, APictureThatCannotBeReadBackIsNotListed) {
    Expect(kNotStored);
    const Values before = AllValues();
    {
        const harness::ImportHook hook(nullptr, "GlobalLock", &CannotBeLocked);
        EXPECT_FALSE(Model().AddCustomBackground(Media(L"red.jpg")));
    }
    EXPECT_THAT(TakeKinds(), ElementsAre(0));
    ExpectUnchanged(before);
    EXPECT_FALSE(fs::exists(Picture(0)));
}

TEST_F(OwnAddTest, AFolderThatRefusesTheFileLeavesTheOldList) {
    Expect(kNotStored);
    EXPECT_TRUE(Model().AddCustomBackground(Media(L"red.jpg")));
    // The places where the next picture is written and where it goes are taken.
    for (const wchar_t* suffix : {L".jpg.part", L".jpg"}) {
        const fs::path obstacle = UserFolder() / (Name(1) + suffix);
        fs::create_directories(obstacle / L"inside");
        for (const wchar_t* name : {L"green.jpg", L"clip.mp4"}) {
            const Values before = AllValues();
            EXPECT_FALSE(Model().AddCustomBackground(Media(name)));
            EXPECT_THAT(TakeKinds(), ElementsAre(10));
            EXPECT_EQ(AllValues(), before);
            EXPECT_THAT(GalleryNames(), ElementsAre(Name(0)));
        }
        fs::remove_all(obstacle);
    }
    EXPECT_TRUE(Model().AddCustomBackground(Media(L"green.jpg")));
    ExpectAllAgree();
}

decltype(&DeleteFileW) g_delete = nullptr;
std::atomic<int> g_discarded = 0;

BOOL WINAPI NoteDiscarded(const wchar_t* path) {
    const BOOL deleted = g_delete(path);
    g_discarded += deleted && fs::path(path).extension() == L".part" ? 1 : 0;
    return deleted;
}

// What is made too late is removed by whoever has made it.
class LateDiscard {
  public:
    LateDiscard() {
        g_discarded = 0;
        g_delete = hook_.Original<decltype(g_delete)>();
    }
    static bool Comes() {
        return harness::WaitUntil([] { return g_discarded == 1; });
    }

  private:
    const harness::ImportHook hook_{nullptr, "DeleteFileW", &NoteDiscarded};
};

// The program ends, or the time is over, while the source is read: what comes of it later has no place any more.
TEST_F(OwnAddTest, WhatIsMadeTooLateIsNotStored) {
    EXPECT_TRUE(Model().AddCustomBackground(Media(L"red.jpg")));
    const Values before = AllValues();
    const LateDiscard late;
    {
        const HangingDecoder decoder;
        const pictures::WaitWatch watch([] {});
        PostQuitMessage(0);
        EXPECT_FALSE(Model().AddCustomBackground(Media(L"green.jpg")));
        EXPECT_THAT(TakeKinds(), ElementsAre(0));
        EXPECT_EQ(AllValues(), before);
        ASSERT_TRUE(harness::WaitUntil([] { return HangingDecoder::Inside() == 1; }));
        MSG message;
        EXPECT_TRUE(PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
    }
    // Meanwhile another one takes the name.
    EXPECT_TRUE(Model().AddCustomBackground(Media(L"blue.png")));
    EXPECT_TRUE(LateDiscard::Comes());
    EXPECT_EQ(std::distance(fs::directory_iterator(UserFolder()), fs::directory_iterator()), 2);
    EXPECT_TRUE(IsAbout(Decode(Picture(1)).At(9, 9), 0x2040C0));
    ExpectAllAgree();
}

// Ten seconds to look at a file, twenty to make its picture; each limit is told in a message.
TEST_F(OwnAddTest, AFileThatTakesForEverIsGivenUp) {
    Expect("[L4] The work takes too long(RunWhilePainting)");
    const Values before = AllValues();
    const LateDiscard late;
    {
        const HangingDecoder decoder;
        {
            const TimeOfWaits time([] { HangingDecoder::LetGo(); });
            EXPECT_FALSE(HomeService::CheckImageFile(Media(L"red.jpg")));
            EXPECT_EQ(TimeOfWaits::Passed(), std::chrono::seconds(10));
            EXPECT_THAT(TakeKinds(), ElementsAre(0));
            EXPECT_FALSE(Model().AddCustomBackground(Media(L"red.jpg")));
            EXPECT_EQ(TimeOfWaits::Passed(), std::chrono::seconds(20));
            EXPECT_THAT(TakeKinds(), ElementsAre(0));
        }
        EXPECT_TRUE(harness::WaitUntil([] { return HangingDecoder::Inside() == 2; }));
        EXPECT_EQ(AllValues(), before);
    }
    EXPECT_TRUE(LateDiscard::Comes());
    EXPECT_TRUE(fs::is_empty(UserFolder()));
}

// Whoever reads a picture meanwhile, as the camera service does, has the old one or the new one.
TEST_F(OwnAddTest, APictureIsMovedIntoItsPlaceWhole) {
    namespace BackgroundPicture = pictures::BackgroundPicture;
    const auto identity = [](const fs::path& path) {
        const suite::Handle file(CreateFileW(path.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                             nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
        BY_HANDLE_FILE_INFORMATION facts{};
        EXPECT_TRUE(GetFileInformationByHandle(file.Get(), &facts));
        return std::make_pair(facts.nFileIndexHigh, facts.nFileIndexLow);
    };
    EXPECT_TRUE(Model().AddCustomBackground(Media(L"red.jpg")));
    const fs::path unfinished = BackgroundPicture::UnfinishedName(Picture(0));
    ASSERT_EQ(BackgroundPicture::Prepare(Media(L"green.jpg"), false, unfinished), BackgroundPicture::Result::kMade);
    const auto prepared = identity(unfinished);
    EXPECT_NE(prepared, identity(Picture(0)));
    EXPECT_TRUE(IsAbout(Decode(Picture(0)).At(9, 9), 0xC02020));
    ASSERT_EQ(BackgroundPicture::Finish(unfinished, Picture(0)), BackgroundPicture::Result::kMade);
    EXPECT_EQ(identity(Picture(0)), prepared) << "copied, not moved";
    EXPECT_FALSE(fs::exists(unfinished));
    EXPECT_TRUE(IsAbout(Decode(Picture(0)).At(9, 9), 0x20A040));
}

TEST_F(OwnAddTest, AFullDiskLeavesTheOldList) {
    Expect(kNotStored);
    EXPECT_TRUE(Model().AddCustomBackground(Media(L"red.jpg")));
    const fs::path unfinished = UserFolder() / (Name(1) + L".jpg.part");
    for (const wchar_t* name : {L"green.jpg", L"blue.png", L"clip.mp4"}) {
        if (!SetFullDisk(unfinished, true)) {
            GTEST_SKIP() << "this system has no file that is always full";
        }
        const Values before = AllValues();
        EXPECT_FALSE(Model().AddCustomBackground(Media(name)));
        EXPECT_THAT(TakeKinds(), ElementsAre(10));
        ASSERT_TRUE(SetFullDisk(unfinished, false));
        ExpectUnchanged(before);
    }
    EXPECT_TRUE(Model().AddCustomBackground(Media(L"green.jpg")));
    EXPECT_TRUE(IsAbout(Decode(Picture(1)).At(9, 9), 0x20A040));
    ExpectAllAgree();
}

TEST_F(OwnAddTest, AWriteProtectedPictureIsReplacedAndDeleted) {
    EXPECT_TRUE(Model().AddCustomBackground(Media(L"red.jpg")));
    fs::copy_file(Media(L"red.jpg"), Picture(1));  // somebody's, under the next name
    for (const int number : {0, 1}) {
        ASSERT_TRUE(SetFileAttributesW(Picture(number).c_str(), FILE_ATTRIBUTE_READONLY));
    }
    EXPECT_TRUE(Model().AddCustomBackground(Media(L"green.jpg")));
    EXPECT_TRUE(IsAbout(Decode(Picture(1)).At(9, 9), 0x20A040));
    EXPECT_TRUE(Model().DeleteCustomBackground(Name(0)));
    EXPECT_FALSE(fs::exists(Picture(0)));
    ExpectAllAgree();
}

TEST_F(OwnAddTest, AFileInThePlaceOfTheFolderLeavesTheOldList) {
    fs::remove_all(UserFolder());
    std::ofstream(UserFolder()) << "no folder";
    const Values before = AllValues();
    EXPECT_FALSE(Model().AddCustomBackground(Media(L"red.jpg")));
    EXPECT_THAT(TakeKinds(), ElementsAre(10));
    EXPECT_EQ(AllValues(), before);
    // It goes, and adding works without a restart.
    fs::remove(UserFolder());
    EXPECT_TRUE(Model().AddCustomBackground(Media(L"red.jpg")));
    ExpectAllAgree();
}

TEST_F(OwnAddTest, AFullListOverwritesItsLastName) {
    for (int i = 0; i < CustomItemNames::kLimit; ++i) {
        EXPECT_FALSE(Model().IsCustomFull());
        EXPECT_TRUE(Model().AddCustomBackground(Media(L"baseline.jpg")));
    }
    EXPECT_TRUE(Model().IsCustomFull());
    EXPECT_TRUE(Model().AddCustomBackground(Media(L"red.jpg")));
    EXPECT_EQ(gallery_.size(), 32u);
    EXPECT_EQ(gallery_.back().name, Name(31));
    EXPECT_TRUE(IsAbout(Decode(Picture(31)).At(9, 9), 0xC02020));
    ExpectAllAgree();
}

TEST_F(OwnAddTest, ABrokenItemCanAlwaysBeDeleted) {
    for (int i = 0; i < 4; ++i) {
        Model().AddCustomBackground(Media(i == 3 ? L"clip.mp4" : L"red.jpg"));
    }
    fs::remove(Picture(0));
    std::ofstream(Picture(1)) << "no picture";
    fs::remove(Picture(2));
    fs::create_directories(Picture(2) / L"inside");
    for (const int number : {1, 3, 0, 2}) {
        EXPECT_TRUE(Model().DeleteCustomBackground(Name(number)));
    }
    EXPECT_THAT(gallery_, IsEmpty());
    EXPECT_THAT(Saved(), IsEmpty());
    EXPECT_EQ(Number(L"lumi_camera_background_replacement"), 0);
}

TEST_F(OwnAddTest, AChosenPictureOfTheProgramsOwnFolderIsCopied) {
    Model().AddCustomBackground(Media(L"red.jpg"));
    EXPECT_TRUE(Model().AddCustomBackground(Picture(0)));
    EXPECT_TRUE(Model().DeleteCustomBackground(Name(0)));
    EXPECT_TRUE(IsAbout(Decode(Picture(1)).At(9, 9), 0xC02020));
    ExpectAllAgree();
}

TEST_F(OwnAddTest, TwoUsersNeverMix) {
    constexpr wchar_t kOther[] = L"S-1-5-21-11-22-33-1002";
    Model().AddCustomBackground(Media(L"red.jpg"));
    const std::vector<char> mine = Content(Picture(0));
    const Values myValues = AllValues();

    // Each user has a registry of his own.
    DeleteKey();
    MakeEmptyKey();
    Start(kOther);
    EXPECT_THAT(gallery_, IsEmpty());
    Model().AddCustomBackground(Media(L"green.jpg"));
    EXPECT_EQ(gallery_, (std::vector<Cell>{{Name(0), Picture(0, kOther), false}}));
    EXPECT_EQ(Content(Picture(0)), mine);
    EXPECT_TRUE(IsAbout(Decode(Picture(0, kOther)).At(9, 9), 0x20A040));
    EXPECT_TRUE(Model().DeleteCustomBackground(Name(0)));
    EXPECT_EQ(Content(Picture(0)), mine);

    DeleteKey();
    MakeEmptyKey();
    for (const auto& [name, value] : myValues) {
        Write(name, value);
    }
    Start();
    EXPECT_THAT(GalleryNames(), ElementsAre(Name(0)));
    ExpectAllAgree();
}

}  // namespace
