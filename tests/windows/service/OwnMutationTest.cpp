// Damaged pictures and videos, by the hundred: whatever is in them, the checks answer and adding does no harm.
#include <fstream>
#include <random>
#include <stdexcept>

#include "tests/windows/service/OwnBackgrounds.h"

namespace {

namespace fs = std::filesystem;

class OwnMutationTest : public OwnBackgroundsTest {
  protected:
    // A copy with some bytes changed, most of them near the beginning, where the headers are; now and then cut.
    fs::path Mutated(const wchar_t* medium, int number) {
        std::vector<char> content = Content(Media(medium));
        if (content.empty()) {
            throw std::runtime_error("the media of the tests have not been made");
        }
        const int changes = 1 + static_cast<int>(random_() % 8);
        for (int i = 0; i < changes; ++i) {
            const std::size_t range = random_() % 3 == 0 ? content.size() : std::min<std::size_t>(content.size(), 600);
            content[random_() % range] = static_cast<char>(random_());
        }
        if (random_() % 6 == 0) {
            content.resize(random_() % content.size());
        }
        const fs::path path = OwnFolder() / (std::to_wstring(number) + fs::path(medium).extension().wstring());
        std::ofstream(path, std::ios::binary).write(content.data(), static_cast<std::streamsize>(content.size()));
        return path;
    }

    std::mt19937 random_{20261121};
};

TEST_F(OwnMutationTest, PicturesAreAnswered) {
    Expect("open error");
    Start();
    int accepted = 0;
    for (int i = 0; i < 400; ++i) {
        constexpr const wchar_t* kMedia[] = {L"baseline.jpg", L"progressive.jpg", L"plain24.png", L"plain.bmp"};
        const fs::path file = Mutated(kMedia[i % 4], i);
        const bool passes = HomeService::CheckImageFile(file);
        EXPECT_EQ(TakeKinds().empty(), passes);
        if (passes && ++accepted % 4 == 0) {
            EXPECT_TRUE(Model().AddCustomBackground(file)) << file;
            EXPECT_GT(Decode(Picture(0)).width, 0u);
            EXPECT_TRUE(Model().DeleteCustomBackground(Name(0)));
        }
        EXPECT_TRUE(fs::remove(file)) << "the file is still open";
    }
    EXPECT_GT(accepted, 20);
    EXPECT_LT(accepted, 400);
}

// Each in a process of its own: a decoder of the system that is kept busy by one file may not serve the next.
TEST_F(OwnMutationTest, VideosAreAnswered) {
    Allow("The work takes too long");  // a decoder that a file hangs is given up
    int accepted = 0;
    for (int i = 0; i < 12; ++i) {
        const fs::path file = Mutated(i % 2 == 0 ? L"clip.mp4" : L"clip.mov", i);
        const DWORD code = RunHelper(L"check \"" + file.wstring() + L"\"");
        EXPECT_TRUE(code == 0 || code == 100) << file << " ended the process with " << code;
        accepted += code == 0 ? 1 : 0;
    }
    EXPECT_GT(accepted, 0);
}

}  // namespace
