#pragma once
// The PC as the tests need it: nothing of Pixora runs, what they change is kept, it does not fall asleep. Thread: main.
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "tools/proof/ForegroundRight.h"
#include "tools/proof/KeptFolder.h"
#include "tools/proof/KeptRegistry.h"

namespace proof {

class Machine {
  public:
    Machine();
    // The process knows scales. Makes good an earlier run that was cut off. Empty: the tests may begin; else why they
    // cannot.
    std::string Prepare();
    // What could not be given back; nothing when all of it is as it was. May be called again.
    std::vector<std::string> GiveBack();

  private:
    const KeptRegistry registry_;
    const KeptFolder folder_;
    std::optional<ForegroundRight> foreground_;
};

}  // namespace proof
