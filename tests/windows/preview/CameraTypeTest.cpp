// How the capture and a camera agree on a type, what is asked of the camera and of the system for it, and what happens
// when the type changes later.
#include <mfapi.h>

#include "tests/windows/preview/DoubledPreview.h"

namespace preview_test {
namespace {

using doubles::CameraAnswer;
using doubles::Cameras;
using doubles::CameraScript;
using doubles::CameraType;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr char kReaderError[] = "create source reader error!(Preview::CreateDeviceSource)";
constexpr char kStartError[] = "create device source error!(Preview::Start)";

class CameraTypeTest : public DoubledPreviewTest {
  protected:
    void Natives(std::vector<CameraType> types) {
        ChangeCamera([&](CameraScript& script) { script.natives = std::move(types); });
    }
    // The subtypes that were set, in order.
    static std::vector<GUID> Offers() {
        std::vector<GUID> subtypes;
        for (const CameraType& offer : Camera().offers) {
            subtypes.push_back(offer.subtype);
        }
        return subtypes;
    }
    void ExpectRefused() {
        EXPECT_FALSE(Start());
        EXPECT_THAT(TakeFailures(), ElementsAre(kReaderError, kStartError));
        EXPECT_EQ(preview_->State(), 0U);
        EXPECT_EQ(Camera().reads, 0);
    }
    SIZE SizeOfSwapChain() {
        return {static_cast<LONG>(Drawn().chainParameters.BackBufferWidth),
                static_cast<LONG>(Drawn().chainParameters.BackBufferHeight)};
    }
};

TEST_F(CameraTypeTest, TheCurrentTypeIsTakenAsItIs) {
    for (const GUID& subtype : {MFVideoFormat_RGB32, MFVideoFormat_RGB24, MFVideoFormat_YUY2, MFVideoFormat_NV12}) {
        Natives({Type(subtype, 32, 24), Type(MFVideoFormat_RGB32)});
        Make();
        EXPECT_TRUE(Start());
        EXPECT_EQ(preview_->State(), 1U);
        EXPECT_TRUE(WaitForPresents(3));
        EXPECT_THAT(Offers(), IsEmpty());
        EXPECT_EQ(SizeOfSwapChain().cx, 32);
        Finish();
    }
}

TEST_F(CameraTypeTest, OffersComeInTheirOrderEachOnceForEachType) {
    Natives({Type(MFVideoFormat_MJPG), Type(MFVideoFormat_H264)});
    ChangeCamera(
        [](CameraScript& script) { script.accept = [](const CameraType&) { return std::optional<CameraType>(); }; });
    Make();
    ExpectRefused();
    // The current type, and both natives.
    std::vector<GUID> expected;
    for (int i = 0; i < 3; ++i) {
        for (const GUID& subtype : {MFVideoFormat_RGB32, MFVideoFormat_RGB24, MFVideoFormat_YUY2, MFVideoFormat_NV12}) {
            expected.push_back(subtype);
        }
    }
    EXPECT_EQ(Offers(), expected);
}

TEST_F(CameraTypeTest, AtMostSixtyFourOffersAreMade) {
    Natives(std::vector<CameraType>(100, Type(MFVideoFormat_MJPG)));
    ChangeCamera(
        [](CameraScript& script) { script.accept = [](const CameraType&) { return std::optional<CameraType>(); }; });
    Make();
    ExpectRefused();
    EXPECT_THAT(Offers(), SizeIs(64));
    EXPECT_THAT(Notes(), Contains("the reason is 0xc00d5212(Preview::CreateDeviceSource)")) << "the last refusal";
}

TEST_F(CameraTypeTest, SixtyFourAlsoWhereTheCameraRefusesItsOwnTypes) {
    std::vector<CameraType> types(1, Type(MFVideoFormat_MJPG));
    types.resize(101, Type(MFVideoFormat_NV12));
    Natives(types);
    ChangeCamera(
        [](CameraScript& script) { script.accept = [](const CameraType&) { return std::optional<CameraType>(); }; });
    Make();
    ExpectRefused();
    EXPECT_THAT(Offers(), SizeIs(64));
}

TEST_F(CameraTypeTest, OffersCarryNothingOfTheTypeThatTheyWereCopiedFrom) {
    CameraType compressed = Type(MFVideoFormat_MJPG, 640, 480);
    compressed.stride = 1280;
    compressed.sampleSize = 4711;
    Natives({compressed});
    ChangeCamera([](CameraScript& script) {
        script.accept = [](const CameraType& offered) {
            return offered.subtype == MFVideoFormat_NV12 ? std::optional(offered) : std::nullopt;
        };
    });
    Make();
    EXPECT_TRUE(Start());
    ASSERT_THAT(Camera().offers, SizeIs(4));
    for (const CameraType& offer : Camera().offers) {
        EXPECT_FALSE(offer.stride);
        EXPECT_EQ(offer.sampleSize, 0U);
        EXPECT_EQ(offer.width, 640U);
        EXPECT_EQ(offer.height, 480U);
    }
    EXPECT_TRUE(WaitForPresents(2));
}

TEST_F(CameraTypeTest, TheRendererIsConfiguredForWhatTheDecoderDelivers) {
    Natives({Type(MFVideoFormat_MJPG, 64, 48)});
    ChangeCamera([](CameraScript& script) {
        script.accept = [](const CameraType& offered) {
            CameraType delivered = offered;
            delivered.height = 56;
            delivered.stride = 4 * 64 + 16;
            delivered.aperture = RECT{0, 0, 64, 48};
            return std::optional(delivered);
        };
    });
    Make();
    EXPECT_TRUE(Start());
    EXPECT_TRUE(WaitForPresents(2));
    EXPECT_EQ(SizeOfSwapChain().cy, 56);
    const RECT picture = {0, 0, 64, 48};
    EXPECT_TRUE(IsSame(Drawn().source, picture));
    EXPECT_THAT(Posted(), IsEmpty());
}

TEST_F(CameraTypeTest, ANativeTypeThatIsNotTheCurrentOneIsMadeSo) {
    CameraType second = Type(MFVideoFormat_YUY2, 32, 24);
    second.stride = 80;
    second.sampleSize = 80 * 24;
    Natives({Type(MFVideoFormat_MJPG), second});
    ChangeCamera([](CameraScript& script) {
        script.accept = [](const CameraType& offered) {
            return offered.width == 32 ? std::optional(offered) : std::nullopt;
        };
    });
    Make();
    EXPECT_TRUE(Start());
    // Four offers of the current type, four of the first native one, and then the type that can be drawn.
    ASSERT_THAT(Camera().offers, SizeIs(9));
    EXPECT_EQ(Camera().offers.back().subtype, MFVideoFormat_YUY2);
    EXPECT_EQ(Camera().offers.back().stride, 80) << "unchanged";
    EXPECT_EQ(Camera().offers.back().sampleSize, 1920U) << "unchanged";
    EXPECT_TRUE(WaitForPresents(2));
    EXPECT_EQ(SizeOfSwapChain().cx, 32);
}

TEST_F(CameraTypeTest, WhereTheReaderRefusesANativeTypeTheWalkGoesOn) {
    Natives({Type(MFVideoFormat_MJPG), Type(MFVideoFormat_YUY2, 32, 24), Type(MFVideoFormat_NV12, 16, 12)});
    ChangeCamera([](CameraScript& script) {
        script.accept = [](const CameraType& offered) {
            return offered.width == 16 ? std::optional(offered) : std::nullopt;
        };
    });
    Make();
    EXPECT_TRUE(Start());
    ASSERT_THAT(Camera().offers, SizeIs(10));
    EXPECT_TRUE(WaitForPresents(2));
    EXPECT_EQ(SizeOfSwapChain().cx, 16);
}

TEST_F(CameraTypeTest, ATypeThatCannotBeConfiguredIsPassedOver) {
    Natives({Type(MFVideoFormat_YUY2, 0, 24), Type(MFVideoFormat_YUY2, 32, 24)});
    Make();
    EXPECT_TRUE(Start());
    EXPECT_TRUE(WaitForPresents(2));
    EXPECT_EQ(SizeOfSwapChain().cx, 32);
}

TEST_F(CameraTypeTest, EachStepThatFailsIsToldByItsName) {
    const auto fails = [&](const std::function<void(CameraScript&)>& change, std::vector<std::string> lines) {
        Cameras::Change([](CameraScript& script) {
            script = {};
            script.natives = {Type(MFVideoFormat_YUY2)};
        });
        ChangeCamera(change);
        Make();
        EXPECT_FALSE(Start());
        EXPECT_EQ(preview_->State(), 0U);
        EXPECT_EQ(TakeFailures(), lines);
        Finish();
    };
    const auto at = [](const char* text) { return std::string(text) + "(Preview::CreateDeviceSource)"; };
    fails([](CameraScript& script) { script.activate = E_ACCESSDENIED; },
          {at("create device source error!"), kStartError});
    EXPECT_THAT(Notes(), Contains("the reason is 0x80070005: the privacy settings keep the camera from this program"
                                  "(Preview::CreateDeviceSource)"));
    fails([](CameraScript& script) { script.createReader = E_FAIL; }, {at("create source reader error!"), kStartError});
    fails([](CameraScript& script) { script.currentType = [](int call) { return call == 1 ? E_FAIL : S_OK; }; },
          {at("get media type error!"), kStartError});
    fails([](CameraScript& script) { script.currentTypeWithoutSubtype = true; },
          {at("get subtype error!"), kStartError});
    fails([](CameraScript& script) { script.currentTypeWithoutSize = true; },
          {at("get frame size error!"), kStartError});
    fails([](CameraScript& script) { script.enumerate = E_FAIL; }, {"enum device error!(Preview::SelectDevice)"});
    fails([](CameraScript& script) { script.links = {}; }, {"can not find any video device!(Preview::SelectDevice)"});
    fails(
        [](CameraScript& script) {
            script.links = {L"usb#vid_046d", L""};
        },
        {"can not find any valid video device!(Preview::SelectDevice)"});
}

TEST_F(CameraTypeTest, WhereTheCurrentTypeIsNotToldTheNativeOnesCount) {
    ChangeCamera([](CameraScript& script) { script.currentType = [](int call) { return call == 0 ? E_FAIL : S_OK; }; });
    Make();
    EXPECT_TRUE(Start());
    EXPECT_THAT(Offers(), SizeIs(1));
    EXPECT_TRUE(WaitForPresents(2));
}

TEST_F(CameraTypeTest, TheErrorOfTheListIsTheResultWhenItEnds) {
    Natives({Type(MFVideoFormat_MJPG)});
    ChangeCamera([](CameraScript& script) { script.noNativeType = E_UNEXPECTED; });
    Make();
    ExpectRefused();
    EXPECT_THAT(Notes(), Contains("the reason is 0x8000ffff(Preview::CreateDeviceSource)"));
}

TEST_F(CameraTypeTest, TheFirstReadThatIsRefusedIsTheReadersFailure) {
    ChangeCamera([](CameraScript& script) {
        script.answer = [](int) {
            CameraAnswer answer;
            answer.readResult = MF_E_INVALIDREQUEST;
            return answer;
        };
    });
    Make();
    EXPECT_FALSE(Start());
    EXPECT_THAT(TakeFailures(), ElementsAre(kReaderError, kStartError));
    EXPECT_THAT(Posted(), IsEmpty());
}

// --- later

// Pictures of the first type, and from the given read on of the second.
std::function<CameraAnswer(int)> ChangesAt(int read, DWORD flag, CameraType first, CameraType second) {
    return [=](int number) {
        CameraAnswer answer;
        if (number == read) {
            answer.flags = flag;
            answer.newType = second;
        }
        answer.sample = doubles::MakeSample(number < read ? first : second, 0);
        return answer;
    };
}

TEST_F(CameraTypeTest, AChangedTypeIsDrawnFromItsFirstFrameOn) {
    for (const DWORD flag : {MF_SOURCE_READERF_CURRENTMEDIATYPECHANGED, MF_SOURCE_READERF_NATIVEMEDIATYPECHANGED}) {
        const auto answer =
            ChangesAt(Camera().reads + 3, flag, Type(MFVideoFormat_YUY2, 64, 48), Type(MFVideoFormat_NV12, 320, 240));
        ChangeCamera([&](CameraScript& script) { script.answer = answer; });
        Make();
        EXPECT_TRUE(Start());
        EXPECT_TRUE(Wait([&] { return SizeOfSwapChain().cx == 320; }));
        EXPECT_TRUE(WaitForPresents(3));
        EXPECT_EQ(Drawn().picture.size(), 320U * 240);
        EXPECT_THAT(Posted(), IsEmpty());
        Finish();
    }
}

TEST_F(CameraTypeTest, AChangeToATypeThatCannotBeDrawnIsPostedAndEndsTheReading) {
    ChangeCamera([&](CameraScript& script) {
        script.answer =
            ChangesAt(2, MF_SOURCE_READERF_CURRENTMEDIATYPECHANGED, Type(MFVideoFormat_YUY2), Type(MFVideoFormat_H264));
    });
    Make();
    EXPECT_TRUE(Start());
    EXPECT_TRUE(WaitForPosted());
    EXPECT_THAT(Posted(), ElementsAre(static_cast<HRESULT>(0xC00D36B4)));
    EXPECT_EQ(Camera().reads, 3);
}

TEST_F(CameraTypeTest, AChangeWithoutASampleCountsForTheNextOne) {
    ChangeCamera([&](CameraScript& script) {
        script.answer = [](int number) {
            CameraAnswer answer;
            if (number == 2) {
                answer.flags = MF_SOURCE_READERF_CURRENTMEDIATYPECHANGED;
                answer.newType = Type(MFVideoFormat_RGB24, 16, 8);
            } else {
                answer.sample =
                    doubles::MakeSample(number < 2 ? Type(MFVideoFormat_YUY2) : Type(MFVideoFormat_RGB24, 16, 8), 0);
            }
            return answer;
        };
    });
    Make();
    EXPECT_TRUE(Start());
    EXPECT_TRUE(Wait([&] { return SizeOfSwapChain().cx == 16; }));
    EXPECT_TRUE(WaitForPresents(3));
    EXPECT_THAT(Posted(), IsEmpty());
    EXPECT_THAT(TakeFailures(), IsEmpty());
}

}  // namespace
}  // namespace preview_test
