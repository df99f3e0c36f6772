#include "tests/e2e/support/Neighbourhood.h"

#include <chrono>
#include <climits>

#include "suite/ipc/PipeFrame.h"
#include "tests/e2e/support/Machine.h"
#include "tests/e2e/support/SettingsModel.h"
#include "tests/support/Protocol.h"
#include "tools/service/PipeServer.h"

namespace e2e {

namespace {

constexpr wchar_t kHeld[] = L"PixoraSoakHeldFiles";
constexpr int kMessagesAtOnce = 500;
constexpr int kApartMs = 25;  // 500 messages each: 20,000 a second

}  // namespace

Neighbourhood::Neighbourhood(unsigned seed, const std::wstring& pictures)
    : seed_(seed),
      semaphore_(CreateSemaphoreW(nullptr, 0, LONG_MAX, kHeld)),
      holder_(L"service_helper.exe", L"hold \"" + pictures + L"\" " + kHeld),
      service_([this] { Serve(); }),
      writer_([this] { Write(); }) {}

Neighbourhood::~Neighbourhood() {
    {
        const std::scoped_lock lock(mutex_);
        ends_ = true;
    }
    changed_.notify_all();
    service_.join();
    writer_.join();
    holder_.Kill();
}

void Neighbourhood::Rest() {
    std::unique_lock lock(mutex_);
    rests_ = true;
    changed_.notify_all();
    changed_.wait(lock, [this] { return busy_ == 0; });
    while (WaitForSingleObject(semaphore_.Get(), 0) == WAIT_OBJECT_0)
        ++held_;
}

void Neighbourhood::GoOn() {
    {
        const std::scoped_lock lock(mutex_);
        rests_ = false;
    }
    changed_.notify_all();
}

std::string Neighbourhood::Text() const {
    const std::scoped_lock lock(mutex_);
    return std::to_string(services_) + " services, " + std::to_string(messages_) + " messages, " +
           std::to_string(writes_) + " foreign writes, " + std::to_string(held_) + " files held";
}

bool Neighbourhood::Pause(int ms) {
    std::unique_lock lock(mutex_);
    return !changed_.wait_for(lock, std::chrono::milliseconds(ms), [this] { return ends_ || rests_; });
}

bool Neighbourhood::MayGoOn() {
    std::unique_lock lock(mutex_);
    --busy_;
    changed_.notify_all();
    changed_.wait(lock, [this] { return ends_ || !rests_; });
    ++busy_;
    return !ends_;
}

void Neighbourhood::Serve() {
    std::mt19937 random(seed_);
    const auto below = [&random](unsigned limit) { return static_cast<int>(random() % limit); };
    const auto frame =
        *PipeFrame::EncodeMessage(harness::Protocol::FromService(harness::Protocol::kSettingsChangedCode));
    std::vector<std::uint8_t> frames;
    for (int i = 0; i < kMessagesAtOnce; ++i)
        frames.insert(frames.end(), frame.begin(), frame.end());
    {
        const std::scoped_lock lock(mutex_);
        ++busy_;
    }
    while (MayGoOn()) {
        PipeServer server;
        if (!server.Start(harness::Protocol::kPipeName)) {
            Pause(100);
            continue;
        }
        {
            const std::scoped_lock lock(mutex_);
            ++services_;
        }
        for (int i = below(4); i >= 0 && MayGoOn(); --i) {
            const bool floods = below(2) == 0;
            const auto& bytes = floods ? frames : frame;
            Pause(200 + below(1500));
            for (int burst = floods ? 40 + below(80) : 1; burst > 0 && Pause(kApartMs); --burst) {
                const long long clients = server.SendBytes(bytes);
                const std::scoped_lock lock(mutex_);
                messages_ += clients * static_cast<long long>(bytes.size() / frame.size());
            }
        }
        server.Stop();
        Pause(below(3000));
    }
    const std::scoped_lock lock(mutex_);
    --busy_;
    changed_.notify_all();
}

void Neighbourhood::Write() {
    std::mt19937 random(seed_ + 1);
    const auto below = [&random](std::size_t limit) { return random() % limit; };
    {
        const std::scoped_lock lock(mutex_);
        ++busy_;
    }
    while (MayGoOn()) {
        const bool isSwitch = below(2) == 0;
        const wchar_t* const name =
            isSwitch ? kSwitches[below(kSwitches.size())].value : kSliders[below(kSliders.size())].value;
        switch (below(12)) {
            case 0:
                Machine::SetText(name, L"what is no number");
                break;
            case 1:
                Machine::Remove(name);
                break;
            case 2:
                Machine::SetNumber(name, static_cast<DWORD>(random()));
                break;
            default:
                Machine::SetNumber(name, static_cast<DWORD>(below(isSwitch ? 2 : 11)));
                break;
        }
        {
            const std::scoped_lock lock(mutex_);
            ++writes_;
        }
        Pause(20 + static_cast<int>(below(400)));
    }
    const std::scoped_lock lock(mutex_);
    --busy_;
    changed_.notify_all();
}

}  // namespace e2e
