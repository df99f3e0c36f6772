#include "service/BackgroundPicture.h"

#include <windows.h>

#include "preview/BitmapFile.h"
#include "service/CustomItemNames.h"
#include "service/JpegPicture.h"
#include "service/VideoCover.h"
#include "suite/common/Handle.h"
#include "suite/logger/QxLogger.h"

namespace BackgroundPicture {

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

// Nothing of a picture that lies in the system's memory only is taken for stored.
bool MoveIntoPlace(const std::wstring& unfinished, const std::wstring& target) {
    {
        const suite::Handle file(
            CreateFileW(unfinished.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
        if (!file || !FlushFileBuffers(file.Get())) {
            return false;
        }
    }
    return MoveFileExW(unfinished.c_str(), target.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != FALSE;
}

bool CanWrite(const std::wstring& path) {
    return bool{suite::Handle(
        CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr))};
}

bool Exists(const std::wstring& path) {
    return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

bool WriteImage(const std::wstring& source, const std::wstring& target) {
    DeleteFileW(target.c_str());  // what an earlier try left may be longer
    const HRESULT result = SaveAsJpeg(source, target);
    if (FAILED(result)) {
        LogLine(3, kFunction, L"The file cannot be made a picture: ", result);
    }
    return SUCCEEDED(result);
}

bool WriteCover(const std::wstring& video, const std::wstring& target) {
    const HBITMAP cover = LoadVideoCover(video);
    if (!cover) {
        LogLine(3, kFunction, L"The video has no cover");
        return false;
    }
    const bool written = SaveBitmapToFile(cover, target);
    DeleteObject(cover);
    return written;
}

}  // namespace

Result Make(const std::wstring& source, bool isVideo, const std::wstring& target) {
    const std::wstring unfinished = target + kUnfinishedSuffix;
    if (!CanWrite(unfinished)) {
        LogLine(4, kFunction, L"The folder cannot be written: ", GetLastError());
        return Result::kNotWritten;
    }
    const std::wstring ownFallback = BesideTheProgram(kFallbackOfProgram);
    const bool written = (isVideo ? WriteCover(source, unfinished) : WriteImage(source, unfinished)) ||
                         WriteImage(kFallbackOfSuite, unfinished) || WriteImage(ownFallback, unfinished);
    if (written && MoveIntoPlace(unfinished, target)) {
        return Result::kMade;
    }
    const DWORD error = GetLastError();
    DeleteFileW(unfinished.c_str());
    if (!written && !Exists(kFallbackOfSuite) && !Exists(ownFallback)) {
        LogLine(4, kFunction, L"There is no picture to show");
        return Result::kNothingToShow;
    }
    LogLine(4, kFunction, L"The picture cannot be stored: ", error);
    return Result::kNotWritten;
}

void RemoveUnfinished(const std::wstring& folder) {
    WIN32_FIND_DATAW found = {};
    const std::wstring pattern = folder + L"\\" + std::wstring(CustomItemNames::kPrefix) + L"*" + kUnfinishedSuffix;
    const HANDLE search = FindFirstFileW(pattern.c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) {
        return;
    }
    do {
        DeleteFileW((folder + L"\\" + found.cFileName).c_str());
    } while (FindNextFileW(search, &found));
    FindClose(search);
}

}  // namespace BackgroundPicture
