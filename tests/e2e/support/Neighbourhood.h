#pragma once
// What else goes on on a PC while the program is used: a camera service that comes, goes, and says "changed" 20,000
// times a second for a while; another program that writes the settings, nonsense among them; and one that holds each
// new file of a folder for a moment, as a virus scanner does. Threads: operations on the test's; two threads of its own
// and a process do what is said above.
#include <condition_variable>
#include <mutex>
#include <random>
#include <string>
#include <thread>

#include "suite/common/Handle.h"
#include "tests/support/ChildProcess.h"

namespace e2e {

class Neighbourhood {
  public:
    // `pictures`: the folder whose files are held; it must be there.
    Neighbourhood(unsigned seed, const std::wstring& pictures);
    ~Neighbourhood();
    Neighbourhood(const Neighbourhood&) = delete;
    Neighbourhood& operator=(const Neighbourhood&) = delete;

    // Nobody writes the settings and the service is silent until GoOn; files are held all the same.
    void Rest();
    void GoOn();

    // What was done so far: "12 services, 340000 messages, 210 foreign writes, 14 files held".
    std::string Text() const;

  private:
    void Serve();
    void Write();
    // False when it is to rest or to end.
    bool Pause(int ms);
    // Waits while the neighbourhood rests; false when it is to end. Every thread is busy but here.
    bool MayGoOn();

    mutable std::mutex mutex_;
    std::condition_variable changed_;
    // Guarded by mutex_.
    bool ends_ = false;
    bool rests_ = false;
    int busy_ = 0;  // threads that do something just now
    int services_ = 0;
    long long messages_ = 0;
    int writes_ = 0;
    int held_ = 0;

    const unsigned seed_;
    const suite::Handle semaphore_;
    harness::ChildProcess holder_;
    std::thread service_;
    std::thread writer_;
};

}  // namespace e2e
