#include "windows/ModalQueue.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "DuiLib/UIMainQueue.h"
#include "suite/logger/QxLogger.h"

// UI thread; `alive` ends with the queue.
struct ModalQueue::State {
    struct Request {
        std::int32_t key;
        std::function<void()> show;
    };

    void Add(Request request) {
        const bool known = std::any_of(requests.begin(), requests.end(),
                                       [&](const Request& other) { return other.key == request.key; });
        if (!alive || known) {
            return;
        }
        requests.push_back(std::move(request));
        if (!showing) {
            ShowAll();
        }
    }

    // The request that is shown stays at the front, so that its key is known while it is.
    void ShowAll() {
        showing = true;
        while (alive && !requests.empty()) {
            const std::function<void()> show = requests.front().show;
            try {
                show();
            } catch (const std::exception& error) {
                LogLine(LogLevel::kError, L"ModalQueue::Show", L"A modal window ended with an exception: ",
                        error.what());
            }
            if (!requests.empty()) {
                requests.pop_front();
            }
        }
        showing = false;
    }

    bool alive = true;
    bool showing = false;
    std::deque<Request> requests;
};

ModalQueue::ModalQueue() : state_(std::make_shared<State>()) {}

ModalQueue::~ModalQueue() {
    state_->alive = false;
    state_->requests.clear();
}

void ModalQueue::Show(std::int32_t key, std::function<void()> show) {
    DuiLib::UIMainQueue::getInstance()->dispatch(
        [state = state_, request = State::Request{key, std::move(show)}] { state->Add(request); });
}
