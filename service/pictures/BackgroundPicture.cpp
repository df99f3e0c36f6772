#include "service/pictures/BackgroundPicture.h"

#include <windows.h>

#include <cstdint>
#include <vector>

#include "preview/BitmapFile.h"
#include "service/pictures/CustomItemNames.h"
#include "service/pictures/JpegPicture.h"
#include "service/pictures/VideoCover.h"
#include "suite/common/FolderListing.h"
#include "suite/common/GdiObject.h"
#include "suite/common/Handle.h"
#include "suite/common/HeldFolder.h"
#include "suite/common/Patience.h"
#include "suite/logger/QxLogger.h"

namespace pictures::BackgroundPicture {

namespace {

constexpr wchar_t kFunction[] = L"BackgroundPicture::Make";
constexpr wchar_t kUnfinishedSuffix[] = L".part";
constexpr wchar_t kFallbackOfSuite[] =
    L"C:\\Program Files\\Velmora\\Quillon\\res\\drawable\\LumiCamera\\defaultImg.png";
constexpr wchar_t kFallbackOfProgram[] = L"res\\drawable\\LumiCamera\\defaultImg.png";

std::wstring BesideTheProgram(const wchar_t* name) {
    wchar_t path[MAX_PATH] = {};
    const DWORD length = GetModuleFileNameW(nullptr, path, MAX_PATH);
    const std::wstring program(path, length);
    return program.substr(0, program.rfind(L'\\') + 1) + name;
}

// A picture that was copied here from elsewhere may be write-protected; its number could never be used again.
void AllowChanges(const std::wstring& picture) {
    const DWORD attributes = GetFileAttributesW(picture.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0) {
        SetFileAttributesW(picture.c_str(), attributes & ~FILE_ATTRIBUTE_READONLY);
    }
}

// Nothing of a picture that lies in the system's memory only is taken for stored. A link is not exchanged.
bool MoveIntoPlace(const std::wstring& unfinished, const std::wstring& target) {
    if (suite::IsLink(unfinished) || suite::IsLink(target)) {
        SetLastError(ERROR_CANT_ACCESS_FILE);
        return false;
    }
    AllowChanges(target);
    return suite::TryWhileHeld([&] {
        return MoveFileExW(unfinished.c_str(), target.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) !=
               FALSE;
    });
}

void DeleteUnlessLink(const std::wstring& path) {
    if (suite::IsLink(path) || suite::TryWhileHeld([&] { return DeleteFileW(path.c_str()) != FALSE; })) {
        return;
    }
    if (const DWORD error = GetLastError(); error != ERROR_FILE_NOT_FOUND) {
        LogLine(LogLevel::kInfo, L"BackgroundPicture::Remove", L"A picture stays, error code: ", error);
    }
}

// Whoever looks at the file meanwhile keeps nobody from deleting or exchanging it.
bool WriteBytes(const std::wstring& path, const std::vector<std::uint8_t>& bytes) {
    suite::Handle file;
    DWORD written = 0;
    return suite::TryWhileHeld([&] {
               file = suite::Handle(CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_DELETE,
                                                nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
               return static_cast<bool>(file);
           }) &&
           WriteFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) &&
           written == bytes.size() && FlushFileBuffers(file.Get());
}

Result WriteImage(const std::wstring& source, const std::wstring& path) {
    std::vector<std::uint8_t> bytes;
    if (const HRESULT result = EncodeAsJpeg(source, bytes); FAILED(result)) {
        LogLine(LogLevel::kInfo, kFunction, L"The file cannot be made a picture: ", result);
        return Result::kNothingToShow;
    }
    return WriteBytes(path, bytes) ? Result::kMade : Result::kNotWritten;
}

Result WriteCover(const std::wstring& video, const std::wstring& path) {
    const suite::GdiBitmap cover = LoadVideoCover(video);
    if (!cover) {
        LogLine(LogLevel::kInfo, kFunction, L"The video has no cover");
        return Result::kNothingToShow;
    }
    return suite::TryWhileHeld([&] { return SaveBitmapToFile(cover.Get(), path); }) ? Result::kMade
                                                                                    : Result::kNotWritten;
}

// The source, or else what stands for one that cannot be read.
Result WriteAny(const std::wstring& source, bool isVideo, const std::wstring& path, StandIn standIn) {
    Result result = isVideo ? WriteCover(source, path) : WriteImage(source, path);
    if (standIn == StandIn::kNone) {
        return result;
    }
    if (result == Result::kNothingToShow) {
        result = WriteImage(kFallbackOfSuite, path);
    }
    if (result == Result::kNothingToShow) {
        result = WriteImage(BesideTheProgram(kFallbackOfProgram), path);
    }
    return result;
}

void GiveUp(const std::wstring& unfinished, bool isFailure) {
    const DWORD error = GetLastError();
    LogLine(isFailure ? LogLevel::kError : LogLevel::kInfo, kFunction, L"No picture is stored: ", error);
    DeleteUnlessLink(unfinished);
}

}  // namespace

std::wstring UnfinishedName(const std::wstring& target, int number) {
    return target + (number == 0 ? L"" : L"." + std::to_wstring(number)) + kUnfinishedSuffix;
}

Result Prepare(const std::wstring& source, bool isVideo, const std::wstring& unfinished, StandIn standIn) {
    if (suite::IsLink(unfinished)) {
        LogLine(LogLevel::kError, kFunction, L"No picture is written through a link");
        return Result::kNotWritten;
    }
    const Result result = WriteAny(source, isVideo, unfinished, standIn);
    if (result != Result::kMade) {
        // Without one that stands for it, a source that cannot be loaded is no failure.
        GiveUp(unfinished, standIn == StandIn::kWritten || result == Result::kNotWritten);
    }
    return result;
}

Result Finish(const std::wstring& unfinished, const std::wstring& target) {
    if (MoveIntoPlace(unfinished, target)) {
        return Result::kMade;
    }
    GiveUp(unfinished, true);
    return Result::kNotWritten;
}

void Discard(const std::wstring& unfinished) {
    DeleteUnlessLink(unfinished);
}

Result Make(const std::wstring& source, bool isVideo, const std::wstring& target, StandIn standIn) {
    const std::wstring unfinished = UnfinishedName(target);
    const Result result = Prepare(source, isVideo, unfinished, standIn);
    return result == Result::kMade ? Finish(unfinished, target) : result;
}

void Remove(const std::wstring& picture) {
    if (!suite::IsLink(picture)) {
        AllowChanges(picture);
        DeleteUnlessLink(picture);
    }
}

void RemoveUnfinished(const std::wstring& folder) {
    const std::wstring pattern = folder + L"\\" + std::wstring(CustomItemNames::kPrefix) + L"*" + kUnfinishedSuffix;
    for (suite::FolderListing entry(pattern); entry; entry.Next()) {
        DeleteUnlessLink(folder + L"\\" + entry.Name());
    }
}

}  // namespace pictures::BackgroundPicture
