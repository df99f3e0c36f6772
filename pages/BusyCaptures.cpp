#include "pages/BusyCaptures.h"

#include "DuiLib/UIMainQueue.h"
#include "preview/Preview.h"
#include "suite/common/ComRelease.h"

namespace {

constexpr unsigned kBetweenReleasesMs = 1000;

bool TryRelease(Preview* capture) {
    const bool released = capture->DestroyRenderer();
    if (released) {
        ComRelease(capture);
    }
    return released;
}

}  // namespace

BusyCaptures::BusyCaptures() : self_(std::make_shared<BusyCaptures*>(this)) {}

BusyCaptures::~BusyCaptures() {
    ReleaseAll();
}

bool BusyCaptures::Release(Preview* capture) {
    const bool released = TryRelease(capture);
    if (!released) {
        captures_.push_back(capture);
        ReleaseLater();
    }
    return released;
}

bool BusyCaptures::ReleaseAll() {
    std::erase_if(captures_, TryRelease);
    return captures_.empty();
}

void BusyCaptures::ReleaseLater() const {
    DuiLib::UIMainQueue::getInstance()->dispatchAfter(kBetweenReleasesMs, [self = std::weak_ptr<BusyCaptures*>(self_)] {
        const auto alive = self.lock();
        if (alive && !(*alive)->ReleaseAll()) {
            (*alive)->ReleaseLater();
        }
    });
}
