#include "service/AlgorithmAlarm.h"

#include "service/GlobalUtils.h"
#include "service/KindNotifier.h"
#include "service/SettingNames.h"
#include "service/SettingsStore.h"

using GlobalUtils::MessageBoxKind;

namespace {

bool HasFailed() {
    int initialised = 1;
    SettingsStore::Read(SettingNames::kInitAlgorithm, initialised);
    return initialised == 0;
}

}  // namespace

AlgorithmAlarm::AlgorithmAlarm() : told_(std::make_shared<std::atomic<bool>>(HasFailed())) {
    listener_ = KindNotifier<MessageBoxKind>::GetInstance().Subscribe(
        GlobalUtils::kMessageBoxChannel, [told = told_](const MessageBoxKind& kind) {
            if (kind == MessageBoxKind::kAlgorithmNotReady) {
                *told = true;
            }
        });
}

AlgorithmAlarm::~AlgorithmAlarm() {
    KindNotifier<MessageBoxKind>::GetInstance().Unsubscribe(GlobalUtils::kMessageBoxChannel, listener_);
}

void AlgorithmAlarm::Check() {
    if (!HasFailed()) {
        *told_ = false;
    } else if (!*told_) {
        KindNotifier<MessageBoxKind>::GetInstance().Publish(GlobalUtils::kMessageBoxChannel,
                                                            MessageBoxKind::kAlgorithmNotReady);
    }
}
