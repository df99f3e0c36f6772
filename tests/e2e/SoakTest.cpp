// Random clicks, keys, scrolls, scales, moves and minimising on the real program, alone and among neighbours that do
// what they like, and killing it at any moment: it always answers, holds no more of the system than before, and leaves
// whole values behind. scripts/soak runs it for long. PIXORA_SOAK_SECONDS says how long it is used alone,
// PIXORA_SOAK_NEIGHBOURS how many seconds among neighbours, PIXORA_KILLS how often it is killed; PIXORA_SEED begins
// another sequence.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <iostream>
#include <numeric>
#include <random>
#include <vector>

#include "service/CustomImageGroup.h"
#include "tests/e2e/support/FileDialog.h"
#include "tests/e2e/support/Machine.h"
#include "tests/e2e/support/Neighbourhood.h"
#include "tests/e2e/support/ProcessFootprint.h"
#include "tests/e2e/support/Program.h"
#include "tests/e2e/support/SettingsModel.h"
#include "tests/e2e/support/UsersLook.h"
#include "tests/support/Environment.h"
#include "tests/support/ShapedWindows.h"
#include "tests/support/TestLog.h"
#include "tools/service/PipeServer.h"

namespace e2e {
namespace {

// How often it is measured. What it holds goes up and down with what is in front and what caches keep, so the least of
// several looks counts: of those after everything that is made once has been made, and of the last ones.
constexpr int kLooks = 12;
constexpr int kFirstWarmLook = 3;
constexpr int kLooksCompared = 4;

ProcessFootprint Least(const ProcessFootprint& a, const ProcessFootprint& b) {
    return {std::min(a.residentBytes, b.residentBytes), std::min(a.handles, b.handles), std::min(a.threads, b.threads),
            std::min(a.gdiObjects, b.gdiObjects), std::min(a.regions, b.regions)};
}

ProcessFootprint LeastFrom(const std::vector<ProcessFootprint>& looks, int first) {
    const auto begin = looks.begin() + first;
    return std::accumulate(begin + 1, begin + kLooksCompared, *begin, Least);
}

// What may be added between the end of the warming up and the end: caches that have a limit, a menu of the system, and
// what the heap keeps of the pictures of another scale or theme, up to twenty megabytes in one look and nothing in the
// next. A random run of twenty seconds has more than five hundred actions.
constexpr std::size_t kMoreBytes = 32u << 20;
constexpr int kMoreHandles = 40;
constexpr int kMoreThreads = 6;
constexpr int kMoreGdiObjects = 30;
constexpr int kMoreRegions = 10;

constexpr int kScales[] = {192, 144, 120, 96};

class SoakTest : public testing::Test {
  protected:
    void SetUp() override {
        // The preview's switch is pressed too, where there may be no camera.
        harness::TestLog::Allow(testing::HasSubstr("can not find any video device!(Preview::SelectDevice)"));
        Machine::ResetToInstalled();
        const SettingsModel defaults;
        for (const auto& [name, value] : defaults.All())
            Machine::SetNumber(name.c_str(), static_cast<DWORD>(value));
        ASSERT_TRUE(service_.Start(harness::Protocol::kPipeName));
        Start();
    }

    void Start() {
        program_.reset();
        program_.emplace();
        ASSERT_TRUE(program_->WaitForWindow());
    }

    int Random(int below) { return static_cast<int>(random_() % static_cast<unsigned>(below)); }

    // The window has painted, which comes after all mouse and key input that waited: no click is left that would find
    // the window at another place, and the focus is where the last key put it. It is not minimised any more.
    bool Answers() const {
        const HWND window = program_->Window();
        RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE);
        return WaitUntil([window] {
            if (IsIconic(window))
                ShowWindow(window, SW_RESTORE);
            return !IsIconic(window) && !GetUpdateRect(window, nullptr, FALSE);
        });
    }

    // Any point of the window but those of its own buttons to close and minimise.
    POINT AnyPoint() {
        RECT window = {};
        GetWindowRect(program_->Window(), &window);
        const int width = window.right - window.left;
        const int height = window.bottom - window.top;
        POINT point{};
        do {
            point = {Random(width), Random(height)};
        } while (point.y < height / 12 && point.x > width * 4 / 5);
        return {window.left + point.x, window.top + point.y};
    }

    bool CloseButtonHasFocus() const {
        const AccessibleWindow controls(program_->Window());
        const auto button = controls.Find(L"closebtn");
        return button && controls.FocusedId() == button->id;
    }

    // A message box, a file dialog or the like is closed as the user would.
    void CloseWhatIsInFront() {
        const HWND front = GetLastActivePopup(program_->Window());
        if (front && front != program_->Window() && IsWindowVisible(front) && IsWindowEnabled(front)) {
            SetForegroundWindow(front);
            program_->PressKey(VK_ESCAPE);
        }
    }

    // The system's file dialog, once: its icons and libraries stay loaded.
    void UseFileDialog() {
        program_->Reveal(L"custom_background_btn");
        program_->Click(L"custom_background_btn");
        ASSERT_TRUE(WaitUntil([this] { return GetLastActivePopup(program_->Window()) != program_->Window(); }));
        ASSERT_TRUE(WaitUntil([this] {
            CloseWhatIsInFront();
            return GetLastActivePopup(program_->Window()) == program_->Window();
        }));
    }

    // Every scale, with the pictures and fonts that each has of its own.
    void UseScales() {
        for (const int scale : kScales) {
            program_->SetScale(scale);
            ASSERT_TRUE(Answers());
        }
    }

    // The preview's switch, several times: without a camera it opens the graphics device all the same, which loads once
    // what stays loaded, a hundred megabytes on some systems. A random click may come to it early, late or never.
    void UsePreview() {
        constexpr int kTimes = 3;
        Machine::Expect("[L4] can not find any video device!(Preview::SelectDevice)");
        for (int i = 0; i < kTimes; ++i) {
            program_->Click(L"preview_switch");
            ASSERT_TRUE(WaitUntil([this] { return GetLastActivePopup(program_->Window()) != program_->Window(); }));
            ASSERT_TRUE(WaitUntil([this] {
                CloseWhatIsInFront();
                return GetLastActivePopup(program_->Window()) == program_->Window() &&
                       IsWindowEnabled(program_->Window());
            }));
        }
    }

    // At the same scale each time: the window's own pictures at 200 % are twenty megabytes more than at 100 %.
    void Measure(ProcessFootprint& footprint) {
        ASSERT_TRUE(WaitUntil([this] {
            CloseWhatIsInFront();
            return GetLastActivePopup(program_->Window()) == program_->Window();
        }));
        program_->SetScale(96);
        ASSERT_TRUE(Answers());
        footprint = FootprintOf(program_->Process(), program_->ProcessId());
    }

    void Act() {
        static constexpr WORD kKeys[] = {VK_TAB,  VK_TAB,  VK_TAB,    VK_SPACE, VK_RETURN,
                                         VK_LEFT, VK_DOWN, VK_ESCAPE, VK_HOME,  VK_DELETE};
        const HWND window = program_->Window();
        switch (Random(12)) {
            case 0:
            case 1:
            case 2:
            case 3:
            case 4:
                program_->ClickAt(AnyPoint());
                break;
            case 5:
                program_->MoveTo(AnyPoint());
                program_->Wheel(Random(2) ? 1 : -1);
                break;
            case 6:
            case 7:
            case 8: {
                const WORD key = kKeys[Random(static_cast<int>(std::size(kKeys)))];
                if ((key != VK_SPACE && key != VK_RETURN) || !CloseButtonHasFocus())
                    program_->PressKey(key);
                break;
            }
            case 9:
                SetWindowPos(window, nullptr, Random(400), Random(300), 0, 0, SWP_NOSIZE | SWP_NOZORDER);
                break;
            case 10:
                ShowWindow(window, SW_MINIMIZE);
                ShowWindow(window, SW_RESTORE);
                SetForegroundWindow(window);
                break;
            default:
                program_->SetScale(kScales[Random(static_cast<int>(std::size(kScales)))]);
                break;
        }
    }

    void WarmUp() {
        ASSERT_NO_FATAL_FAILURE(UsePreview());
        ASSERT_NO_FATAL_FAILURE(UseFileDialog());
        ASSERT_NO_FATAL_FAILURE(UseScales());
    }

    // Where the system itself keeps regions of windows that were shown, it is one for every fourth action.
    static int RegionsKept(int actions) { return harness::RegionsKeptByTheSystem(1) > 0 ? actions / 2 : 0; }

    // Random actions for that long, each followed by `disturb`; `measure` takes twelve looks at what the program holds.
    void Use(std::chrono::seconds duration, const std::function<void()>& disturb,
             const std::function<void(ProcessFootprint&)>& measure) {
        using Clock = std::chrono::steady_clock;
        const auto begin = Clock::now();
        std::cout << "at the start: " << FootprintOf(program_->Process(), program_->ProcessId()).Text() << std::endl;
        std::vector<ProcessFootprint> looks;
        int actions = 0;
        while (looks.size() < kLooks) {
            Act();
            disturb();
            ++actions;
            if (!Answers()) {
                program_->Screenshot(L"soak-hangs");
                FAIL() << "does not answer after " << actions << " actions";
            }
            ASSERT_TRUE(program_->Runs()) << "ended after " << actions << " actions";
            if (actions % 10 == 0)
                CloseWhatIsInFront();
            if (Clock::now() - begin >= duration * (looks.size() + 1) / kLooks) {
                ASSERT_NO_FATAL_FAILURE(measure(looks.emplace_back()));
                std::cout << std::chrono::duration_cast<std::chrono::seconds>(Clock::now() - begin).count() << " s, "
                          << actions << " actions: " << looks.back().Text() << std::endl;
            }
        }
        const ProcessFootprint warm = LeastFrom(looks, kFirstWarmLook);
        const ProcessFootprint last = LeastFrom(looks, kLooks - kLooksCompared);
        EXPECT_GT(last.handles, 0);
        EXPECT_GT(last.residentBytes, 0u);
        EXPECT_LE(last.residentBytes, warm.residentBytes + kMoreBytes);
        EXPECT_LE(last.handles, warm.handles + kMoreHandles);
        EXPECT_LE(last.threads, warm.threads + kMoreThreads);
        EXPECT_LE(last.gdiObjects, warm.gdiObjects + kMoreGdiObjects);
        EXPECT_LE(last.regions, warm.regions + kMoreRegions + RegionsKept(actions));
    }

    // The folder that the program keeps the user's pictures in; empty when it has made none.
    static std::filesystem::path UserFolder() {
        for (const auto& entry : std::filesystem::directory_iterator(L"C:\\ProgramData\\Comms\\LumiCamera")) {
            if (entry.is_directory())
                return entry.path();
        }
        return {};
    }

    // A background of the user's own, as far as the window lets it: something else may be in front.
    void AddOwn() {
        CloseWhatIsInFront();
        if (!program_->Reveal(L"custom_background_btn"))
            return;
        const std::wstring before = Machine::Text(L"lumi_camera_custom_img_group").value_or(L"");
        program_->Click(L"custom_background_btn");
        FileDialog dialog;
        if (!dialog.WaitFor(program_->Window()))
            return;
        dialog.Choose(ProgramFolder() + L"res\\drawable\\LumiCamera\\thumb_img_one.png");
        if (dialog.WaitForEnd() &&
            WaitUntil([&] { return Machine::Text(L"lumi_camera_custom_img_group").value_or(L"") != before; }))
            ++added_;
    }

    // A preview that a click has begun to open ends in a box here, after its switch can be pressed again.
    void WaitForPreview() {
        int looks = 0;
        ASSERT_TRUE(WaitUntil([&] {
            CloseWhatIsInFront();
            const auto preview = program_->Find(L"preview_switch");
            const bool isCalm = preview && (preview->state & STATE_SYSTEM_UNAVAILABLE) == 0 &&
                                GetLastActivePopup(program_->Window()) == program_->Window();
            looks = isCalm ? looks + 1 : 0;
            return looks == 3;
        }));
    }

    // REQUIRES: nobody else writes the settings. What the key is given is shown, and what is clicked is written.
    void CompareWithModel() {
        SettingsModel model;
        for (const SwitchRow& row : kSwitches)
            model.Set(row.value, Random(2));
        for (const SwitchRow& row : kSliders)
            model.Set(row.value, Random(11));
        model.Set(L"lumi_camera_beauty_person", 1);  // else there are no sliders
        for (const auto& [name, value] : model.All())
            Machine::SetNumber(name.c_str(), static_cast<DWORD>(value));
        if (!program_->Find(kSwitches[0].control) && program_->Find(L"back_btn"))
            program_->Click(L"back_btn");
        ASSERT_NO_FATAL_FAILURE(WaitForPreview());
        for (const SwitchRow& row : kSwitches) {
            ASSERT_TRUE(WaitUntil([&] {
                const auto control = program_->Find(row.control);
                return control && ((control->state & STATE_SYSTEM_CHECKED) != 0) == (model.Get(row.value) == 1);
            })) << testing::PrintToString(std::wstring(row.control));
        }
        for (const SwitchRow& row : kSliders) {
            ASSERT_TRUE(WaitUntil([&] {
                const auto control = program_->Find(row.control);
                return control && control->value == std::to_wstring(model.Get(row.value));
            })) << testing::PrintToString(std::wstring(row.control));
        }
        const SwitchRow& pressed = kSwitches[static_cast<std::size_t>(Random(static_cast<int>(kSwitches.size())))];
        if (!program_->Reveal(pressed.control)) {
            program_->Screenshot(L"soak-model");
            FAIL() << testing::PrintToString(std::wstring(pressed.control))
                   << " cannot be brought into sight: " << program_->InputState();
        }
        program_->Click(pressed.control);
        model.PressSwitch(pressed);
        if (!WaitUntil([&] { return Machine::Number(pressed.value) == static_cast<DWORD>(model.Get(pressed.value)); }))
            program_->Screenshot(L"soak-model");
        const std::string input = program_->InputState();
        for (const auto& [name, value] : model.All()) {
            const auto isStored = [&key = name, wanted = static_cast<DWORD>(value)] {
                return Machine::Number(key.c_str()) == wanted;
            };
            ASSERT_TRUE(WaitUntil(isStored)) << testing::PrintToString(name) << "; " << input;
        }
    }

    int added_ = 0;
    std::mt19937 random_{static_cast<unsigned>(FromEnvironment("PIXORA_SEED", 4711))};
    PipeServer service_;
    std::optional<Program> program_;
};

TEST_F(SoakTest, StandsRandomUseWithoutGrowing) {
    ASSERT_NO_FATAL_FAILURE(WarmUp());
    ASSERT_NO_FATAL_FAILURE(Use(
        std::chrono::seconds(FromEnvironment("PIXORA_SOAK_SECONDS", 20)), [] {},
        [this](auto& look) { Measure(look); }));
    program_->Screenshot(L"soak-end");
}

// Random clicks open a page too seldom to show what each opening leaves behind. Something that is made once may come
// within one block of openings, a leak does in each.
TEST_F(SoakTest, OpenedPagesLeaveNothingBehind) {
    constexpr int kBlocks = 4;
    constexpr int kTimes = 3;
    ProcessFootprint before;
    ProcessFootprint after;
    const auto isFlat = [&] {
        return after.gdiObjects < before.gdiObjects + kTimes && after.handles < before.handles + kTimes &&
               after.regions < before.regions + kTimes + RegionsKept(2 * kTimes);
    };
    ASSERT_NO_FATAL_FAILURE(Measure(after));
    EXPECT_GT(after.gdiObjects, 0);
    for (int block = 0; block < kBlocks; ++block) {
        before = after;
        for (int i = 0; i < kTimes; ++i) {
            program_->Click(L"show_detail_btn");
            ASSERT_TRUE(program_->WaitFor(L"back_btn"));
            program_->Click(L"back_btn");
            ASSERT_TRUE(program_->WaitFor(L"show_detail_btn"));
        }
        ASSERT_NO_FATAL_FAILURE(Measure(after));
        if (isFlat())
            break;
    }
    EXPECT_TRUE(isFlat()) << before.Text() << "; after " << kTimes << " openings: " << after.Text();
}

TEST_F(SoakTest, StandsItsNeighboursWithoutGrowing) {
    namespace fs = std::filesystem;
    // What the neighbours cause is told, as it should be.
    harness::TestLog::Allow(testing::_);
    ASSERT_NO_FATAL_FAILURE(WarmUp());
    const fs::path user = UserFolder();
    ASSERT_FALSE(user.empty());
    service_.Stop();
    std::string done;
    {
        const UsersLook look(program_->Window());
        Neighbourhood neighbours(random_(), user.wstring());
        const auto disturb = [&] {
            switch (Random(80)) {
                case 0:
                    look.SetDark(Random(2) == 0);
                    break;
                case 1:
                    look.SetTextSize(static_cast<DWORD>(100 + 25 * Random(6)));
                    break;
                case 2:
                    AddOwn();
                    break;
                default:
                    break;
            }
        };
        const auto measure = [&](ProcessFootprint& footprint) {
            neighbours.Rest();
            look.SetDark(false);
            look.SetTextSize(100);
            ASSERT_NO_FATAL_FAILURE(Measure(footprint));
            ASSERT_NO_FATAL_FAILURE(CompareWithModel());
            std::cout << neighbours.Text() << ", " << added_ << " backgrounds added; ";
            neighbours.GoOn();
        };
        ASSERT_NO_FATAL_FAILURE(
            Use(std::chrono::seconds(FromEnvironment("PIXORA_SOAK_NEIGHBOURS", 10)), disturb, measure));
        neighbours.Rest();
    }
    // The list and the folder agree.
    for (const CustomImageRecord& record :
         CustomImageGroup::Parse(Machine::Text(L"lumi_camera_custom_img_group").value_or(L""))) {
        EXPECT_TRUE(fs::exists(record.thumbPath)) << record.thumbPath;
    }
    program_.reset();
    for (const auto& entry : fs::directory_iterator(user))
        EXPECT_EQ(entry.path().extension(), L".jpg") << entry.path();
}

TEST_F(SoakTest, KilledAtAnyMomentItLeavesWholeValues) {
    for (int round = 0; round < FromEnvironment("PIXORA_KILLS", 6); ++round) {
        SettingsModel model;
        for (const auto& [name, value] : model.All())
            Machine::SetNumber(name.c_str(), static_cast<DWORD>(value));
        const SwitchRow& row = kSwitches[static_cast<std::size_t>(round) % kSwitches.size()];
        ASSERT_TRUE(WaitUntil([&] {
            const auto control = program_->Find(row.control);
            return control && ((control->state & STATE_SYSTEM_CHECKED) != 0) == (model.Get(row.value) == 1);
        }));
        ASSERT_TRUE(program_->Reveal(row.control));
        program_->Click(row.control);
        // From before the first write until after the second, which comes 100 ms later.
        Sleep(static_cast<DWORD>(Random(200)));
        program_.reset();

        SettingsModel pressed = model;
        pressed.PressSwitch(row);
        for (const auto& [name, value] : model.All()) {
            const auto left = Machine::Number(name.c_str());
            EXPECT_TRUE(left == static_cast<DWORD>(value) || left == static_cast<DWORD>(pressed.Get(name)))
                << testing::PrintToString(name);
        }
        Start();
        for (const SwitchRow& each : kSwitches) {
            const auto control = program_->WaitFor(each.control);
            ASSERT_TRUE(control);
            EXPECT_EQ((control->state & STATE_SYSTEM_CHECKED) != 0, Machine::Number(each.value) == 1U);
        }
    }
}

}  // namespace
}  // namespace e2e
