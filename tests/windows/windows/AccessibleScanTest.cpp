// The rules of an accessibility scanner, over every window and in each theme: names, actions, sizes of targets,
// contrast of texts. In the language that the system gives to the process; it is started once for each.
#include <oleacc.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <map>
#include <set>

#include "DuiLib/ButtonUI.h"
#include "DuiLib/ContainerUI.h"
#include "DuiLib/LabelUI.h"
#include "DuiLib/UICulture.h"
#include "suite/common/SystemLibrary.h"
#include "tests/support/FakeLook.h"
#include "tests/windows/support/Screen.h"
#include "tests/windows/windows/WindowTests.h"
#include "windows/DelDoubleCheckPage.h"
#include "windows/MessageTexts.h"
#include "windows/PxDialogWnd.h"
#include "windows/SimpleMessageBox.h"

namespace {

using DuiLib::AccessibleInfo;
using DuiLib::CControlUI;
using DuiLib::Rect;
using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr int kSmallestTargetDip = 24;
constexpr int kCornerPx = 3;
constexpr double kLeastContrast = 4.5;
constexpr double kLeastInContrastThemes = 7;

constinit suite::SystemLibrary oleacc(L"oleacc.dll");
constinit suite::SystemFunction<decltype(&GetRoleTextW)> getRoleText(oleacc, "GetRoleTextW");

std::string Narrow(const std::wstring& text) {
    std::string narrow(text.size() * 4, '\0');
    narrow.resize(static_cast<std::size_t>(WideCharToMultiByte(CP_UTF8, 0, text.c_str(), static_cast<int>(text.size()),
                                                               narrow.data(), static_cast<int>(narrow.size()), nullptr,
                                                               nullptr)));
    return narrow;
}

std::wstring Lower(std::wstring text) {
    CharLowerW(text.data());
    return text;
}

double Channel(DWORD value) {
    const double part = value / 255.0;
    return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
}

double Luminance(DWORD rgb) {
    return 0.2126 * Channel((rgb >> 16) & 0xFF) + 0.7152 * Channel((rgb >> 8) & 0xFF) + 0.0722 * Channel(rgb & 0xFF);
}

double Contrast(DWORD one, DWORD other) {
    const auto [dark, light] = std::minmax({Luminance(one), Luminance(other)});
    return (light + 0.05) / (dark + 0.05);
}

// Between the ground and the strongest colour on it: the strokes of small letters are mixed with the ground.
double ContrastIn(const Picture& picture, const Rect& px) {
    std::map<DWORD, int> counts;
    for (int y = px.top; y < px.bottom; ++y) {
        for (int x = px.left; x < px.right; ++x) {
            ++counts[picture.At({x, y})];
        }
    }
    const DWORD ground = std::max_element(counts.begin(), counts.end(), [](const auto& a, const auto& b) {
                             return a.second < b.second;
                         })->first;
    double most = 1;
    for (const auto& [color, count] : counts) {
        most = std::max(most, Contrast(ground, color));
    }
    return most;
}

// What is wrong in that window, one line each.
class Scanner {
  public:
    // Texts have that contrast at least.
    Scanner(DuiLib::CPaintManagerUI& manager, double contrast) : manager_(manager), leastContrast_(contrast) {}

    std::vector<std::string> Scan() {
        manager_.UpdateLayout();
        const Picture picture = PaintedBy(manager_);
        manager_.GetRoot()->Visit([&](CControlUI& control) {
            if (control.IsShown()) {
                CheckElement(control);
                CheckContrast(control, picture);
            }
            return true;
        });
        CheckTargets();
        return found_;
    }

  private:
    static bool IsPressed(long role) {
        return role == ROLE_SYSTEM_PUSHBUTTON || role == ROLE_SYSTEM_CHECKBUTTON || role == ROLE_SYSTEM_RADIOBUTTON;
    }

    void CheckElement(CControlUI& control) {
        const AccessibleInfo info = control.GetAccessibleInfo();
        if ((IsPressed(info.role) || info.role == ROLE_SYSTEM_LINK) && info.defaultAction.empty()) {
            Add("no action", control);
        }
        if (IsPressed(info.role) && control.IsEnabledInTree()) {
            targets_.push_back(&control);
        }
        if (!control.CanHaveFocus() || info.role == 0) {
            return;
        }
        if (info.name.empty()) {
            Add("no name", control);
        } else if (!names_.emplace(info.name, control.GetAccessibleDescription()).second) {
            Add("doubled", control);
        }
        wchar_t role[64] = {};
        if (getRoleText.CallOr(0, static_cast<DWORD>(info.role), role, 64) > 0 &&
            Lower(info.name).find(Lower(role)) != std::wstring::npos) {
            Add("role word", control);
        }
    }

    // Small ones have room around them: a circle of the smallest size around each touches no other.
    void CheckTargets() {
        for (const CControlUI* one : targets_) {
            if (!IsSmall(*one)) {
                continue;
            }
            for (const CControlUI* other : targets_) {
                const Rect& to = other->GetPos();
                const DuiLib::Point from = Middle(*one);
                const int dx =
                    IsSmall(*other) ? Middle(*other).x - from.x : std::max({to.left - from.x, from.x - to.right, 0});
                const int dy =
                    IsSmall(*other) ? Middle(*other).y - from.y : std::max({to.top - from.y, from.y - to.bottom, 0});
                const int least = IsSmall(*other) ? kSmallestTargetDip : kSmallestTargetDip / 2;
                if (one != other && dx * dx + dy * dy < least * least) {
                    Add("small beside another", *one);
                }
            }
        }
    }
    static bool IsSmall(const CControlUI& control) {
        return std::min(control.GetPos().Width(), control.GetPos().Height()) < kSmallestTargetDip;
    }
    static DuiLib::Point Middle(const CControlUI& control) {
        const Rect& px = control.GetPos();
        return {(px.left + px.right) / 2, (px.top + px.bottom) / 2};
    }

    void CheckContrast(CControlUI& control, const Picture& picture) {
        const auto* const label = dynamic_cast<DuiLib::CLabelUI*>(&control);
        if (!label || label->GetText().empty() || !label->IsEnabledInTree()) {
            return;
        }
        Rect seen = control.GetPos().Intersect({0, 0, picture.widthPx, picture.heightPx});
        for (const CControlUI* c = control.GetParent(); c; c = c->GetParent()) {
            seen = seen.Intersect(c->GetPos());
        }
        // What is scrolled away, or cut by the edge of the list, is not read.
        if (seen != control.GetPos()) {
            return;
        }
        // Without what shows through at round corners.
        const Rect inside = seen.Deflate({kCornerPx, kCornerPx, kCornerPx, kCornerPx});
        if (const double contrast = ContrastIn(picture, inside); contrast < leastContrast_) {
            Add("contrast " + std::to_string(contrast), control);
        }
    }

    void Add(const std::string& what, const CControlUI& control) {
        found_.push_back(what + ": " + Narrow(control.GetName() + L" \"" + control.GetAccessibleInfo().name + L"\""));
    }

    DuiLib::CPaintManagerUI& manager_;
    const double leastContrast_;
    std::set<std::pair<std::wstring, std::wstring>> names_;
    std::vector<const CControlUI*> targets_;
    std::vector<std::string> found_;
};

class AccessibleScanTest : public MainWindowTest {
  protected:
    void TearDown() override {
        Use(false, false);
        MainWindowTest::TearDown();
    }
    // In the light, the dark and a contrast theme.
    std::vector<std::string> Scan(DuiLib::CPaintManagerUI& manager) {
        std::vector<std::string> found = Scanner(manager, kLeastContrast).Scan();
        const auto add = [&](double contrast) {
            std::ranges::copy(Scanner(manager, contrast).Scan(), std::back_inserter(found));
        };
        Use(true, false);
        add(kLeastContrast);
        Use(false, true);
        add(kLeastInContrastThemes);
        Use(false, false);
        return found;
    }
    void Use(bool dark, bool contrast) {
        look_.SetDark(dark);
        look_.highContrast = contrast;
        harness::FakeLook::Tell(Window().GetHWND());
    }
    static std::wstring Text(const wchar_t* key) { return DuiLib::UICulture::GetInstance()->GetString(key); }

    harness::FakeLook look_;
};

TEST_F(AccessibleScanTest, TheHomePage) {
    Write(L"lumi_camera_beauty_person", 1);
    ASSERT_TRUE(Input::PumpUntil([] { return Control(L"slider_smooth").IsShown(); }));
    EXPECT_THAT(Scan(Manager()), IsEmpty());
    // What does not fit is read further down.
    Control<DuiLib::CContainerUI>(L"effects").SetScrollPos({0, 100'000});
    EXPECT_THAT(Scan(Manager()), IsEmpty());
}

TEST_F(AccessibleScanTest, TheIntroduction) {
    Manager().SendNotify(&Control(L"show_detail_btn"), DuiLib::NotifyType::kClick);
    for (const wchar_t* tab : {L"custom_background_option", L"correct_sight_option", L"focus_person_option"}) {
        Manager().UpdateLayout();
        Input::Click(Control(tab));
        EXPECT_THAT(Scan(Manager()), IsEmpty());
    }
}

TEST_F(AccessibleScanTest, TheBoxes) {
    SimpleMessageBox message(&Manager());
    message.SetContent(Text(MessageTextKey(GlobalUtils::MessageBoxKind::kCameraUnavailable)));
    EXPECT_THAT(Scan(message.PaintManager()), IsEmpty());
    DelDoubleCheckPage question(&Manager());
    EXPECT_THAT(Scan(question.PaintManager()), IsEmpty());
    DelDoubleCheckPage notice(&Manager());
    notice.SetMaxLimitText(Text(L"IDS_LUMI_OVER_MAX_LIMIT"));
    EXPECT_THAT(Scan(notice.PaintManager()), IsEmpty());
}

TEST_F(AccessibleScanTest, TheMessageWindow) {
    for (const bool html : {false, true}) {
        PxDialogWnd dialog;
        dialog.Run(GetModuleHandleW(nullptr));
        if (html) {
            dialog.UseHtmlMessage();
        }
        dialog.PaintManager()
            .FindControl(L"msgbox_content")
            ->SetText(Text(html ? L"IDS_LUMI_FUNCTION_UNAVAILABLE" : L"IDS_LUMI_DRIVER_BROKEN"));
        EXPECT_THAT(Scan(dialog.PaintManager()), IsEmpty());
        DestroyWindow(dialog.GetHWND());
        Input::TakeQuit();
    }
}

// The scanner itself.
TEST_F(AccessibleScanTest, WhatIsWrongIsFound) {
    SimpleMessageBox box(&Manager());
    box.SetContent(Text(L"IDS_LUMI_OVER_MAX_LIMIT"));
    DuiLib::CPaintManagerUI& manager = box.PaintManager();
    auto& ok = *manager.FindControlAs<DuiLib::CLabelUI>(L"msg_ok_btn");
    ok.SetText(L"");
    EXPECT_THAT(Scan(manager), Contains(HasSubstr("no name: msg_ok_btn")));
    ok.SetText(Text(L"IDS_LUMI_CLOSE"));
    EXPECT_THAT(Scan(manager), Contains(HasSubstr("doubled: msg_ok_btn")));
    wchar_t role[64] = {};
    ASSERT_GT(getRoleText.CallOr(0, ROLE_SYSTEM_PUSHBUTTON, role, 64), 0U);
    ok.SetText(std::wstring(L"OK ") + role);
    EXPECT_THAT(Scan(manager), Contains(HasSubstr("role word: msg_ok_btn")));
    ok.SetText(L"OK");
    ok.SetTextColor(0xFF3A79F7);  // nearly that of its ground
    EXPECT_THAT(Scan(manager), Contains(HasSubstr("contrast 1.")));
    ok.SetAttribute(L"textcolor", L"onaccent");
    EXPECT_THAT(Scan(manager), IsEmpty());
    ok.SetAttribute(L"minwidth", L"0");
    ok.SetAttribute(L"growheight", L"false");
    for (const wchar_t* name : {L"push_right", L"msg_ok_btn"}) {
        manager.FindControl(name)->SetAttribute(L"width", L"20");
        manager.FindControl(name)->SetAttribute(L"height", L"20");
    }
    auto small = std::make_unique<DuiLib::CButtonUI>();
    small->SetText(L"x");
    small->SetTextColor(0xFF000000);
    small->SetFixedWidth(16);
    small->SetFixedHeight(16);
    manager.FindControlAs<DuiLib::CContainerUI>(L"buttons")->Add(std::move(small));
    EXPECT_THAT(Scan(manager), Contains(HasSubstr("small beside another: msg_ok_btn")));
}

}  // namespace
