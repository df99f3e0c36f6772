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

// Nothing of a picture that lies in the system's memory only is taken for stored.
bool MoveIntoPlace(const std::wstring& unfinished, const std::wstring& target) {
    {
        const suite::Handle file(
            CreateFileW(unfinished.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
        if (!file || !FlushFileBuffers(file.Get())) {
            return false;
        }
    }
    AllowChanges(target);
    return MoveFileExW(unfinished.c_str(), target.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != FALSE;
}

bool WriteBytes(const std::wstring& path, const std::vector<std::uint8_t>& bytes) {
    const suite::Handle file(
        CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    DWORD written = 0;
    return file && WriteFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) &&
           written == bytes.size();
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
    return SaveBitmapToFile(cover.Get(), path) ? Result::kMade : Result::kNotWritten;
}

// The source, or else what stands for one that cannot be read.
Result WriteAny(const std::wstring& source, bool isVideo, const std::wstring& path) {
    Result result = isVideo ? WriteCover(source, path) : WriteImage(source, path);
    if (result == Result::kNothingToShow) {
        result = WriteImage(kFallbackOfSuite, path);
    }
    if (result == Result::kNothingToShow) {
        result = WriteImage(BesideTheProgram(kFallbackOfProgram), path);
    }
    return result;
}

}  // namespace

Result Make(const std::wstring& source, bool isVideo, const std::wstring& target) {
    const std::wstring unfinished = target + kUnfinishedSuffix;
    Result result = WriteAny(source, isVideo, unfinished);
    if (result == Result::kMade && !MoveIntoPlace(unfinished, target)) {
        result = Result::kNotWritten;
    }
    if (result != Result::kMade) {
        const DWORD error = GetLastError();
        LogLine(LogLevel::kError, kFunction, L"No picture is stored: ", error);
        DeleteFileW(unfinished.c_str());
    }
    return result;
}

void Remove(const std::wstring& picture) {
    AllowChanges(picture);
    DeleteFileW(picture.c_str());
}

void RemoveUnfinished(const std::wstring& folder) {
    const std::wstring pattern = folder + L"\\" + std::wstring(CustomItemNames::kPrefix) + L"*" + kUnfinishedSuffix;
    for (suite::FolderListing entry(pattern); entry; entry.Next()) {
        DeleteFileW((folder + L"\\" + entry.Name()).c_str());
    }
}

}  // namespace pictures::BackgroundPicture
