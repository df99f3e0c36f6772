#pragma once
// Reads the settings key into status snapshots.
//
// Why: nothing is cached, because the camera service and other programs write the same values.
// Threads: any, several at once.
#include <cstdint>
#include <map>
#include <mutex>
#include <string>

#include "service/GlobalUtils.h"

namespace service {

class StatusReader {
  public:
    // A complete snapshot, whatever the key lacks; see HomeService::GetFeatureStatus.
    GlobalUtils::FeatureStatusTuple Read();
    // Whether that was done before.
    bool HasRead() const;

  private:
    mutable std::mutex mutex_;
    // Control of each background's number; guarded by mutex_, filled by the first snapshot.
    std::map<std::int32_t, std::wstring> indexToBtn_;
};

}  // namespace service
