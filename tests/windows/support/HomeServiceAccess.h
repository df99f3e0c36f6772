#pragma once
// Models beside the process-wide one, and what is on their lists, which otherwise holds files that the user picked.
// Thread: the model's.
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "service/HomeService.h"

struct HomeServiceTestAccess {
    using Model = std::unique_ptr<HomeService>;

    static Model Make() { return std::make_unique<HomeService>(); }
    static const std::vector<CustomImageRecord>& CustomItems(HomeService& model = *HomeService::GetInstance()) {
        return model.Backgrounds().List().Records();
    }
    static const std::map<std::wstring, std::wstring>& CustomByName(HomeService& model = *HomeService::GetInstance()) {
        return model.Backgrounds().List().FilePaths();
    }
    static void AddCustomItem(const CustomImageRecord& record) {
        service::OwnBackgroundList list = HomeService::GetInstance()->Backgrounds().List();
        list.Append(record);
        list.SetPaths(record.name, record.sourcePath);
        HomeService::GetInstance()->Backgrounds().SetList(list);
    }
    static void Clear() { HomeService::GetInstance()->Backgrounds().SetList({}); }
    // As InitCustomImage for that user.
    static void LoadCustomImages(HomeService& model, const std::wstring& userSid) { model.Backgrounds().Load(userSid); }
    static bool HasTakenASnapshot(HomeService& model) { return model.Status().HasRead(); }
};
