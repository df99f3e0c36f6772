#include "diagnostics/LastRun.h"

#include "preview/DeviceLoss.h"
#include "suite/common/Utf8.h"

namespace diagnostics {

namespace {

// The manifest has set what this function asks for, so its call always leaves a line.
constexpr char kStart[] = "(PxMainWnd::DPIAware)";
constexpr std::size_t kTimeLength = sizeof("2026-11-21 10:00:00") - 1;

bool Holds(const std::string& line, const wchar_t* text) {
    return line.find("] " + suite::ToUtf8(text) + "(") != std::string::npos;
}

}  // namespace

void LastRun::Add(const std::string& line) {
    if (since_.empty() || line.find(kStart) != std::string::npos) {
        *this = {};
        since_ = line.substr(0, kTimeLength);
    }
    lost_ += Holds(line, preview::kDeviceLostLine);
    back_ += Holds(line, preview::kDeviceBackLine);
}

std::string LastRun::Text() const {
    if (since_.empty()) {
        return "graphics device lost: no run is known";
    }
    return "graphics device lost: " + std::to_string(lost_) + " times, back: " + std::to_string(back_) +
           " times, in the last run, since " + since_;
}

}  // namespace diagnostics
