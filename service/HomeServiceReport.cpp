// Usage events. Nothing here can hold up or change what a setter does.
#include "service/BeautyLevels.h"
#include "service/HomeService.h"
#include "service/SettingNames.h"
#include "service/SettingsStore.h"
#include "service/UsageEvents.h"
#include "suite/logger/QxLogger.h"
#include "suite/report/EventDataReport.h"
#include "suite/report/TallyView.h"

void HomeService::ReportUsage(const std::string& eventId, const std::string& text) {
    if (text.empty()) {
        return;
    }
    std::string message;
    EventDataReport& report = EventDataReport::Instance();
    if (report.GetMsg(message, eventId, text)) {
        report.SendMsg(message);
    }
}

void HomeService::ReportBeauty() {
    int status = 0;
    SettingsStore::Read(SettingNames::kBeautyPerson, status);
    const BeautyLevels levels = ReadBeautyLevels();
    TallyEvent event(UsageEvents::kBeauty);
    event.PutInt(UsageEvents::kBeautyStatus, status);
    event.PutInt(UsageEvents::kBeautySmooth, levels.smooth);
    event.PutInt(UsageEvents::kBeautyWhite, levels.white);
    event.PutInt(UsageEvents::kBeautyEye, levels.eye);
    event.PutInt(UsageEvents::kBeautyThin, levels.thin);
    TallyView::Report(event);
}

void HomeService::StartBeautyReport() {
    if (!beautyReports_.Start()) {
        LogLine(4, L"HomeService::StartBeautyReport", L"no thread for the report");
    }
}
