#pragma once
// Models beside the process-wide one, and what is otherwise reached through files that the user picks. Thread: the
// model's.
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "service/HomeService.h"

struct HomeServiceTestAccess {
    struct Delete {
        void operator()(HomeService* model) const { delete model; }
    };
    using Model = std::unique_ptr<HomeService, Delete>;

    static Model Make() { return Model(new HomeService); }
    static std::vector<CustomImageRecord>& CustomItems(HomeService& model = *HomeService::GetInstance()) {
        return model.customItems_;
    }
    static std::map<std::wstring, std::wstring>& CustomByName(HomeService& model = *HomeService::GetInstance()) {
        return model.customByName_;
    }
    // As InitCustomImage for that user.
    static void LoadCustomImages(HomeService& model, const std::wstring& userSid) { model.LoadCustomImages(userSid); }
    static bool HasTakenASnapshot(HomeService& model) { return !model.indexToBtn_.empty(); }
};
