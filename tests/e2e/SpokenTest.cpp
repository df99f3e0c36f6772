// What the program says to a screen reader: the events that come, and what the object of each tells at that moment.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <oleacc.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "suite/common/ComReference.h"
#include "tests/e2e/support/FileDialog.h"
#include "tests/e2e/support/Machine.h"
#include "tests/e2e/support/Program.h"
#include "tests/support/TestLog.h"
#include "tests/support/Wait.h"
#include "tools/service/PipeServer.h"

namespace e2e {
namespace {

constexpr DWORD kLiveRegionChanged = 0x8019;  // EVENT_OBJECT_LIVEREGIONCHANGED, not in the headers

struct Spoken {
    DWORD event = 0;
    HWND window = nullptr;
    long child = 0;
    std::wstring name, value, description, help;
    long role = 0;
    long state = 0;
};

// Records the events of one process, and asks each one's object at once, as a screen reader does. Thread: the test's,
// which has to run messages.
class Listener {
  public:
    explicit Listener(DWORD process)
        : hook_(SetWinEventHook(EVENT_MIN, EVENT_MAX, nullptr, Hear, process, 0, WINEVENT_OUTOFCONTEXT)) {
        current_ = this;
    }
    ~Listener() {
        UnhookWinEvent(hook_);
        current_ = nullptr;
    }
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    // Waits for an event that the condition likes; nothing when none comes.
    template <typename Condition>
    std::optional<Spoken> WaitFor(DWORD event, const Condition& condition) {
        std::optional<Spoken> found;
        harness::PumpUntil([&] {
            for (const Spoken& spoken : heard_) {
                if (spoken.event == event && condition(spoken)) {
                    found = spoken;
                }
            }
            return found.has_value();
        });
        return found;
    }

  private:
    static void CALLBACK Hear(HWINEVENTHOOK, DWORD event, HWND window, LONG object, LONG child, DWORD, DWORD) {
        if (object == OBJID_CLIENT && current_) {
            current_->heard_.push_back(Ask({event, window, child, {}, {}, {}, {}, 0, 0}));
        }
    }
    static std::wstring Take(HRESULT result, BSTR text) {
        std::wstring taken = result == S_OK && text ? std::wstring(text, SysStringLen(text)) : std::wstring();
        SysFreeString(text);
        return taken;
    }
    static Spoken Ask(Spoken spoken) {
        suite::ComReference<IAccessible> object;
        VARIANT child;
        VariantInit(&child);
        if (AccessibleObjectFromEvent(spoken.window, static_cast<DWORD>(OBJID_CLIENT), static_cast<DWORD>(spoken.child),
                                      reinterpret_cast<IAccessible**>(object.PutVoid()), &child) != S_OK) {
            return spoken;
        }
        const auto text = [&](HRESULT (STDMETHODCALLTYPE IAccessible::*get)(VARIANT, BSTR*)) {
            BSTR got = nullptr;
            const HRESULT result = (object.Get()->*get)(child, &got);
            return Take(result, got);
        };
        spoken.name = text(&IAccessible::get_accName);
        spoken.value = text(&IAccessible::get_accValue);
        spoken.description = text(&IAccessible::get_accDescription);
        spoken.help = text(&IAccessible::get_accHelp);
        VARIANT number;
        VariantInit(&number);
        if (object->get_accRole(child, &number) == S_OK) {
            spoken.role = number.lVal;
        }
        if (object->get_accState(child, &number) == S_OK) {
            spoken.state = number.lVal;
        }
        return spoken;
    }

    static inline Listener* current_ = nullptr;
    const HWINEVENTHOOK hook_;
    std::vector<Spoken> heard_;
};

class SpokenTest : public testing::Test {
  protected:
    void SetUp() override {
        Machine::ResetToInstalled();
        ASSERT_TRUE(service_.Start(harness::Protocol::kPipeName));
        program_.emplace();
        ASSERT_TRUE(program_->WaitForWindow());
        SetForegroundWindow(program_->Window());
        listener_ = std::make_unique<Listener>(program_->ProcessId());
    }

    // What was recorded before is forgotten.
    void ListenAnew() {
        listener_.reset();
        listener_ = std::make_unique<Listener>(program_->ProcessId());
    }

    PipeServer service_;
    std::optional<Program> program_;
    std::unique_ptr<Listener> listener_;
};

TEST_F(SpokenTest, ABackgroundThatTheArrowsReachTellsItsPlaceAndThatItIsChosen) {
    const auto none = program_->Find(L"none_background_btn");
    ASSERT_TRUE(none);
    AccessibleWindow(program_->Window()).Press(none->id);
    const AccessibleWindow window(program_->Window());
    for (int tabs = 0; tabs < 20 && window.FocusedId() != none->id; ++tabs) {
        const long before = window.FocusedId();
        program_->PressKey(VK_TAB);
        ASSERT_TRUE(harness::PumpUntil([&] { return window.FocusedId() != before; }));
    }
    program_->PressKey(VK_RIGHT);
    const auto focus = listener_->WaitFor(
        EVENT_OBJECT_FOCUS, [](const Spoken& spoken) { return spoken.description == L"Background, 2 of 15"; });
    ASSERT_TRUE(focus);
    EXPECT_EQ(focus->name, L"Meeting room");
    EXPECT_EQ(focus->help, L"Background, 2 of 15");
    EXPECT_EQ(focus->role, ROLE_SYSTEM_RADIOBUTTON);
    EXPECT_TRUE(focus->state & STATE_SYSTEM_FOCUSED);
    const auto chosen = listener_->WaitFor(EVENT_OBJECT_STATECHANGE, [&](const Spoken& spoken) {
        return spoken.child == focus->child && (spoken.state & STATE_SYSTEM_CHECKED) != 0;
    });
    EXPECT_TRUE(chosen);
    // To the add button: it is told, and opens nothing.
    program_->PressKey(VK_LEFT);
    EXPECT_TRUE(harness::PumpUntil([] { return Machine::Number(L"lumi_camera_background_replacement") == 0U; }));
    program_->PressKey(VK_LEFT);
    const auto add = listener_->WaitFor(
        EVENT_OBJECT_FOCUS, [](const Spoken& spoken) { return spoken.description == L"Background, 15 of 15"; });
    ASSERT_TRUE(add);
    EXPECT_EQ(add->role, ROLE_SYSTEM_PUSHBUTTON);
    EXPECT_EQ(Machine::Number(L"lumi_camera_background_replacement"), 0U);
    EXPECT_EQ(CountWindows(L"#32770"), 0);
}

TEST_F(SpokenTest, APageThatComesIsTold) {
    program_->Click(L"show_detail_btn");
    EXPECT_TRUE(listener_->WaitFor(EVENT_OBJECT_REORDER, [this](const Spoken& spoken) {
        return spoken.window == program_->Window() && spoken.child == CHILDID_SELF && spoken.name == L"Pixora";
    }));
    EXPECT_TRUE(listener_->WaitFor(EVENT_OBJECT_SHOW,
                                   [](const Spoken& spoken) { return spoken.role == ROLE_SYSTEM_PUSHBUTTON; }));
}

TEST_F(SpokenTest, ABoxTellsItsTitleAndItsTextAndBeginsOnItsButton) {
    harness::TestLog::Allow(testing::_);  // there is no camera
    program_->Click(L"preview_switch");
    const auto dialog = listener_->WaitFor(EVENT_SYSTEM_DIALOGSTART, [](const Spoken&) { return true; });
    ASSERT_TRUE(dialog);
    EXPECT_EQ(dialog->name, L"Pixora");
    EXPECT_EQ(dialog->role, ROLE_SYSTEM_DIALOG);
    EXPECT_THAT(dialog->description, testing::HasSubstr(L"The camera can’t be used."));
    EXPECT_EQ(dialog->help, dialog->description);
    const auto button = listener_->WaitFor(EVENT_OBJECT_FOCUS, [&](const Spoken& spoken) {
        return spoken.window == dialog->window && spoken.child != CHILDID_SELF;
    });
    ASSERT_TRUE(button);
    EXPECT_EQ(button->name, L"OK");
    EXPECT_TRUE(button->state & STATE_SYSTEM_FOCUSED);
    EXPECT_TRUE(button->state & STATE_SYSTEM_DEFAULT);
    // Alt+F4 is its close button: the window below can be used again.
    program_->PressKey(VK_F4, true);
    EXPECT_TRUE(listener_->WaitFor(EVENT_SYSTEM_DIALOGEND, [](const Spoken&) { return true; }));
    ASSERT_TRUE(harness::PumpUntil([&] { return !IsWindow(dialog->window); }));
    program_->Click(L"closebtn");
    EXPECT_EQ(program_->WaitForEnd(), 0U);
}

TEST_F(SpokenTest, ThePanelThatOpensIsTold) {
    ASSERT_TRUE(program_->Reveal(L"beauty_person_btn"));
    program_->Click(L"beauty_person_btn");
    const auto slider =
        listener_->WaitFor(EVENT_OBJECT_SHOW, [](const Spoken& spoken) { return spoken.name == L"Slim face 5"; });
    ASSERT_TRUE(slider);
    EXPECT_EQ(slider->role, ROLE_SYSTEM_SLIDER);
    EXPECT_EQ(slider->value, L"5");
    EXPECT_TRUE(
        listener_->WaitFor(EVENT_OBJECT_REORDER, [](const Spoken& spoken) { return spoken.child == CHILDID_SELF; }));
    ASSERT_TRUE(harness::PumpUntil([this] { return program_->Find(L"slider_face").has_value(); }));
    ASSERT_TRUE(program_->Reveal(L"slider_smooth"));
    const auto smooth = program_->Find(L"slider_smooth");
    ASSERT_TRUE(smooth);
    AccessibleWindow(program_->Window()).SetValue(smooth->id, L"7");
    const auto changed =
        listener_->WaitFor(EVENT_OBJECT_VALUECHANGE, [&](const Spoken& spoken) { return spoken.child == smooth->id; });
    ASSERT_TRUE(changed);
    EXPECT_EQ(changed->value, L"7");
    EXPECT_EQ(changed->name, L"Smooth skin 7");
}

TEST_F(SpokenTest, ABackgroundThatComesOrGoesIsTold) {
    const std::wstring picture = ProgramFolder() + L"..\\test-media\\backgrounds\\baseline.jpg";
    const std::wstring item = L"custom_background_btn_0";
    FileDialog dialog;
    ASSERT_TRUE(program_->Reveal(L"custom_background_btn"));
    program_->Click(L"custom_background_btn");
    ASSERT_TRUE(dialog.WaitFor(program_->Window()));
    dialog.Choose(picture);
    ASSERT_TRUE(dialog.WaitForEnd());
    const auto created = listener_->WaitFor(EVENT_OBJECT_CREATE,
                                            [](const Spoken& spoken) { return spoken.name == L"Custom background 1"; });
    ASSERT_TRUE(created);
    EXPECT_EQ(created->role, ROLE_SYSTEM_RADIOBUTTON);
    EXPECT_EQ(created->description, L"Background, 15 of 16");
    ListenAnew();
    const AccessibleWindow window(program_->Window());
    ASSERT_TRUE(harness::PumpUntil([&] { return window.FocusedId() != 0; }));
    for (int tabs = 0; tabs < 20 && window.FocusedId() != created->child; ++tabs) {
        const long before = window.FocusedId();
        program_->PressKey(VK_TAB);
        ASSERT_TRUE(harness::PumpUntil([&] { return window.FocusedId() != before; }));
    }
    program_->PressKey(VK_DELETE);
    const auto question = listener_->WaitFor(EVENT_SYSTEM_DIALOGSTART, [](const Spoken&) { return true; });
    ASSERT_TRUE(question);
    program_->PressKey(VK_RETURN);
    EXPECT_TRUE(
        listener_->WaitFor(EVENT_OBJECT_DESTROY, [&](const Spoken& spoken) { return spoken.child == created->child; }));
    EXPECT_TRUE(
        listener_->WaitFor(EVENT_OBJECT_REORDER, [](const Spoken& spoken) { return spoken.child == CHILDID_SELF; }));
}

// The program with the demo camera.
class SpokenPreviewTest : public SpokenTest {
  protected:
    void SetUp() override {
        Machine::UseProgram(L"PixoraDemo");
        SpokenTest::SetUp();
    }
    void TearDown() override {
        program_.reset();
        Machine::UseProgram(L"Pixora");
        SetEnvironmentVariableW(L"PIXORA_DEMO_CAMERA", nullptr);
    }
};

TEST_F(SpokenPreviewTest, ThePreviewTellsThatItHasAPictureAndThatItHasNone) {
    const auto says = [this](const wchar_t* name) {
        return listener_->WaitFor(kLiveRegionChanged, [&](const Spoken& spoken) { return spoken.name == name; });
    };
    program_->Click(L"preview_switch");
    EXPECT_TRUE(says(L"Camera preview"));
    ASSERT_TRUE(harness::PumpUntil([this] {
        const auto control = program_->Find(L"preview_switch");
        return control && (control->state & STATE_SYSTEM_UNAVAILABLE) == 0;
    }));
    program_->Click(L"preview_switch");
    EXPECT_TRUE(says(L"Illustration of the camera"));
}

}  // namespace
}  // namespace e2e
