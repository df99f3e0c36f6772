#pragma once
// The rules of the system that somebody has broken against a double, in the order in which it happened.
//
// A double must answer as the system would, so it cannot end the test itself; it notes the broken rule, and the test
// asks for the list when it ends. One list for the process. Any thread.
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace doubles {

class Violations {
  public:
    static void Add(std::string rule) {
        const std::scoped_lock lock(Mutex());
        List().push_back(std::move(rule));
    }
    // The rules since the last call.
    static std::vector<std::string> Take() {
        const std::scoped_lock lock(Mutex());
        return std::exchange(List(), {});
    }

  private:
    static std::mutex& Mutex() {
        static std::mutex mutex;
        return mutex;
    }
    static std::vector<std::string>& List() {  // guarded by Mutex()
        static std::vector<std::string> list;
        return list;
    }
};

}  // namespace doubles
