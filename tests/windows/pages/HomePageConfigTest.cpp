// The feature configuration file beside the program. These tests write it, so their program has a folder of its own.
#include <fstream>

#include "tests/support/WineOnly.h"
#include "tests/windows/pages/PageTests.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kLoadFailed[] = "[L4] load lumi_camera_config Xml fail(HomePage::GetCameraXmlConfig)";
constexpr char kNoRoot[] = "[L4] lumi_camera_config xml root node is null(HomePage::GetCameraXmlConfig)";

std::string ValueIs(const std::string& value) {
    return "[L3] lumi_camera_config node BackgroudImage value is " + value + "(HomePage::GetCameraXmlConfig)";
}

class ConfigFile {
  public:
    static std::wstring Folder() { return DuiLib::CPaintManagerUI::GetInstancePath() + L"plugins\\"; }
    static std::wstring Path() { return Folder() + L"lumi_camera_config.xml"; }
    static void Write(const std::string& text) {
        CreateDirectoryW(Folder().c_str(), nullptr);
        std::ofstream(Path().c_str(), std::ios::binary) << text;
    }
    static void Remove() { DeleteFileW(Path().c_str()); }
};

// Says what machine this is, as its firmware does.
class Product {
  public:
    explicit Product(const wchar_t* name) {
        wchar_t text[256] = {};
        DWORD size = sizeof(text);
        if (RegGetValueW(HKEY_LOCAL_MACHINE, kKey, kValue, RRF_RT_REG_SZ, nullptr, text, &size) == ERROR_SUCCESS)
            before_ = text;
        Set(name);
    }
    ~Product() {
        if (before_)
            Set(before_->c_str());
        else
            RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, kKey, kValue);
    }

  private:
    static constexpr wchar_t kKey[] = L"HARDWARE\\DESCRIPTION\\System\\BIOS";
    static constexpr wchar_t kValue[] = L"SystemProductName";
    static void Set(const wchar_t* name) {
        HKEY key = nullptr;
        ASSERT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, kKey, 0, KEY_SET_VALUE, &key), ERROR_SUCCESS);
        EXPECT_EQ(RegSetValueExW(key, kValue, 0, REG_SZ, reinterpret_cast<const BYTE*>(name),
                                 static_cast<DWORD>((wcslen(name) + 1) * sizeof(wchar_t))),
                  ERROR_SUCCESS);
        RegCloseKey(key);
    }
    std::optional<std::wstring> before_;
};

class HomePageConfigTest : public ProgramTest {
  protected:
    void TearDown() override {
        ConfigFile::Remove();
        ProgramTest::TearDown();
    }
    // Reads the setting and compares the result and the lines that it left.
    void ExpectRead(int value, const std::vector<std::string>& lines) {
        const std::size_t before = LogOf("HomePage::GetCameraXmlConfig").size();
        EXPECT_EQ(HomePage::GetCameraXmlConfig("BackgroudImage"), value);
        std::vector<std::string> all = LogOf("HomePage::GetCameraXmlConfig");
        all.erase(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(before));
        EXPECT_EQ(all, lines);
    }
    void ExpectReadOf(const std::string& attribute, int value, const std::vector<std::string>& lines) {
        ConfigFile::Write("<Any><Default><BackgroudImage " + attribute + "/></Default></Any>");
        ExpectRead(value, lines);
    }
};

TEST_F(HomePageConfigTest, ReadsTheDefault) {
    ExpectReadOf("value=\"1\"", 1, {ValueIs("1")});
    ExpectReadOf("value=\"0\"", 0, {ValueIs("0")});
    ExpectReadOf("value=\"42\"", 42, {ValueIs("42")});
    ExpectReadOf("value=\"-3\"", -3, {ValueIs("-3")});
    ExpectReadOf("value=\" \t+7\"", 7, {ValueIs("7")});
}

TEST_F(HomePageConfigTest, TextBehindTheNumberIsIgnored) {
    ExpectReadOf("value=\"1abc\"", 1, {ValueIs("1")});
    ExpectReadOf("value=\"2 3\"", 2, {ValueIs("2")});
    ExpectReadOf("value=\"1.9\"", 1, {ValueIs("1")});
}

TEST_F(HomePageConfigTest, WhatIsNoNumberIsLogged) {
    const std::string line = "[L3] lumi_camera_config get value error: stoi(HomePage::GetCameraXmlConfig)";
    for (const char* attribute : {"value=\"abc\"", "value=\"\"", "value=\"99999999999\"", "other=\"1\"", ""})
        ExpectReadOf(attribute, 0, {line, ValueIs("0")});
}

TEST_F(HomePageConfigTest, AnEmptyKeyIsNotLookedFor) {
    EXPECT_EQ(HomePage::GetCameraXmlConfig(""), 0);
    EXPECT_THAT(LogOf("HomePage::GetCameraXmlConfig"), IsEmpty());
}

TEST_F(HomePageConfigTest, AMissingFileIsLogged) {
    Expect(kLoadFailed);
    ExpectRead(0, {kLoadFailed});
}

TEST_F(HomePageConfigTest, ABrokenFileIsLogged) {
    Expect(kLoadFailed);
    for (const char* text : {"<Any><Default>", "<Any></Other>", "<Any", "no xml at all",
                             "<Any><Default><BackgroudImage value=\"1\"/></Default></Any><Second/>"}) {
        ConfigFile::Write(text);
        ExpectRead(0, {kLoadFailed});
    }
}

TEST_F(HomePageConfigTest, WithoutARootItIsLogged) {
    Expect(kNoRoot);
    for (const char* text : {"", "<!-- nothing -->", "<?xml version=\"1.0\"?>", "  \n"}) {
        ConfigFile::Write(text);
        ExpectRead(0, {kNoRoot});
    }
}

TEST_F(HomePageConfigTest, ASettingThatIsNowhereIsNotLogged) {
    for (const char* text :
         {"<Any/>", "<Any><Default/></Any>", "<Any><Default><Other value=\"1\"/></Default></Any>",
          "<Any><BackgroudImage value=\"1\"/></Any>", "<Any><default><BackgroudImage value=\"1\"/></default></Any>"}) {
        ConfigFile::Write(text);
        ExpectRead(0, {});
    }
}

TEST_F(HomePageConfigTest, TheProductComesFirst) {
    PIXORA_WINE_ONLY("another name would be the machine's");
    const Product product(L"NotoraOne");
    ConfigFile::Write(
        "<Any><Default><BackgroudImage value=\"0\"/></Default><NotoraOne><BackgroudImage "
        "value=\"1\"/></NotoraOne></Any>");
    ExpectRead(1, {ValueIs("1")});
}

TEST_F(HomePageConfigTest, AProductWithoutTheSettingHasTheDefault) {
    PIXORA_WINE_ONLY("another name would be the machine's");
    const Product product(L"NotoraOne");
    ConfigFile::Write(
        "<Any><NotoraOne><Other value=\"1\"/></NotoraOne><Default><BackgroudImage value=\"4\"/></Default></Any>");
    ExpectRead(4, {ValueIs("4")});
    ConfigFile::Write(
        "<Any><NotoraTwo><BackgroudImage value=\"1\"/></NotoraTwo>"
        "<Default><BackgroudImage value=\"4\"/></Default></Any>");
    ExpectRead(4, {ValueIs("4")});
}

TEST_F(HomePageConfigTest, AMachineWithoutANameHasTheDefault) {
    PIXORA_WINE_ONLY("another name would be the machine's");
    const Product product(L"");
    ConfigFile::Write("<Any><Default><BackgroudImage value=\"4\"/></Default></Any>");
    ExpectRead(4, {ValueIs("4")});
}

TEST_F(HomePageConfigTest, EachReadSeesTheFileAsItIsNow) {
    ExpectReadOf("value=\"1\"", 1, {ValueIs("1")});
    ExpectReadOf("value=\"2\"", 2, {ValueIs("2")});
}

TEST_F(HomePageConfigTest, OtherKeysAreReadToo) {
    ConfigFile::Write("<Any><Default><Sound value=\"11\"/></Default></Any>");
    EXPECT_EQ(HomePage::GetCameraXmlConfig("Sound"), 11);
    EXPECT_THAT(LogOf("HomePage::GetCameraXmlConfig"),
                ElementsAre("[L3] lumi_camera_config node Sound value is 11(HomePage::GetCameraXmlConfig)"));
}

// --- the picture that it chooses

class CameraPictureTest : public HomePageTest {
  protected:
    void TearDown() override {
        ConfigFile::Remove();
        HomePageTest::TearDown();
    }
    void SetUp() override {
        ConfigFile::Write("<Any><Default><BackgroudImage value=\"5\"/></Default></Any>");
        HomePageTest::SetUp();
    }
    std::wstring PictureFor(const std::string& value) {
        Control(L"preview_wnd").SetBkImage(L"drawable/LumiCamera/thumb_none.png");
        ConfigFile::Write("<Any><Default><BackgroudImage value=\"" + value + "\"/></Default></Any>");
        Refresh();
        return Control(L"preview_wnd").GetBkImage();
    }
};

TEST_F(CameraPictureTest, ZeroIsTheNotebookAndOneTheDesktop) {
    EXPECT_EQ(PictureFor("0"), L"file='drawable/LumiCamera/img_notora_camera.png' reverse='true'");
    EXPECT_EQ(PictureFor("1"), L"file='drawable/LumiCamera/img_deskora_camera.png' reverse='true'");
    EXPECT_EQ(PictureFor("abc"), L"file='drawable/LumiCamera/img_notora_camera.png' reverse='true'");
}

TEST_F(CameraPictureTest, AnyOtherNumberLeavesIt) {
    EXPECT_EQ(PictureFor("2"), L"drawable/LumiCamera/thumb_none.png");
    EXPECT_EQ(PictureFor("-1"), L"drawable/LumiCamera/thumb_none.png");
}

TEST_F(CameraPictureTest, ASecondReadComesOnlyWhenTheFirstIsNotZero) {
    const std::size_t before = LogOf("HomePage::GetCameraXmlConfig").size();
    PictureFor("0");
    EXPECT_EQ(LogOf("HomePage::GetCameraXmlConfig").size(), before + 1);
    PictureFor("2");
    EXPECT_EQ(LogOf("HomePage::GetCameraXmlConfig").size(), before + 3);
}

}  // namespace
