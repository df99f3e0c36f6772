#include "setup/Exchange.h"

#include <algorithm>
#include <utility>

#include "setup/FileNames.h"

namespace setup {
namespace {

// Numbers of the system.
constexpr Error kInvalidData = 13;
constexpr Error kSharingViolation = 32;
constexpr Error kLockViolation = 33;
constexpr Error kMapped = 1224;

Outcome OutcomeOf(Error error, const std::wstring& path) {
    if (error == 0) {
        return {};
    }
    const bool inUse = error == kSharingViolation || error == kLockViolation || error == kMapped;
    return {inUse ? Result::kInUse : Result::kFailed, path, error};
}

bool Failed(const Outcome& outcome) {
    return outcome.result != Result::kDone;
}

}  // namespace

Exchange::Exchange(FileSystem& files, std::wstring programFolder)
    : files_(files),
      program_(std::move(programFolder)),
      work_(program_ + L"\\Pixora.setup"),
      list_(work_ + L"\\files.txt"),
      listInUse_(work_ + L"\\moving-in.txt"),
      unpacked_(work_ + L"\\new"),
      kept_(work_ + L"\\old"),
      gone_(work_ + L"\\gone") {}

Outcome Exchange::Recover() {
    const Outcome outcome = PutBack();
    return Failed(outcome) ? outcome : Clean();
}

Outcome Exchange::Install() {
    std::vector<std::wstring> names;
    if (const Error error = files_.ReadLines(list_, names); error != 0) {
        return OutcomeOf(error, list_);
    }
    names = ProgramLast(std::move(names));
    if (!std::all_of(names.begin(), names.end(), IsFileName) || names.empty() || names.back() != kProgram) {
        return OutcomeOf(kInvalidData, list_);
    }
    Outcome outcome = FlushUnpacked(names);
    if (Failed(outcome)) {
        return outcome;
    }
    // The program itself stays the last one.
    std::vector<std::wstring> replaced = InstalledNames();
    replaced.insert(replaced.end(), names.begin(), names.end());
    outcome = TestUnused(replaced);
    if (Failed(outcome)) {
        return outcome;
    }
    outcome = MoveAway(replaced);
    if (!Failed(outcome)) {
        outcome = MoveIn(names);
    }
    if (!Failed(outcome)) {
        outcome = RemoveEmptyFolders(replaced);
    }
    return Finish(std::move(outcome));
}

Outcome Exchange::Remove() {
    std::vector<std::wstring> names = ProgramLast(InstalledNames());
    std::erase(names, kUninstaller);
    Outcome outcome = TestUnused(names);
    if (Failed(outcome)) {
        return outcome;
    }
    outcome = MoveAway(names);
    if (!Failed(outcome)) {
        outcome = RemoveEmptyFolders(names);
    }
    return Finish(std::move(outcome));
}

Outcome Exchange::Clean() {
    for (const std::wstring& folder : {gone_, unpacked_}) {
        Outcome outcome = RemoveTree(folder);
        if (Failed(outcome)) {
            return outcome;
        }
    }
    for (const std::wstring& list : {list_, listInUse_}) {
        if (const Error error = files_.Exists(list) ? files_.Remove(list) : 0; error != 0) {
            return OutcomeOf(error, list);
        }
    }
    return {};
}

// A version that left no list is known by the files that it shares with the new one.
std::vector<std::wstring> Exchange::InstalledNames() {
    std::vector<std::wstring> names;
    const std::wstring list = InProgram(kInstalledList);
    if (!files_.Exists(list) || files_.ReadLines(list, names) != 0) {
        return {};
    }
    std::erase_if(names, [](const std::wstring& name) { return !IsFileName(name); });
    return names;
}

// Moving a file is safe on the disk by itself, its content is not.
Outcome Exchange::FlushUnpacked(const std::vector<std::wstring>& names) {
    for (const std::wstring& name : names) {
        const std::wstring path = unpacked_ + L"\\" + name;
        if (const Error error = files_.Flush(path); error != 0) {
            return OutcomeOf(error, path);
        }
    }
    return OutcomeOf(files_.Flush(list_), list_);
}

Outcome Exchange::TestUnused(const std::vector<std::wstring>& names) {
    for (const std::wstring& name : names) {
        const std::wstring path = InProgram(name);
        if (!files_.Exists(path)) {
            continue;
        }
        if (const Error error = files_.TestUnused(path); error != 0) {
            return OutcomeOf(error, path);
        }
    }
    return {};
}

Outcome Exchange::MoveAway(const std::vector<std::wstring>& names) {
    if (const Error error = files_.MakeFolder(work_); error != 0) {
        return OutcomeOf(error, work_);
    }
    if (const Error error = files_.MakeFolder(kept_); error != 0) {
        return OutcomeOf(error, kept_);
    }
    for (auto name = names.rbegin(); name != names.rend(); ++name) {
        if (!files_.Exists(InProgram(*name))) {
            continue;
        }
        Outcome outcome = Move(program_, kept_, *name);
        if (Failed(outcome)) {
            return outcome;
        }
    }
    return {};
}

Outcome Exchange::MoveIn(const std::vector<std::wstring>& names) {
    if (const Error error = files_.Move(list_, listInUse_); error != 0) {
        return OutcomeOf(error, list_);
    }
    for (const std::wstring& name : names) {
        Outcome outcome = Move(unpacked_, program_, name);
        if (Failed(outcome)) {
            return outcome;
        }
    }
    return {};
}

Outcome Exchange::RemoveEmptyFolders(const std::vector<std::wstring>& names) {
    for (const std::wstring& folder : FoldersOf(names)) {
        if (const Error error = files_.RemoveFolder(InProgram(folder)); error != 0) {
            return OutcomeOf(error, InProgram(folder));
        }
    }
    return {};
}

// The last step of an exchange, or the way back.
Outcome Exchange::Finish(Outcome outcome) {
    if (!Failed(outcome)) {
        outcome = OutcomeOf(files_.Move(kept_, gone_), kept_);
    }
    if (Failed(outcome)) {
        const Outcome back = PutBack();
        if (Failed(back)) {
            return {Result::kFailed, back.path, back.error};
        }
    }
    return outcome;
}

// May be stopped anywhere and begun again.
Outcome Exchange::PutBack() {
    if (!files_.Exists(kept_)) {
        return {};
    }
    Outcome outcome = MoveOut();
    if (Failed(outcome)) {
        return outcome;
    }
    for (const std::wstring& name : ProgramLast(NamesBelow(kept_, L""))) {
        // Somebody's try to repair what the stopped run left.
        if (files_.Exists(InProgram(name))) {
            if (const Error error = files_.Remove(InProgram(name)); error != 0) {
                return OutcomeOf(error, InProgram(name));
            }
        }
        outcome = Move(kept_, program_, name);
        if (Failed(outcome)) {
            return outcome;
        }
    }
    return RemoveTree(kept_);
}

// The new files go back to where they were unpacked. As long as they do, the list has its other name, and what lies in
// the program's folder is new.
Outcome Exchange::MoveOut() {
    if (!files_.Exists(listInUse_)) {
        return {};
    }
    std::vector<std::wstring> names;
    if (const Error error = files_.ReadLines(listInUse_, names); error != 0) {
        return OutcomeOf(error, listInUse_);
    }
    if (const Error error = files_.MakeFolder(unpacked_); error != 0) {
        return OutcomeOf(error, unpacked_);
    }
    names = ProgramLast(std::move(names));
    for (auto name = names.rbegin(); name != names.rend(); ++name) {
        if (files_.Exists(unpacked_ + L"\\" + *name) || !files_.Exists(InProgram(*name))) {
            continue;
        }
        Outcome outcome = Move(program_, unpacked_, *name);
        if (Failed(outcome)) {
            return outcome;
        }
    }
    // A folder too many does no harm.
    static_cast<void>(RemoveEmptyFolders(names));
    return OutcomeOf(files_.Move(listInUse_, list_), listInUse_);
}

Outcome Exchange::Move(const std::wstring& from, const std::wstring& to, const std::wstring& name) {
    for (std::size_t end = name.find(L'\\'); end != std::wstring::npos; end = name.find(L'\\', end + 1)) {
        const std::wstring folder = to + L"\\" + name.substr(0, end);
        if (const Error error = files_.MakeFolder(folder); error != 0) {
            return OutcomeOf(error, folder);
        }
    }
    const std::wstring path = from + L"\\" + name;
    return OutcomeOf(files_.Move(path, to + L"\\" + name), path);
}

Outcome Exchange::RemoveTree(const std::wstring& folder) {
    if (!files_.Exists(folder)) {
        return {};
    }
    for (const std::wstring& name : files_.Files(folder)) {
        const std::wstring path = folder + L"\\" + name;
        if (const Error error = files_.Remove(path); error != 0) {
            return OutcomeOf(error, path);
        }
    }
    for (const std::wstring& name : files_.Folders(folder)) {
        Outcome outcome = RemoveTree(folder + L"\\" + name);
        if (Failed(outcome)) {
            return outcome;
        }
    }
    return OutcomeOf(files_.RemoveFolder(folder), folder);
}

std::vector<std::wstring> Exchange::NamesBelow(const std::wstring& folder, const std::wstring& prefix) {
    std::vector<std::wstring> names;
    for (const std::wstring& name : files_.Files(folder)) {
        names.push_back(prefix + name);
    }
    for (const std::wstring& name : files_.Folders(folder)) {
        const std::vector<std::wstring> below = NamesBelow(folder + L"\\" + name, prefix + name + L"\\");
        names.insert(names.end(), below.begin(), below.end());
    }
    return names;
}

}  // namespace setup
