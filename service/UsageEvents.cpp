#include "service/UsageEvents.h"

#include "service/BeautyLevels.h"
#include "service/SettingNames.h"
#include "service/SettingsStore.h"
#include "suite/report/EventDataReport.h"
#include "suite/report/TallyView.h"

namespace UsageEvents {

void Report(const std::string& eventId, const std::string& text) {
    if (text.empty()) {
        return;
    }
    std::string message;
    EventDataReport& report = EventDataReport::Instance();
    if (report.GetMsg(message, eventId, text)) {
        report.SendMsg(message);
    }
}

void ReportBeauty() {
    int status = 0;
    SettingsStore::Read(SettingNames::kBeautyPerson, status);
    const BeautyLevels levels = ReadBeautyLevels();
    TallyEvent event(kBeauty);
    event.PutInt(kBeautyStatus, status);
    event.PutInt(kBeautySmooth, levels.smooth);
    event.PutInt(kBeautyWhite, levels.white);
    event.PutInt(kBeautyEye, levels.eye);
    event.PutInt(kBeautyThin, levels.thin);
    TallyView::Report(event);
}

}  // namespace UsageEvents
