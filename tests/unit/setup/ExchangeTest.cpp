// Each change of an exchange is once the last one before the machine stops, and once the one that fails.
#include "setup/Exchange.h"

#include <gmock/gmock.h>

#include "tests/unit/setup/FilesInMemory.h"

namespace setup {
namespace {

using testing::AnyOf;
using testing::Contains;
using testing::Eq;

using Tree = std::map<std::wstring, std::wstring>;

const std::wstring kFolder = L"c:\\quillon";
const std::wstring kWork = kFolder + L"\\pixora.setup";
constexpr Error kDiskFull = 112;

const Tree kForeign = {{L"neighbour.exe", L"foreign"}, {L"res\\foreign.txt", L"foreign"}};
const Tree kOld = {{L"pixora.exe", L"old"},
                   {L"duilib.dll", L"old"},
                   {L"pixorafiles.txt", L"Pixora.exe\nDuiLib.dll\nPixoraFiles.txt\nres\\a.png\ngone\\deep\\b.png\n"},
                   {L"res\\a.png", L"old"},
                   {L"gone\\deep\\b.png", L"old"}};
const Tree kNew = {{L"pixora.exe", L"new"},
                   {L"duilib.dll", L"new"},
                   {L"pixorafiles.txt", L"DuiLib.dll\nres\\a.png\nPixora.exe\nPixoraFiles.txt\nmore\\deep\\c.png"},
                   {L"res\\a.png", L"new"},
                   {L"more\\deep\\c.png", L"new"}};

Tree With(Tree tree, const Tree& other) {
    tree.insert(other.begin(), other.end());
    return tree;
}

void PutTree(FilesInMemory& files, const std::wstring& folder, const Tree& tree) {
    for (const auto& [name, content] : tree) {
        files.Put(folder + L"\\" + name, content);
    }
}

// As the installer leaves it when it has unpacked.
void Unpack(FilesInMemory& files) {
    PutTree(files, kWork + L"\\new", kNew);
    files.Put(kWork + L"\\files.txt", kNew.at(L"pixorafiles.txt"));
}

FilesInMemory Machine(const Tree& installed) {
    FilesInMemory files;
    PutTree(files, kFolder, kForeign);
    PutTree(files, kFolder, installed);
    return files;
}

// What lies in the program's folder, without the work folder.
Tree Installed(FilesInMemory& files) {
    Tree tree;
    for (const auto& [path, content] : files.Contents()) {
        if (path.rfind(kWork, 0) != 0) {
            tree[path.substr(kFolder.size() + 1)] = content;
        }
    }
    return tree;
}

// No folder that no file needs.
void ExpectNoEmptyFolders(FilesInMemory& files) {
    for (const std::wstring& folder : files.FolderNames()) {
        const bool used = std::any_of(files.Contents().begin(), files.Contents().end(),
                                      [&](const auto& file) { return file.first.rfind(folder + L"\\", 0) == 0; });
        EXPECT_TRUE(used || folder == kWork) << std::string(folder.begin(), folder.end());
    }
}

// What starts is a whole version: either the program's file is missing or everything fits it.
void ExpectNoMixture(FilesInMemory& files, const Tree& before, const Tree& after) {
    const Tree installed = Installed(files);
    if (installed.count(L"pixora.exe") > 0) {
        Tree withoutEmpty = installed;
        EXPECT_THAT(withoutEmpty, AnyOf(Eq(before), Eq(after)));
    }
}

using Step = Outcome (Exchange::*)();

bool RunUntilStopped(FilesInMemory& files, Step step, int stopAfter) {
    files.ForgetChanges();
    files.StopAfter(stopAfter);
    bool stopped = false;
    try {
        const Outcome outcome = (Exchange(files, kFolder).*step)();
        EXPECT_EQ(outcome.result, Result::kDone) << outcome.error;
    } catch (const Stopped&) {
        stopped = true;
    }
    files.StopAfter(FilesInMemory::kNever);
    return stopped;
}

void ExpectRecoverWorks(FilesInMemory& files, const Tree& before, const Tree& after) {
    EXPECT_FALSE(RunUntilStopped(files, &Exchange::Recover, FilesInMemory::kNever));
    EXPECT_THAT(Installed(files), AnyOf(Eq(before), Eq(after)));
    EXPECT_FALSE(files.Exists(kWork + L"\\old"));
    EXPECT_FALSE(files.Exists(kWork + L"\\gone"));
    EXPECT_FALSE(files.Exists(kWork + L"\\new"));
    EXPECT_FALSE(files.Exists(kWork + L"\\files.txt"));
    EXPECT_FALSE(files.Exists(kWork + L"\\moving-in.txt"));
    ExpectNoEmptyFolders(files);
}

// Stops `step` at each of its changes, and the repair after it at each of its own; another repair then succeeds.
void StopEverywhere(const FilesInMemory& start, Step step, const Tree& before, const Tree& after) {
    for (int stop = 0;; ++stop) {
        SCOPED_TRACE(stop);
        FilesInMemory files = start;
        if (!RunUntilStopped(files, step, stop)) {
            EXPECT_GT(stop, 10);
            EXPECT_EQ(Installed(files), after);
            return;
        }
        ExpectNoMixture(files, before, after);
        for (int again = 0;; ++again) {
            SCOPED_TRACE(again);
            FilesInMemory second = files;
            const bool stopped = RunUntilStopped(second, &Exchange::Recover, again);
            ExpectNoMixture(second, before, after);
            ExpectRecoverWorks(second, before, after);
            if (!stopped) {
                break;
            }
        }
    }
}

// Each change fails once with each of two reasons: then everything is as before, or the step says that it is not.
void FailEverywhere(const FilesInMemory& start, Step step, const Tree& before, const Tree& after) {
    for (const auto& [error, result] : {std::pair{kDiskFull, Result::kFailed}, std::pair{Error{32}, Result::kInUse}}) {
        for (int fail = 0;; ++fail) {
            SCOPED_TRACE(fail);
            FilesInMemory files = start;
            files.FailAfter(fail, error);
            const Outcome outcome = (Exchange(files, kFolder).*step)();
            if (files.Changes() <= fail) {
                EXPECT_EQ(outcome.result, Result::kDone);
                EXPECT_EQ(Installed(files), after);
                break;
            }
            EXPECT_EQ(outcome.result, result);
            EXPECT_EQ(outcome.error, error);
            EXPECT_EQ(outcome.path.rfind(kFolder, 0), 0u);
            EXPECT_EQ(Installed(files), before);
            EXPECT_FALSE(files.Exists(kWork + L"\\old"));
            // The reason is gone: the same unpacked files can be tried again.
            files.FailAfter(FilesInMemory::kNever, 0);
            EXPECT_EQ((Exchange(files, kFolder).*step)().result, Result::kDone);
            EXPECT_EQ(Installed(files), after);
        }
    }
}

TEST(Exchange, TheNewVersionTakesTheOldOnesPlace) {
    FilesInMemory files = Machine(kOld);
    Unpack(files);
    Exchange exchange(files, kFolder);
    EXPECT_EQ(exchange.Install().result, Result::kDone);
    EXPECT_EQ(Installed(files), With(kNew, kForeign));
    EXPECT_EQ(exchange.Clean().result, Result::kDone);
    EXPECT_FALSE(files.Exists(kWork + L"\\gone"));
    EXPECT_FALSE(files.Exists(kWork + L"\\new"));
    EXPECT_FALSE(files.Exists(kWork + L"\\moving-in.txt"));
    ExpectNoEmptyFolders(files);
}

TEST(Exchange, EveryUnpackedFileIsOnTheDiskBeforeTheFirstOneMoves) {
    FilesInMemory files = Machine(kOld);
    Unpack(files);
    files.StopAfter(0);
    EXPECT_THROW(static_cast<void>(Exchange(files, kFolder).Install()), Stopped);
    for (const auto& [name, content] : kNew) {
        EXPECT_THAT(files.Flushed(), Contains(kWork + L"\\new\\" + name));
    }
    EXPECT_THAT(files.Flushed(), Contains(kWork + L"\\files.txt"));
}

TEST(Exchange, AMachineThatStopsDuringAnUpgrade) {
    FilesInMemory files = Machine(kOld);
    Unpack(files);
    StopEverywhere(files, &Exchange::Install, With(kOld, kForeign), With(kNew, kForeign));
}

TEST(Exchange, AMachineThatStopsDuringAFirstInstallation) {
    FilesInMemory files = Machine({});
    Unpack(files);
    StopEverywhere(files, &Exchange::Install, kForeign, With(kNew, kForeign));
}

TEST(Exchange, AMachineThatStopsDuringARemoval) {
    StopEverywhere(Machine(kOld), &Exchange::Remove, With(kOld, kForeign), kForeign);
}

TEST(Exchange, AChangeThatFailsDuringAnUpgrade) {
    FilesInMemory files = Machine(kOld);
    Unpack(files);
    FailEverywhere(files, &Exchange::Install, With(kOld, kForeign), With(kNew, kForeign));
}

TEST(Exchange, AChangeThatFailsDuringARemoval) {
    FailEverywhere(Machine(kOld), &Exchange::Remove, With(kOld, kForeign), kForeign);
}

TEST(Exchange, WhatCannotBePutBackNowIsPutBackByTheNextRun) {
    FilesInMemory stopped = Machine(kOld);
    Unpack(stopped);
    FilesInMemory whole = stopped;
    RunUntilStopped(whole, &Exchange::Install, FilesInMemory::kNever);
    RunUntilStopped(stopped, &Exchange::Install, whole.Changes() - 1);
    int failures = 0;
    for (int fail = 0;; ++fail) {
        SCOPED_TRACE(fail);
        FilesInMemory files = stopped;
        files.ForgetChanges();
        files.FailAfter(fail, 32);
        const Outcome outcome = Exchange(files, kFolder).Recover();
        if (files.Changes() <= fail) {
            break;
        }
        files.FailAfter(FilesInMemory::kNever, 0);
        // Only an empty folder that could not go is no failure.
        if (outcome.result == Result::kInUse) {
            ++failures;
            ExpectRecoverWorks(files, With(kOld, kForeign), With(kOld, kForeign));
        }
        EXPECT_EQ(Installed(files), With(kOld, kForeign));
    }
    EXPECT_GT(failures, 20);
}

TEST(Exchange, AWayBackThatFailsTooIsAFailure) {
    // The program's file is taken between its test and its move, and then what was unpacked is gone as well.
    class Spoiled : public FilesInMemory {
      public:
        Error Move(const std::wstring& from, const std::wstring& to) override {
            broken_ = broken_ || to.rfind(kFolder + L"\\DuiLib", 0) == 0;
            return broken_ ? 32 : FilesInMemory::Move(from, to);
        }

      private:
        bool broken_ = false;
    };
    Spoiled files;
    PutTree(files, kFolder, kOld);
    Unpack(files);
    const Outcome outcome = Exchange(files, kFolder).Install();
    EXPECT_EQ(outcome.result, Result::kFailed);
    EXPECT_EQ(outcome.error, 32u);
}

TEST(Exchange, AFileInUseStopsItBeforeAnythingChanges) {
    for (const wchar_t* name : {L"pixora.exe", L"duilib.dll", L"gone\\deep\\b.png"}) {
        for (const Step step : {&Exchange::Install, &Exchange::Remove}) {
            FilesInMemory files = Machine(kOld);
            Unpack(files);
            files.InUse().insert(kFolder + L"\\" + name);
            files.StopAfter(0);
            const Outcome outcome = (Exchange(files, kFolder).*step)();
            EXPECT_EQ(outcome.result, Result::kInUse);
            EXPECT_EQ(outcome.error, 32u);
            EXPECT_TRUE(files.InUse().count(outcome.path) + (name == std::wstring(L"pixora.exe")) +
                        (name == std::wstring(L"duilib.dll")));
            EXPECT_EQ(Installed(files), With(kOld, kForeign));
        }
    }
}

TEST(Exchange, WhichErrorsMeanInUse) {
    for (const auto& [error, result] : std::map<Error, Result>{{5, Result::kFailed},
                                                               {32, Result::kInUse},
                                                               {33, Result::kInUse},
                                                               {112, Result::kFailed},
                                                               {1224, Result::kInUse}}) {
        FilesInMemory files = Machine(kOld);
        Unpack(files);
        files.FailAfter(4, error);
        EXPECT_EQ(Exchange(files, kFolder).Install().result, result) << error;
    }
}

TEST(Exchange, TheUninstallerStaysWhenTheProgramGoes) {
    Tree installed = kOld;
    installed[L"uninstallpixora.exe"] = L"old";
    installed[L"pixorafiles.txt"] += L"UninstallPixora.exe\n";
    FilesInMemory files = Machine(installed);
    EXPECT_EQ(Exchange(files, kFolder).Remove().result, Result::kDone);
    EXPECT_EQ(Installed(files), With({{L"uninstallpixora.exe", L"old"}}, kForeign));
    // The second time there is nothing left to do.
    Exchange again(files, kFolder);
    EXPECT_EQ(again.Recover().result, Result::kDone);
    EXPECT_EQ(again.Remove().result, Result::kDone);
    EXPECT_EQ(Installed(files), With({{L"uninstallpixora.exe", L"old"}}, kForeign));
}

TEST(Exchange, AVersionWithoutAListIsReplacedWhereTheNewOneHasFiles) {
    Tree installed = kOld;
    installed.erase(L"pixorafiles.txt");
    FilesInMemory files = Machine(installed);
    Unpack(files);
    EXPECT_EQ(Exchange(files, kFolder).Install().result, Result::kDone);
    EXPECT_EQ(Installed(files), With(With(kNew, kForeign), {{L"gone\\deep\\b.png", L"old"}}));
}

TEST(Exchange, AnInstalledListDoesNotLeadOutOfTheFolder) {
    Tree installed = kOld;
    installed[L"pixorafiles.txt"] += L"..\\outside.txt\n\nC:\\windows\\a.dll";
    FilesInMemory files = Machine(installed);
    const std::wstring outside = kFolder + L"\\..\\outside.txt";
    files.Put(outside, L"foreign");
    Unpack(files);
    EXPECT_EQ(Exchange(files, kFolder).Install().result, Result::kDone);
    EXPECT_TRUE(files.Exists(outside));
}

TEST(Exchange, ANewVersionThatIsNotWholeIsNotInstalled) {
    const auto expectRefused = [](FilesInMemory& files, const wchar_t* what) {
        files.StopAfter(0);
        EXPECT_EQ(Exchange(files, kFolder).Install().result, Result::kFailed) << what;
    };
    for (const auto& [name, content] : kNew) {
        FilesInMemory files = Machine(kOld);
        Unpack(files);
        files.Contents().erase(kWork + L"\\new\\" + name);
        const Outcome outcome = Exchange(files, kFolder).Install();
        EXPECT_EQ(outcome.error, 2u);
        expectRefused(files, L"a file is missing");
    }
    FilesInMemory files = Machine(kOld);
    Unpack(files);
    files.Contents().erase(kWork + L"\\files.txt");
    expectRefused(files, L"no list");
    files.Put(kWork + L"\\files.txt", L"");
    expectRefused(files, L"an empty list");
    files.Put(kWork + L"\\files.txt", L"DuiLib.dll\n");
    expectRefused(files, L"a list without the program");
    files.Put(kWork + L"\\files.txt", L"..\\a\nPixora.exe");
    files.Put(kWork + L"\\new\\..\\a", L"new");
    expectRefused(files, L"a name that leads out");
}

TEST(Exchange, WhatSomebodyPutInTheStoppedVersionsPlaceGivesWay) {
    FilesInMemory start = Machine(kOld);
    Unpack(start);
    for (int stop = 0;; ++stop) {
        SCOPED_TRACE(stop);
        FilesInMemory files = start;
        if (!RunUntilStopped(files, &Exchange::Install, stop)) {
            break;
        }
        if (Installed(files).count(L"pixora.exe") == 0) {
            files.Put(kFolder + L"\\pixora.exe", L"by hand");
        }
        ExpectRecoverWorks(files, With(kOld, kForeign), With(kOld, kForeign));
    }
}

TEST(Exchange, WhatWasUnpackedMayHaveBeenDeletedByHand) {
    FilesInMemory start = Machine(kOld);
    Unpack(start);
    for (int stop = 0;; ++stop) {
        SCOPED_TRACE(stop);
        FilesInMemory files = start;
        if (!RunUntilStopped(files, &Exchange::Install, stop)) {
            break;
        }
        const auto isUnpacked = [](const std::wstring& path) { return path.rfind(kWork + L"\\new", 0) == 0; };
        std::erase_if(files.FolderNames(), isUnpacked);
        std::erase_if(files.Contents(), [&](const auto& file) { return isUnpacked(file.first); });
        ExpectRecoverWorks(files, With(kOld, kForeign), With(kOld, kForeign));
    }
}

}  // namespace
}  // namespace setup
