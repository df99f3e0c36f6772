#include "service/OwnBackgroundList.h"

#include <gmock/gmock.h>

namespace {

using service::OwnBackgroundList;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

const CustomImageRecord kImage{L"a", 0, 14, L"C:\\a.jpg", L"D:\\photo.png"};
const CustomImageRecord kVideo{L"b", 1, 15, L"C:\\b.jpg", L"D:\\clip.mp4"};
const CustomImageRecord kLast{L"c", 0, 16, L"C:\\c.jpg", L"D:\\other.png"};

OwnBackgroundList Three() {
    OwnBackgroundList list;
    list.Assign({kImage, kVideo});
    list.Append(kLast);
    return list;
}

TEST(OwnBackgroundListTest, KeepsTheOrderOfAddition) {
    const OwnBackgroundList list = Three();
    EXPECT_THAT(list.Records(), ElementsAre(kImage, kVideo, kLast));
    EXPECT_EQ(*list.Find(L"b"), kVideo);
    EXPECT_EQ(list.Find(L"d"), nullptr);
    EXPECT_EQ(list.Find(L""), nullptr);
}

TEST(OwnBackgroundListTest, PathsComeWhenTheyAreSet) {
    OwnBackgroundList list = Three();
    EXPECT_THAT(list.FilePaths(), IsEmpty());
    list.SetPaths(L"a", L"not a video's");
    list.SetPaths(L"b", L"E:\\clip.mp4");
    list.SetPaths(L"nobody", L"x");
    EXPECT_THAT(list.FilePaths(),
                ElementsAre(Pair(L"a", L"C:\\a.jpg"), Pair(L"b", L"C:\\b.jpg"), Pair(L"b_video", L"E:\\clip.mp4")));
    EXPECT_EQ(*list.PathOf(L"b_video"), L"E:\\clip.mp4");
    EXPECT_EQ(list.PathOf(L"c"), nullptr);
    list.Assign({kImage});
    EXPECT_THAT(list.FilePaths(), IsEmpty());
    EXPECT_THAT(list.Records(), ElementsAre(kImage));
}

TEST(OwnBackgroundListTest, WhatIsRemovedLeavesTheVideosPath) {
    OwnBackgroundList list = Three();
    list.SetPaths(L"b", L"E:\\clip.mp4");
    list.Remove(L"b");
    EXPECT_THAT(list.Records(), ElementsAre(kImage, kLast));
    EXPECT_THAT(list.FilePaths(), ElementsAre(Pair(L"b_video", L"E:\\clip.mp4")));
    list.Remove(L"b");
    EXPECT_EQ(list.Records().size(), 2u);
}

TEST(OwnBackgroundListTest, AGapIsClosedByThoseBehindIt) {
    OwnBackgroundList list = Three();
    list.SetIndex(L"a", 20);
    list.SetIndex(L"nobody", 3);
    list.CloseGap(15);
    EXPECT_EQ(list.Find(L"a")->index, 19);
    EXPECT_EQ(list.Find(L"b")->index, 15) << "the cell itself";
    EXPECT_EQ(list.Find(L"c")->index, 15);
}

TEST(OwnBackgroundListTest, NamesAreTakenByWhatIsOnlyListedToo) {
    OwnBackgroundList list = Three();
    list.SetPaths(L"b", L"E:\\clip.mp4");
    list.Remove(L"b");
    list.SetPaths(L"a", L"");
    EXPECT_THAT(list.Taken(),
                ElementsAre(Pair(L"a", L"C:\\a.jpg"), Pair(L"b_video", L"E:\\clip.mp4"), Pair(L"c", L"C:\\c.jpg")));
}

TEST(OwnBackgroundListTest, TheRestComesWithTheRecords) {
    OwnBackgroundList list;
    EXPECT_EQ(list.Rest(), L"");
    list.Assign({kImage}, L"rest");
    list.Append(kLast);
    list.Remove(L"a");
    EXPECT_EQ(list.Rest(), L"rest");
    list.Assign({kImage});
    EXPECT_EQ(list.Rest(), L"");
}

TEST(OwnBackgroundListTest, ThirtyTwoAreFull) {
    OwnBackgroundList list;
    list.Assign(std::vector<CustomImageRecord>(31, kImage));
    EXPECT_FALSE(list.IsFull());
    list.Append(kLast);
    EXPECT_TRUE(list.IsFull());
}

}  // namespace
