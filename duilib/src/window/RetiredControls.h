#pragma once
// Controls that left the tree while an event or a notification was being handled: kept until the last handler returned,
// so that a control may be removed by the program's answer to its own click. Thread: UI thread.
#include <memory>
#include <utility>
#include <vector>

#include "DuiLib/ControlUI.h"

namespace DuiLib {

class RetiredControls {
  public:
    // Stands on the stack around everything that calls controls or the program.
    class Scope {
      public:
        explicit Scope(RetiredControls& retired) : retired_(retired) { ++retired_.depth_; }
        ~Scope() {
            if (--retired_.depth_ == 0) {
                retired_.Destroy();
            }
        }
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;

      private:
        RetiredControls& retired_;
    };

    void Add(std::unique_ptr<CControlUI> control) {
        controls_.push_back(std::move(control));
        if (depth_ == 0) {
            Destroy();
        }
    }
    void Destroy() {
        // A destructor may retire more.
        while (!controls_.empty()) {
            const auto dying = std::exchange(controls_, {});
        }
    }

  private:
    int depth_ = 0;
    std::vector<std::unique_ptr<CControlUI>> controls_;
};

}  // namespace DuiLib
