// Random series of what a person may do, against a list that the test keeps.
#include <algorithm>
#include <random>

#include "tests/windows/service/OwnBackgrounds.h"

namespace {

namespace fs = std::filesystem;

struct Item {
    std::wstring name;
    bool isVideo;
    fs::path source;
};

class OwnRandomTest : public OwnBackgroundsTest, public testing::WithParamInterface<unsigned> {
  protected:
    void SetUp() override {
        OwnBackgroundsTest::SetUp();
        Start();
    }
    int Upto(int count) { return static_cast<int>(random_() % static_cast<unsigned>(count)); }

    void AddOne() {
        if (expected_.size() == 32) {
            EXPECT_TRUE(Model().IsCustomFull());
            return;
        }
        const bool video = Upto(4) == 0;
        const fs::path source = Own(video ? L"clip.mp4" : L"baseline.jpg",
                                    L"file " + std::to_wstring(++files_) + (video ? L".mp4" : L".jpg"));
        int number = 0;
        const auto taken = [&] {
            return std::any_of(expected_.begin(), expected_.end(),
                               [&](const Item& item) { return item.name == Name(number); });
        };
        while (taken()) {
            ++number;
        }
        ASSERT_TRUE(Model().AddCustomBackground(source));
        expected_.push_back({Name(number), video, source});
        chosen_ = Name(number);
        replacement_ = 5;
    }
    void SelectOne() {
        if (expected_.empty()) {
            return;
        }
        const Item item = expected_[static_cast<std::size_t>(Upto(static_cast<int>(expected_.size())))];
        const bool there = !item.isVideo || fs::exists(item.source);
        EXPECT_EQ(Model().SelectCustomBackground(item.name), there);
        if (there) {
            chosen_ = item.name;
            replacement_ = 5;
        } else {
            Forget(item.name);
            EXPECT_EQ(TakeKinds(), std::vector<int>{1});
        }
    }
    void DeleteOne() {
        if (expected_.empty()) {
            EXPECT_FALSE(Model().DeleteCustomBackground(Name(Upto(32))));
            return;
        }
        const Item item = expected_[static_cast<std::size_t>(Upto(static_cast<int>(expected_.size())))];
        EXPECT_TRUE(Model().DeleteCustomBackground(item.name));
        Forget(item.name);
        EXPECT_TRUE(!fs::exists(item.source) == lost_.contains(item.source));
    }
    void LoseAFile() {
        if (!expected_.empty()) {
            const fs::path source =
                expected_[static_cast<std::size_t>(Upto(static_cast<int>(expected_.size())))].source;
            fs::remove(source);
            lost_.insert({source, true});
        }
    }
    void Forget(const std::wstring& name) {
        std::erase_if(expected_, [&](const Item& item) { return item.name == name; });
        replacement_ = chosen_ == name ? 0 : replacement_;
    }
    void Compare() {
        std::vector<std::wstring> names;
        for (const Item& item : expected_) {
            names.push_back(item.name);
        }
        ASSERT_EQ(GalleryNames(), names);
        const Records saved = Saved();
        ASSERT_EQ(saved.size(), expected_.size());
        for (std::size_t i = 0; i < saved.size(); ++i) {
            EXPECT_EQ(saved[i].name, expected_[i].name);
            EXPECT_EQ(saved[i].isVideo != 0, expected_[i].isVideo);
            EXPECT_EQ(saved[i].sourcePath, expected_[i].source.wstring());
            EXPECT_TRUE(fs::exists(saved[i].thumbPath));
        }
        const auto pictures = std::distance(fs::directory_iterator(UserFolder()), fs::directory_iterator());
        EXPECT_EQ(static_cast<std::size_t>(pictures), expected_.size());
        if (replacement_ >= 0) {
            EXPECT_EQ(Number(L"lumi_camera_background_replacement"), replacement_);
        }
    }

    std::mt19937 random_{GetParam()};
    std::vector<Item> expected_;
    std::map<fs::path, bool> lost_;
    std::wstring chosen_;
    int replacement_ = -1;
    int files_ = 0;
};

TEST_P(OwnRandomTest, TheListIsWhatWasDone) {
    for (int step = 0; step < 120; ++step) {
        SCOPED_TRACE(step);
        const int what = Upto(20);
        if (what < 9) {
            AddOne();
        } else if (what < 13) {
            SelectOne();
        } else if (what < 17) {
            DeleteOne();
        } else if (what < 18) {
            LoseAFile();
        } else {
            Start();
        }
        ASSERT_NO_FATAL_FAILURE(Compare());
    }
    ExpectAllAgree();
}

INSTANTIATE_TEST_SUITE_P(Seeds, OwnRandomTest, testing::Values(1u, 2u, 3u, 4u, 5u));

}  // namespace
