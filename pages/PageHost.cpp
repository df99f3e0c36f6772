#include "pages/PageHost.h"

namespace {

PageHost* g_current = nullptr;  // borrowed: the host takes itself back

}  // namespace

PageHost* PageHost::Current() {
    return g_current;
}

void PageHost::SetCurrent(PageHost* host) {
    g_current = host;
}
