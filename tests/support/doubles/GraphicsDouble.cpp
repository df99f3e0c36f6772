#include "tests/support/doubles/GraphicsDouble.h"

#include "preview/Direct3DSystem.h"
#include "tests/support/doubles/Direct3DDouble.h"
#include "tests/support/doubles/GraphicsState.h"
#include "tests/support/doubles/Violations.h"

namespace doubles {

GraphicsState& GraphicsState::The() {
    static GraphicsState state;
    return state;
}

bool GraphicsState::IsGone(int object) {
    const std::scoped_lock lock(mutex);
    if (desktopGone && callsUntilBack >= 0 && callsUntilBack-- == 0) {
        desktopGone = false;
    }
    return desktopGone || object < objectsOfThePast;
}

void Graphics::Begin() {
    GraphicsState& state = GraphicsState::The();
    const std::scoped_lock lock(state.mutex);
    if (state.seen.objectsAlive != 0 || state.seen.devicesAlive != 0 || state.seen.chainsAlive != 0) {
        Violations::Add("something of Direct3D was not released");
    }
    state.script = {};
    state.seen = {};
    state.desktopGone = false;
    state.callsUntilBack = -1;
    state.objectsOfThePast = 0;
}

void Graphics::Forget() {
    GraphicsState& state = GraphicsState::The();
    const std::scoped_lock lock(state.mutex);
    state.seen.objectsAlive = 0;
    state.seen.devicesAlive = 0;
    state.seen.chainsAlive = 0;
}

void Graphics::Change(const std::function<void(GraphicsScript&)>& change) {
    GraphicsState& state = GraphicsState::The();
    const std::scoped_lock lock(state.mutex);
    change(state.script);
}

GraphicsScript Graphics::Script() {
    GraphicsState& state = GraphicsState::The();
    const std::scoped_lock lock(state.mutex);
    return state.script;
}

GraphicsSeen Graphics::Seen() {
    GraphicsState& state = GraphicsState::The();
    const std::scoped_lock lock(state.mutex);
    return state.seen;
}

void Graphics::TakeDesktop() {
    TakeDesktopFor(-1);
}

void Graphics::TakeDesktopFor(int calls) {
    GraphicsState& state = GraphicsState::The();
    const std::scoped_lock lock(state.mutex);
    state.desktopGone = true;
    state.callsUntilBack = calls;
    ++state.losses;
}

void Graphics::GiveDesktopBack(bool forNewObjectsOnly) {
    GraphicsState& state = GraphicsState::The();
    const std::scoped_lock lock(state.mutex);
    state.desktopGone = false;
    state.callsUntilBack = -1;
    if (forNewObjectsOnly) {
        state.objectsOfThePast = state.seen.objects;
    }
}

}  // namespace doubles

namespace direct3d_system {

IDirect3D9* Create9(UINT sdkVersion) {
    if (const auto within = doubles::Graphics::Script().withinCreation) {
        within();
    }
    auto& state = doubles::GraphicsState::The();
    int number = 0;
    {
        const std::scoped_lock lock(state.mutex);
        state.seen.sdkVersion = sdkVersion;
        if (state.script.noDirect3D) {
            return nullptr;
        }
        number = state.seen.objects++;
        ++state.seen.objectsAlive;
    }
    return new doubles::Direct3DDouble(number);
}

void TellInBox(const wchar_t* text, const wchar_t* caption) {
    auto& state = doubles::GraphicsState::The();
    std::function<void()> whileShown;
    {
        const std::scoped_lock lock(state.mutex);
        state.seen.boxes.push_back(std::wstring(caption) + L": " + text);
        whileShown = state.script.whileBoxIsShown;
    }
    if (whileShown) {
        whileShown();
    }
}

}  // namespace direct3d_system
