#include "preview/ReaderPark.h"

#include <utility>

namespace preview {

ReaderPark::~ReaderPark() {
    ReleaseParked();
}

void ReaderPark::Enter() {
    ++callbacks_;
}

void ReaderPark::Leave() {
    if (--callbacks_ == 0) {
        WakeByAddressAll(&callbacks_);
    }
}

void ReaderPark::Park(IMFSourceReader* reader) {
    parked_ = reader;
}

void ReaderPark::ReleaseParked() {
    if (parked_ == nullptr) {
        return;
    }
    for (LONG callbacks = callbacks_; callbacks != 0; callbacks = callbacks_) {
        WaitOnAddress(&callbacks_, &callbacks, sizeof callbacks, INFINITE);
    }
    std::exchange(parked_, nullptr)->Release();
}

}  // namespace preview
