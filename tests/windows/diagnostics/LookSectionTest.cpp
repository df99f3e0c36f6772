// How the system looks and what one can point with, as the report tells it.
#include <gmock/gmock.h>
#include <windows.h>

#include <map>
#include <string>

#include "diagnostics/Sections.h"
#include "tests/support/ImportHook.h"
#include "tests/support/PrivateRegistry.h"

namespace diagnostics {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

class LookSectionTest : public testing::Test {
  protected:
    ~LookSectionTest() override {
        metrics_.clear();
        contrastFlags_ = 0;
    }
    static void SetUserNumber(const wchar_t* key, const wchar_t* name, DWORD value) {
        RegSetKeyValueW(HKEY_CURRENT_USER, key, name, REG_DWORD, &value, sizeof value);
    }
    static std::string Look() {
        Report report;
        AddLook(report);
        EXPECT_EQ(report.WrongCount(), 0);
        return report.Text();
    }
    static int WINAPI Metric(int index) { return metrics_[index]; }
    static BOOL WINAPI Parameters(UINT action, UINT size, PVOID value, UINT) {
        auto* const contrast = static_cast<HIGHCONTRASTW*>(value);
        if (action != SPI_GETHIGHCONTRAST || size != sizeof *contrast || contrast->cbSize != size) {
            return FALSE;
        }
        contrast->dwFlags = contrastFlags_;
        return TRUE;
    }

    static inline std::map<int, int> metrics_;
    static inline DWORD contrastFlags_ = 0;

  private:
    const harness::PrivateRegistry registry_;
    const harness::ImportHook metricsHook_{nullptr, "GetSystemMetrics", &Metric};
    const harness::ImportHook parametersHook_{nullptr, "SystemParametersInfoW", &Parameters};
};

TEST_F(LookSectionTest, WithoutSettingsItIsTheSystemsOwnLook) {
    contrastFlags_ = HCF_AVAILABLE;
    const std::string text = Look();
    EXPECT_THAT(text, HasSubstr("Look and input\n"));
    EXPECT_THAT(text, HasSubstr("programs are light, contrast theme off\n"));
    EXPECT_THAT(text, HasSubstr("size of text 100 %\n"));
    EXPECT_THAT(text, HasSubstr("no mouse\n"));
    EXPECT_THAT(text, HasSubstr("no touch\n"));
    EXPECT_THAT(text, Not(HasSubstr("pen")));
    EXPECT_THAT(text, Not(HasSubstr("remote")));
}

TEST_F(LookSectionTest, TheUsersSettingsAreNamed) {
    SetUserNumber(L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Themes\\Personalize", L"AppsUseLightTheme", 0);
    SetUserNumber(L"SOFTWARE\\Microsoft\\Accessibility", L"TextScaleFactor", 175);
    contrastFlags_ = HCF_HIGHCONTRASTON;
    const std::string text = Look();
    EXPECT_THAT(text, HasSubstr("programs are dark, contrast theme on\n"));
    EXPECT_THAT(text, HasSubstr("size of text 175 %\n"));
}

TEST_F(LookSectionTest, InputDevicesThatAreReadyAreNamed) {
    metrics_ = {{SM_CMOUSEBUTTONS, 5}, {SM_MAXIMUMTOUCHES, 10}, {SM_REMOTESESSION, 1}};
    metrics_[SM_DIGITIZER] = NID_INTEGRATED_TOUCH | NID_EXTERNAL_PEN;
    EXPECT_THAT(Look(), AllOf(HasSubstr("no touch\n"), Not(HasSubstr("a pen")))) << "not ready yet";
    metrics_[SM_DIGITIZER] |= NID_READY;
    const std::string text = Look();
    EXPECT_THAT(text, HasSubstr("mouse with 5 buttons\n"));
    EXPECT_THAT(text, HasSubstr("touch with 10 fingers\n"));
    EXPECT_THAT(text, HasSubstr("a pen\n"));
    EXPECT_THAT(text, HasSubstr("a remote session\n"));
    metrics_[SM_DIGITIZER] = NID_READY | NID_EXTERNAL_TOUCH | NID_INTEGRATED_PEN;
    EXPECT_THAT(Look(), AllOf(HasSubstr("touch with 10 fingers"), HasSubstr("a pen")));
}

}  // namespace
}  // namespace diagnostics
