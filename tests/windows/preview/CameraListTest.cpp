// The list of cameras: an array whose memory no object counts, and which is too small to be missed among the system's
// own losses. It goes back to the system however an opening ends.
#include <mfapi.h>
#include <objbase.h>

#include <mutex>
#include <set>

#include "tests/support/ImportHook.h"
#include "tests/windows/preview/DoubledPreview.h"

namespace preview_test {
namespace {

using doubles::CameraScript;
using testing::IsEmpty;

// While it lives: the blocks in which this program hands lists over. The camera's double takes them; what the system
// takes itself is not seen. Any thread; one at a time.
class ListMemory {
  public:
    ListMemory() : taking_(nullptr, "CoTaskMemAlloc", &Take), giving_(nullptr, "CoTaskMemFree", &GiveBack) {
        take_ = taking_.Original<decltype(take_)>();
        giveBack_ = giving_.Original<decltype(giveBack_)>();
        const std::scoped_lock lock(mutex_);
        blocks_.clear();
        taken_ = 0;
    }
    ListMemory(const ListMemory&) = delete;
    ListMemory& operator=(const ListMemory&) = delete;

    static int Taken() {
        const std::scoped_lock lock(mutex_);
        return taken_;
    }
    // That were not given back.
    static std::size_t Blocks() {
        const std::scoped_lock lock(mutex_);
        return blocks_.size();
    }

  private:
    static LPVOID WINAPI Take(SIZE_T bytes) {
        void* const block = take_(bytes);
        const std::scoped_lock lock(mutex_);
        blocks_.insert(block);
        ++taken_;
        return block;
    }
    static void WINAPI GiveBack(LPVOID block) {
        {
            const std::scoped_lock lock(mutex_);
            blocks_.erase(block);
        }
        giveBack_(block);
    }

    static inline decltype(&CoTaskMemAlloc) take_ = nullptr;
    static inline decltype(&CoTaskMemFree) giveBack_ = nullptr;
    static inline std::mutex mutex_;
    // Guarded by mutex_.
    static inline std::set<void*> blocks_;
    static inline int taken_ = 0;

    const harness::ImportHook taking_;
    const harness::ImportHook giving_;
};

class CameraListTest : public DoubledPreviewTest {
  protected:
    // Opens with a camera of that script, and closes. Whether it was open; the objects of the list are looked at when
    // the test ends.
    bool OpenAndClose(const std::function<void(CameraScript&)>& change) {
        ChangeCamera([](CameraScript& script) {
            const std::wstring allowed = CameraScript{}.links.front();
            script = {};
            script.natives = {Type(MFVideoFormat_YUY2)};
            script.links = {L"usb#vid_046d", allowed, L"usb#vid_046d"};
        });
        ChangeCamera(change);
        Make();
        const bool opened = Start();
        EXPECT_EQ(preview_->Close(), S_OK);
        EXPECT_TRUE(Wait([] { return ListMemory::Blocks() == 0; }));
        Finish();
        TakeFailures();
        return opened;
    }
};

TEST_F(CameraListTest, ItGoesBackHoweverTheOpeningEnds) {
    const ListMemory memory;
    EXPECT_TRUE(OpenAndClose([](CameraScript&) {}));
    EXPECT_FALSE(OpenAndClose([](CameraScript& script) { script.links = {}; })) << "without a camera";
    EXPECT_FALSE(OpenAndClose([](CameraScript& script) { script.links.erase(script.links.begin() + 1); }))
        << "of other makers";
    EXPECT_FALSE(OpenAndClose([](CameraScript& script) { script.activate = E_ACCESSDENIED; })) << "refused";
    EXPECT_FALSE(OpenAndClose([this](CameraScript& script) {
        script.withinActivation = [this] { preview_->Close(); };
    })) << "ended while it opens";
    EXPECT_EQ(ListMemory::Taken(), 5);
    EXPECT_THAT(Posted(), IsEmpty());
}

}  // namespace
}  // namespace preview_test
