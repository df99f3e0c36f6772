#pragma once
// What the tests of the user's own backgrounds share: models of users, a gallery that keeps count, files to add.
//
// The pictures lie where the program puts them, in the machine's one folder; it is emptied before and after each test.
// Thread: the test's, which is in a COM apartment.
#include "service/CustomImageGroup.h"
#include "service/KindNotifier.h"
#include "suite/common/Handle.h"
#include "tests/windows/service/ServiceTest.h"

class OwnBackgroundsTest : public ServiceTest {
  protected:
    using MessageBoxKind = GlobalUtils::MessageBoxKind;
    using Records = std::vector<CustomImageRecord>;

    static constexpr wchar_t kUser[] = L"S-1-5-21-11-22-33-1001";

    void SetUp() override;
    void TearDown() override;

    // A start of the program for that user; the one before has ended.
    void Start(const std::wstring& userSid = kUser);
    HomeService& Model() { return *model_; }

    static std::filesystem::path Base() { return L"C:\\ProgramData\\Comms\\LumiCamera"; }
    static std::filesystem::path UserFolder(const std::wstring& userSid = kUser) { return Base() / userSid; }
    static std::filesystem::path Picture(int number, const std::wstring& userSid = kUser) {
        return UserFolder(userSid) / (Name(number) + L".jpg");
    }
    static std::wstring Name(int number) { return L"custom_background_btn_" + std::to_wstring(number); }
    // One of the files that were made for the tests, by its full path.
    static std::wstring Media(const std::wstring& name);
    // A copy of it among the user's own files.
    std::filesystem::path Own(const std::wstring& medium, const std::wstring& name) const;
    std::filesystem::path OwnFolder() const { return Folder() / L"own"; }

    static Records Saved();
    static std::wstring Text(const std::wstring& name);
    static int Number(const std::wstring& name);
    std::vector<std::wstring> GalleryNames() const;
    // The message kinds since the last call.
    std::vector<int> TakeKinds();

    // What the gallery, the model and the registry say agrees, and each picture can be decoded.
    void ExpectAllAgree();

    // A decoded picture, top row first, 0xFFRRGGBB.
    struct Decoded {
        UINT width = 0, height = 0;
        std::vector<std::uint32_t> pixels;

        std::uint32_t At(UINT x, UINT y) const { return pixels.at(std::size_t{y} * width + x); }
    };
    static Decoded Decode(const std::filesystem::path& path);
    // By its content, not by its name.
    static bool IsJpeg(const std::filesystem::path& path);
    static bool IsBitmap(const std::filesystem::path& path);
    static std::vector<char> Content(const std::filesystem::path& path);

    struct Cell {
        std::wstring name;
        std::wstring path;
        bool isVideo = false;

        bool operator==(const Cell&) const = default;
    };
    static constexpr int kBuiltIn = 14;  // entries before the user's own
    std::vector<Cell> gallery_;

  private:
    HomeServiceTestAccess::Model model_;
    std::vector<int> kinds_;
    std::int64_t hubId_ = 0;
};

// Whether the pixel is about that colour: JPEG does not keep it to the bit.
bool IsAbout(std::uint32_t pixel, std::uint32_t color);
