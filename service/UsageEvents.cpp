#include "service/UsageEvents.h"

#include <cstddef>

#include "service/EffectTable.h"
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
    SettingsStore::Read(service::EffectOf(service::EffectId::kBeautyPerson).value, status);
    const auto levels = SettingsStore::ReadBeautyLevels();
    TallyEvent event(kBeauty);
    event.PutInt(kBeautyStatus, status);
    for (std::size_t i = 0; i < levels.size(); ++i) {
        event.PutInt(service::kBeautyLevels[i].reportKey, levels[i]);
    }
    TallyView::Report(event);
}

}  // namespace UsageEvents
