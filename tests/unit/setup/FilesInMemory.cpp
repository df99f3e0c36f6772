#include "tests/unit/setup/FilesInMemory.h"

#include <algorithm>

namespace setup {
namespace {

std::wstring Lower(std::wstring text) {
    for (wchar_t& c : text) {
        c = c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c + (L'a' - L'A')) : c;
    }
    return text;
}

std::wstring Parent(const std::wstring& path) {
    return path.substr(0, path.rfind(L'\\'));
}

bool IsBelow(const std::wstring& path, const std::wstring& folder) {
    return path.size() > folder.size() && path.rfind(folder + L"\\", 0) == 0;
}

}  // namespace

void FilesInMemory::Put(const std::wstring& path, const std::wstring& content) {
    const std::wstring key = Lower(path);
    for (std::size_t end = key.find(L'\\'); end != std::wstring::npos; end = key.find(L'\\', end + 1)) {
        folders_.insert(key.substr(0, end));
    }
    files_[key] = content;
}

Error FilesInMemory::Change() {
    if (changes_ == stopAfter_) {
        throw Stopped();
    }
    return changes_++ == failAfter_ ? failure_ : 0;
}

bool FilesInMemory::Exists(const std::wstring& path) {
    return files_.count(Lower(path)) + folders_.count(Lower(path)) > 0;
}

std::vector<std::wstring> FilesInMemory::Files(const std::wstring& folder) {
    std::vector<std::wstring> names;
    for (const auto& [path, content] : files_) {
        if (Parent(path) == Lower(folder)) {
            // The program's name as it is written everywhere, because it is looked for.
            const std::wstring name = path.substr(folder.size() + 1);
            names.push_back(name == L"pixora.exe" ? L"Pixora.exe" : name);
        }
    }
    return names;
}

std::vector<std::wstring> FilesInMemory::Folders(const std::wstring& folder) {
    std::vector<std::wstring> names;
    for (const std::wstring& path : folders_) {
        if (path.find(L'\\') != std::wstring::npos && Parent(path) == Lower(folder)) {
            names.push_back(path.substr(folder.size() + 1));
        }
    }
    return names;
}

Error FilesInMemory::ReadLines(const std::wstring& path, std::vector<std::wstring>& lines) {
    const auto file = files_.find(Lower(path));
    if (file == files_.end()) {
        return kNotFound;
    }
    const std::wstring& text = file->second;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find(L'\n', start), text.size());
        lines.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return 0;
}

Error FilesInMemory::TestUnused(const std::wstring& path) {
    return inUse_.count(Lower(path)) > 0 ? 32 : 0;
}

Error FilesInMemory::Flush(const std::wstring& path) {
    flushed_.insert(Lower(path));
    return files_.count(Lower(path)) > 0 ? 0 : kNotFound;
}

Error FilesInMemory::Move(const std::wstring& from, const std::wstring& to) {
    if (const Error error = Change(); error != 0) {
        return error;
    }
    const std::wstring source = Lower(from), target = Lower(to);
    if (inUse_.count(source) > 0) {
        return 32;
    }
    if (!Exists(from)) {
        return kNotFound;
    }
    if (Exists(to)) {
        return kExists;
    }
    if (folders_.count(Parent(target)) == 0) {
        return kPathNotFound;
    }
    if (auto file = files_.extract(source)) {
        file.key() = target;
        files_.insert(std::move(file));
        return 0;
    }
    MoveFolder(source, target);
    return 0;
}

void FilesInMemory::MoveFolder(const std::wstring& source, const std::wstring& target) {
    const auto moved = [&](const std::wstring& path) {
        return path == source || IsBelow(path, source) ? target + path.substr(source.size()) : path;
    };
    decltype(files_) files;
    for (const auto& [path, content] : files_) {
        files[moved(path)] = content;
    }
    decltype(folders_) folders;
    for (const std::wstring& path : folders_) {
        folders.insert(moved(path));
    }
    files_.swap(files);
    folders_.swap(folders);
}

Error FilesInMemory::Remove(const std::wstring& path) {
    if (const Error error = Change(); error != 0) {
        return error;
    }
    return files_.erase(Lower(path)) > 0 ? 0 : kNotFound;
}

Error FilesInMemory::MakeFolder(const std::wstring& path) {
    if (const Error error = Change(); error != 0) {
        return error;
    }
    if (files_.count(Lower(path)) > 0) {
        return kExists;
    }
    if (folders_.count(Parent(Lower(path))) == 0) {
        return kPathNotFound;
    }
    folders_.insert(Lower(path));
    return 0;
}

Error FilesInMemory::RemoveFolder(const std::wstring& path) {
    if (const Error error = Change(); error != 0) {
        return error;
    }
    const std::wstring folder = Lower(path);
    const bool hasFiles =
        std::any_of(files_.begin(), files_.end(), [&](const auto& file) { return IsBelow(file.first, folder); });
    const bool hasFolders =
        std::any_of(folders_.begin(), folders_.end(), [&](const auto& other) { return IsBelow(other, folder); });
    if (!hasFiles && !hasFolders) {
        folders_.erase(folder);
    }
    return 0;
}

}  // namespace setup
