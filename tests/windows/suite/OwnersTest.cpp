// The owners of handles: each closes what it holds exactly once, at its end, at Reset, or when it takes another.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "suite/common/ComApartment.h"
#include "suite/common/ComReference.h"
#include "suite/common/FolderListing.h"
#include "suite/common/GdiObject.h"
#include "suite/common/Handle.h"
#include "suite/common/RegistryKey.h"
#include "tests/windows/suite/TestFolder.h"

using suite::ComApartment;
using suite::ComReference;
using suite::FolderListing;
using suite::GdiBitmap;
using suite::GdiSelection;
using suite::Handle;
using suite::MemoryDc;
using suite::RegistryKey;

namespace {

HANDLE MakeEvent() {
    return CreateEventW(nullptr, TRUE, FALSE, nullptr);
}

bool IsOpen(HANDLE handle) {
    DWORD flags = 0;
    return GetHandleInformation(handle, &flags) != FALSE;
}

bool IsOpen(HKEY key) {
    return RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                            nullptr, nullptr) == ERROR_SUCCESS;
}

bool IsAlive(HGDIOBJ object) {
    return GetObjectType(object) != 0;
}

// Counts its references, as a COM object does, and may be asked for more than once.
struct Counted {
    int references = 1;
    void Release() { --references; }
};

std::vector<std::wstring> Names(const std::wstring& pattern) {
    std::vector<std::wstring> names;
    for (FolderListing entry(pattern); entry; entry.Next()) {
        names.push_back(entry.Name());
    }
    std::sort(names.begin(), names.end());
    return names;
}

DWORD OpenHandles() {
    DWORD count = 0;
    EXPECT_TRUE(GetProcessHandleCount(GetCurrentProcess(), &count));
    return count;
}

HRESULT ApartmentOfThisThread(APTTYPE& type) {
    APTTYPEQUALIFIER qualifier{};
    return CoGetApartmentType(&type, &qualifier);
}

}  // namespace

TEST(HandleTest, ClosesWhatItHolds) {
    const HANDLE raw = MakeEvent();
    {
        const Handle handle(raw);
        EXPECT_TRUE(handle);
        EXPECT_EQ(handle.Get(), raw);
        EXPECT_TRUE(IsOpen(raw));
    }
    EXPECT_FALSE(IsOpen(raw));
}

TEST(HandleTest, WhatTheSystemGivesForNoneIsNone) {
    EXPECT_FALSE(Handle());
    EXPECT_FALSE(Handle(nullptr));
    EXPECT_FALSE(Handle(INVALID_HANDLE_VALUE));
}

TEST(HandleTest, ResetClosesAtOnce) {
    const HANDLE raw = MakeEvent();
    Handle handle(raw);
    handle.Reset();
    EXPECT_FALSE(handle);
    EXPECT_FALSE(IsOpen(raw));
    handle.Reset();
}

TEST(HandleTest, AMoveTakesTheHandleAlong) {
    const HANDLE raw = MakeEvent();
    Handle first(raw);
    Handle second(std::move(first));
    EXPECT_FALSE(first);  // NOLINT(bugprone-use-after-move): an owner that gave its handle away is empty
    EXPECT_EQ(second.Get(), raw);
    EXPECT_TRUE(IsOpen(raw));
}

TEST(HandleTest, AnAssignmentClosesWhatWasHeld) {
    const HANDLE earlier = MakeEvent();
    const HANDLE later = MakeEvent();
    Handle handle(earlier);
    handle = Handle(later);
    EXPECT_FALSE(IsOpen(earlier));
    EXPECT_TRUE(IsOpen(later));
    Handle& itself = handle;
    handle = std::move(itself);
    EXPECT_EQ(handle.Get(), later);
    EXPECT_TRUE(IsOpen(later));
}

TEST(HandleTest, ADetachedHandleIsTheCallers) {
    Handle handle(MakeEvent());
    const HANDLE raw = handle.Detach();
    EXPECT_FALSE(handle);
    EXPECT_TRUE(IsOpen(raw));
    const Handle again(raw);
}

TEST(RegistryKeyTest, ClosesWhatItHoldsAlsoBeforeTheNextIsWritten) {
    RegistryKey key;
    EXPECT_FALSE(key);
    ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, L"Software", 0, KEY_READ, key.Put()), ERROR_SUCCESS);
    const HKEY first = key.Get();
    EXPECT_TRUE(key);
    EXPECT_TRUE(IsOpen(first));
    HKEY* const place = key.Put();
    EXPECT_FALSE(key);
    EXPECT_FALSE(IsOpen(first));
    ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, L"Software", 0, KEY_READ, place), ERROR_SUCCESS);
    const HKEY second = key.Get();
    key.Reset();
    EXPECT_FALSE(IsOpen(second));
}

TEST(GdiObjectTest, ObjectsAreDeleted) {
    HBITMAP bitmap = nullptr;
    HFONT font = nullptr;
    HRGN region = nullptr;
    {
        const GdiBitmap ownedBitmap(bitmap = CreateBitmap(2, 2, 1, 32, nullptr));
        const suite::GdiFont ownedFont(font = CreateFontW(12, 0, 0, 0, 400, 0, 0, 0, 0, 0, 0, 0, 0, L"Tahoma"));
        const suite::GdiRegion ownedRegion(region = CreateRectRgn(0, 0, 1, 1));
        EXPECT_TRUE(IsAlive(bitmap) && IsAlive(font) && IsAlive(region));
    }
    EXPECT_FALSE(IsAlive(bitmap));
    EXPECT_FALSE(IsAlive(font));
    EXPECT_FALSE(IsAlive(region));
}

TEST(GdiObjectTest, ASelectionEndsBeforeItsObjectIsDeleted) {
    HDC raw = nullptr;
    HBITMAP bitmap = nullptr;
    {
        const MemoryDc dc(raw = CreateCompatibleDC(nullptr));
        const HGDIOBJ before = GetCurrentObject(dc.Get(), OBJ_BITMAP);
        {
            const GdiBitmap owned(bitmap = CreateCompatibleBitmap(dc.Get(), 2, 2));
            const GdiSelection selection(dc.Get(), owned.Get());
            EXPECT_EQ(GetCurrentObject(dc.Get(), OBJ_BITMAP), bitmap);
        }
        EXPECT_EQ(GetCurrentObject(dc.Get(), OBJ_BITMAP), before);
        EXPECT_FALSE(IsAlive(bitmap));
        EXPECT_TRUE(IsAlive(raw));
    }
    EXPECT_FALSE(IsAlive(raw));
}

TEST(GdiObjectTest, TheScreensDeviceContextIsGivenBack) {
    HDC raw = nullptr;
    {
        const suite::WindowDc screen(nullptr);
        ASSERT_TRUE(screen);
        raw = screen.Get();
        EXPECT_GT(GetDeviceCaps(raw, HORZRES), 0);
    }
    // One that was given back cannot be given back again.
    EXPECT_EQ(ReleaseDC(nullptr, raw), 0);
}

TEST(GdiObjectTest, PixelsAreThoseOfTheBitmapTopRowFirst) {
    std::uint32_t* pixels = nullptr;
    const GdiBitmap bitmap = suite::MakePixelBitmap(3, 2, pixels);
    ASSERT_TRUE(bitmap);
    for (std::uint32_t i = 0; i < 6; ++i) {
        pixels[i] = 0xFF102030 + i;
    }
    const MemoryDc dc(CreateCompatibleDC(nullptr));
    const GdiSelection selection(dc.Get(), bitmap.Get());
    EXPECT_EQ(GetPixel(dc.Get(), 0, 0), RGB(0x10, 0x20, 0x30));
    EXPECT_EQ(GetPixel(dc.Get(), 2, 1), RGB(0x10, 0x20, 0x35));
    DIBSECTION section{};
    ASSERT_EQ(GetObjectW(bitmap.Get(), sizeof section, &section), static_cast<int>(sizeof section));
    EXPECT_EQ(section.dsBm.bmWidth, 3);
    EXPECT_EQ(section.dsBm.bmHeight, 2);
    EXPECT_EQ(section.dsBm.bmBitsPixel, 32);
}

TEST(GdiObjectTest, ABitmapThatIsTooLargeIsNone) {
    std::uint32_t unused = 0;
    std::uint32_t* pixels = &unused;
    EXPECT_FALSE(suite::MakePixelBitmap(0x7FFFFFF, 0x7FFFFFF, pixels));
    EXPECT_EQ(pixels, nullptr);
}

TEST(ComReferenceTest, ComReleaseLeavesNothingToReleaseAgain) {
    Counted object;
    Counted* pointer = &object;
    ComRelease(pointer);
    EXPECT_EQ(pointer, nullptr);
    ComRelease(pointer);
    EXPECT_EQ(object.references, 0);
}

TEST(ComReferenceTest, ReleasesWhatItHoldsOnce) {
    Counted first, second;
    {
        ComReference<Counted> reference(&first);
        EXPECT_TRUE(reference);
        EXPECT_EQ(reference.Get(), &first);
        EXPECT_EQ(reference->references, 1);
        *reference.Put() = &second;
        EXPECT_EQ(first.references, 0);
        ComReference<Counted> moved(std::move(reference));
        EXPECT_FALSE(reference);  // NOLINT(bugprone-use-after-move): an owner that gave its reference away is empty
        EXPECT_EQ(second.references, 1);
        EXPECT_EQ(moved.Get(), &second);
    }
    EXPECT_EQ(first.references, 0);
    EXPECT_EQ(second.references, 0);
}

TEST(ComReferenceTest, AnAssignmentReleasesWhatWasHeld) {
    Counted first, second;
    ComReference<Counted> reference(&first);
    reference = ComReference<Counted>(&second);
    EXPECT_EQ(first.references, 0);
    EXPECT_EQ(second.references, 1);
    ComReference<Counted>& itself = reference;
    reference = std::move(itself);
    EXPECT_EQ(second.references, 1);
    EXPECT_EQ(reference.Get(), &second);
}

TEST(ComReferenceTest, ADetachedReferenceIsTheCallers) {
    Counted object;
    {
        ComReference<Counted> reference;
        *reference.PutVoid() = &object;
        EXPECT_EQ(reference.Detach(), &object);
        EXPECT_FALSE(reference);
    }
    EXPECT_EQ(object.references, 1);
}

TEST(ComApartmentTest, TheThreadIsInTheApartmentForTheScope) {
    for (const auto& [kind, type] : {std::pair{ComApartment::Kind::kSingleThreaded, APTTYPE_MAINSTA},
                                     std::pair{ComApartment::Kind::kMultiThreaded, APTTYPE_MTA}}) {
        std::thread([&kind = kind, &type = type] {
            APTTYPE now{};
            {
                const ComApartment apartment(kind);
                EXPECT_EQ(apartment.Result(), S_OK);
                ASSERT_EQ(ApartmentOfThisThread(now), S_OK);
                EXPECT_EQ(now == APTTYPE_STA ? APTTYPE_MAINSTA : now, type);
            }
            EXPECT_EQ(ApartmentOfThisThread(now), CO_E_NOTINITIALIZED);
        }).join();
    }
}

TEST(ComApartmentTest, AThreadThatEnteredBeforeStaysWhereItIs) {
    std::thread([] {
        const ComApartment outer(ComApartment::Kind::kMultiThreaded);
        APTTYPE now{};
        {
            const ComApartment same(ComApartment::Kind::kMultiThreaded);
            EXPECT_EQ(same.Result(), S_FALSE);
        }
        {
            const ComApartment other(ComApartment::Kind::kSingleThreaded);
            EXPECT_EQ(other.Result(), RPC_E_CHANGED_MODE);
        }
        ASSERT_EQ(ApartmentOfThisThread(now), S_OK);
        EXPECT_EQ(now, APTTYPE_MTA);
    }).join();
}

TEST(FolderListingTest, GivesTheEntriesThatMatchWithoutTheFolderItself) {
    const TestFolder folder;
    std::filesystem::create_directory(folder.Path() / L"one.d");
    std::ofstream(folder.Path() / L"two.txt") << "12345";
    std::ofstream(folder.Path() / L"three.jpg") << "x";
    std::ofstream(folder.Path() / L"..four") << "x";
    const std::wstring path = folder.Path().wstring();
    EXPECT_EQ(Names(path + L"\\*"), (std::vector<std::wstring>{L"..four", L"one.d", L"three.jpg", L"two.txt"}));
    EXPECT_EQ(Names(path + L"\\*.jpg"), (std::vector<std::wstring>{L"three.jpg"}));
    const FolderListing file(path + L"\\two.txt");
    ASSERT_TRUE(file);
    EXPECT_FALSE(file.IsFolder());
    EXPECT_EQ(file.Entry().nFileSizeLow, 5u);
    EXPECT_TRUE(FolderListing(path + L"\\one.d").IsFolder());
}

TEST(FolderListingTest, TellsAnEmptyFolderFromOneThatCannotBeLookedAt) {
    const TestFolder folder;
    const std::wstring path = folder.Path().wstring();
    FolderListing empty(path + L"\\*");
    EXPECT_FALSE(empty);
    EXPECT_TRUE(empty.IsComplete());
    EXPECT_TRUE(FolderListing(path + L"\\*.none").IsComplete());
    const FolderListing missing(path + L"\\none\\*");
    EXPECT_FALSE(missing);
    EXPECT_FALSE(missing.IsComplete());
    std::ofstream(folder.Path() / L"a.txt") << "x";
    FolderListing walk(path + L"\\*");
    ASSERT_TRUE(walk);
    walk.Next();
    EXPECT_FALSE(walk);
    EXPECT_TRUE(walk.IsComplete());
}

TEST(FolderListingTest, KeepsNothingOpen) {
    const TestFolder folder;
    // More than the system reads at once: it may let go of a folder that it has read to the end.
    constexpr int kFiles = 250;
    for (int i = 0; i < kFiles; ++i) {
        std::ofstream(folder.Path() / (std::wstring(200, L'n') + std::to_wstring(i)));
    }
    const std::wstring pattern = folder.Path().wstring() + L"\\*";
    EXPECT_EQ(Names(pattern).size(), static_cast<std::size_t>(kFiles));
    const DWORD before = OpenHandles();
    for (int round = 0; round < 50; ++round) {
        const FolderListing leftInTheMiddle(pattern);
        EXPECT_TRUE(leftInTheMiddle);
    }
    EXPECT_LT(OpenHandles(), before + 50);
}
