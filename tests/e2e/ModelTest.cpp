// Random actions of a user and of other programs: after each, the settings key and the window agree with a model of
// the settings that the test keeps. PIXORA_ACTIONS says how many, PIXORA_SEED begins another sequence, PIXORA_VERBOSE
// tells each action as it is done.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <random>

#include "tests/e2e/support/Machine.h"
#include "tests/e2e/support/Program.h"
#include "tests/e2e/support/SettingsModel.h"
#include "tests/support/Environment.h"
#include "tools/service/PipeServer.h"

namespace e2e {
namespace {

constexpr int kHighestLevel = 10;

class ModelTest : public testing::Test {
  protected:
    void SetUp() override {
        Machine::ResetToInstalled();
        for (const auto& [name, value] : model_.All())
            Machine::SetNumber(name.c_str(), static_cast<DWORD>(value));
        ASSERT_TRUE(service_.Start(harness::Protocol::kPipeName));
        program_.emplace();
        ASSERT_TRUE(program_->WaitForWindow());
    }

    int Random(int below) { return static_cast<int>(random_() % static_cast<unsigned>(below)); }
    template <typename Row, std::size_t count>
    const Row& OneOf(const std::array<Row, count>& rows) {
        return rows[static_cast<std::size_t>(Random(static_cast<int>(count)))];
    }

    // One random action on the program or the key, and on the model. What was done, for the message of a failure.
    std::wstring Act() {
        const bool sliders = model_.Get(L"lumi_camera_beauty_person") == 1;
        switch (Random(sliders ? 7 : 4)) {
            case 0:
            case 1: {
                const SwitchRow& row = OneOf(kSwitches);
                Press(row.control);
                model_.PressSwitch(row);
                return std::wstring(L"press ") + row.control;
            }
            case 2: {
                const BackgroundEntry& entry = OneOf(kBackgroundEntries);
                Press(entry.control);
                model_.PickBackground(entry);
                return std::wstring(L"press ") + entry.control;
            }
            case 3:
                return ChangeFromOutside();
            default:
                return MoveSlider();
        }
    }

    void Press(const wchar_t* control) {
        ASSERT_TRUE(program_->Reveal(control));
        program_->Click(control);
    }

    std::wstring ChangeFromOutside() {
        const int which = Random(3);
        std::wstring name = SettingsModel::kBackground;
        int value = OneOf(kBackgroundEntries).index;
        if (which == 0) {
            name = OneOf(kSwitches).value;
            value = 1 - model_.Get(name);
        } else if (which == 1) {
            name = OneOf(kSliders).value;
            value = Random(kHighestLevel + 1);
        }
        Machine::SetNumber(name.c_str(), static_cast<DWORD>(value));
        model_.Set(name, value);
        return L"another program sets " + name + L" to " + std::to_wstring(value);
    }

    // What the level as a number takes of a slider's right end: the widest one, a gap and an edge.
    static int NumberWidthPx() {
        constexpr int kGapAndEdgePx = 18;
        HDC dc = CreateCompatibleDC(nullptr);
        HFONT font = CreateFontW(-13, 0, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE, DEFAULT_CHARSET, OUT_DEFAULT_PRECIS,
                                 CLIP_DEFAULT_PRECIS, CLEARTYPE_QUALITY, DEFAULT_PITCH, L"Segoe UI");
        const HGDIOBJ before = SelectObject(dc, font);
        SIZE size{};
        GetTextExtentPoint32W(dc, L"10", 2, &size);
        SelectObject(dc, before);
        DeleteObject(font);
        DeleteDC(dc);
        return size.cx + kGapAndEdgePx;
    }

    std::wstring MoveSlider() {
        const SwitchRow& row = OneOf(kSliders);
        if (!program_->Reveal(row.control))
            return std::wstring(L"cannot reveal ") + row.control;
        const RECT place = program_->Find(row.control)->screenPx;
        const int thumb = place.bottom - place.top > 20 ? 20 : place.bottom - place.top;
        // Two clicks at one place would be a double click, which means the level in the middle.
        int level = Random(kHighestLevel + 1);
        level = level == lastLevel_ ? (level + 1) % (kHighestLevel + 1) : level;
        lastLevel_ = level;
        const int travel = place.right - NumberWidthPx() - place.left - thumb;
        const int x = place.left + thumb / 2 + MulDiv(level, travel, kHighestLevel);
        const int middle = (place.top + place.bottom) / 2;
        const int before = model_.Get(row.value);
        switch (Random(3)) {
            case 0:
                program_->ClickAt({x, middle});
                model_.Set(row.value, level);
                return std::wstring(L"click ") + row.control + L" at " + std::to_wstring(level);
            case 1: {
                const int notches = Random(2) ? 1 : -1;
                program_->MoveTo({x, middle});
                program_->Wheel(notches);
                model_.Set(row.value, std::clamp(before + notches, 0, kHighestLevel));
                return std::wstring(L"wheel over ") + row.control + L" by " + std::to_wstring(notches);
            }
            default: {
                const int step = Random(2) ? 1 : -1;
                program_->ClickAt({x, middle});
                program_->PressKey(step > 0 ? VK_RIGHT : VK_LEFT);
                model_.Set(row.value, std::clamp(level + step, 0, kHighestLevel));
                return std::wstring(L"click ") + row.control + L" at " + std::to_wstring(level) + L", arrow key by " +
                       std::to_wstring(step);
            }
        }
    }

    // What differs from the model, first in the key, then in the window; empty when all agree.
    std::wstring Difference() const {
        for (const auto& [name, value] : model_.All()) {
            const auto stored = Machine::Number(name.c_str());
            if (stored != static_cast<DWORD>(value))
                return L"key: " + name + L" is " + (stored ? std::to_wstring(*stored) : L"missing") + L", should be " +
                       std::to_wstring(value);
        }
        const std::vector<AccessibleControl> controls = AccessibleWindow(program_->Window()).List();
        const auto isChecked = [&](const wchar_t* name) {
            for (const AccessibleControl& control : controls) {
                if (control.control == name)
                    return (control.state & STATE_SYSTEM_CHECKED) != 0;
            }
            return false;
        };
        for (const SwitchRow& row : kSwitches) {
            if (isChecked(row.control) != (model_.Get(row.value) == 1))
                return std::wstring(L"window: ") + row.control;
        }
        for (const BackgroundEntry& entry : kBackgroundEntries) {
            if (isChecked(entry.control) != (model_.Get(SettingsModel::kBackground) == entry.index))
                return std::wstring(L"window: ") + entry.control;
        }
        if (model_.Get(L"lumi_camera_beauty_person") != 1)
            return {};
        for (const SwitchRow& row : kSliders) {
            const auto slider =
                std::find_if(controls.begin(), controls.end(),
                             [&row](const AccessibleControl& control) { return control.control == row.control; });
            if (slider == controls.end() || slider->value != std::to_wstring(model_.Get(row.value)))
                return std::wstring(L"window: ") + row.control;
        }
        return {};
    }

    std::mt19937 random_{static_cast<unsigned>(FromEnvironment("PIXORA_SEED", 20260))};
    int lastLevel_ = -1;
    SettingsModel model_;
    PipeServer service_;
    std::optional<Program> program_;
};

TEST_F(ModelTest, KeyAndWindowAgreeWithTheModelAfterEachAction) {
    const int actions = FromEnvironment("PIXORA_ACTIONS", 40);
    std::wstring history;
    for (int action = 0; action < actions; ++action) {
        history += L"\n" + std::to_wstring(action) + L" " + Act();
        if (std::getenv("PIXORA_VERBOSE"))
            std::wcout << history.substr(history.rfind(L'\n')) << std::flush;
        std::wstring difference;
        const bool agree = WaitUntil([&] {
            difference = Difference();
            return difference.empty();
        });
        if (!agree) {
            program_->Screenshot(L"model-disagrees");
            const std::size_t shown = std::min<std::size_t>(history.size(), 600);
            FAIL() << testing::PrintToString(difference) << " after"
                   << testing::PrintToString(history.substr(history.size() - shown));
        }
    }
}

}  // namespace
}  // namespace e2e
