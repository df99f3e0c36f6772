#include "service/FileLook.h"

#include <windows.h>

#include <array>
#include <atomic>
#include <memory>
#include <utility>

#include "service/CustomImageGroup.h"
#include "service/FileUtil.h"
#include "service/pictures/PaintingWait.h"

namespace service {

namespace {

constexpr DWORD kPathSize = 260;

bool CanBeListed(const std::wstring& path) {
    return path.find(CustomImageGroup::kItemSeparator) == std::wstring::npos &&
           path.find(CustomImageGroup::kFieldSeparator) == std::wstring::npos;
}

}  // namespace

FileLook LookAtOwnFile(const std::wstring& path) {
    const FileUtil& files = FileUtil::GetInstance();
    if (files.FileExists(path)) {
        return FileLook::kThere;
    }
    return files.IsGone(path) ? FileLook::kGone : FileLook::kUnknown;
}

std::vector<FileLook> LookAtFiles(std::vector<std::wstring> paths) {
    // Shared with the thread, which may go on alone.
    struct Looks {
        explicit Looks(std::vector<std::wstring> files) : paths(std::move(files)), found(paths.size()) {}
        std::vector<std::wstring> paths;
        std::vector<std::atomic<FileLook>> found;
    };
    const auto looks = std::make_shared<Looks>(std::move(paths));
    for (std::atomic<FileLook>& each : looks->found) {
        each = FileLook::kUnknown;
    }
    pictures::RunWhilePainting(
        [looks] {
            for (std::size_t i = 0; i < looks->paths.size(); ++i) {
                looks->found[i] = LookAtOwnFile(looks->paths[i]);
            }
            return true;
        },
        kLookPatience);
    return {looks->found.begin(), looks->found.end()};
}

std::wstring ListedPath(const std::wstring& path) {
    if (CanBeListed(path)) {
        return path;
    }
    const auto found = std::make_shared<std::wstring>();
    const bool answered = pictures::RunWhilePainting(
        [path, found] {
            std::array<wchar_t, kPathSize> shortPath{};
            const DWORD length = GetShortPathNameW(path.c_str(), shortPath.data(), kPathSize);
            found->assign(shortPath.data(), length < kPathSize ? length : 0);
            return true;
        },
        kLookPatience);
    return answered && CanBeListed(*found) ? *found : std::wstring();
}

}  // namespace service
