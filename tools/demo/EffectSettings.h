#pragma once
// The camera effects as the settings key has them: what the camera service would do to the demo camera's pictures.
//
// Reads the key the program writes to, now and then, and loads the chosen background. Threads: one at a time.
#include <memory>
#include <string>

#include "tools/democamera/DemoScene.h"

class EffectSettings {
  public:
    // Reads the key and whatever became different.
    void Update();
    const democamera::SceneSettings& Scene() const { return scene_; }

  private:
    std::wstring BackgroundFile(int index) const;

    democamera::SceneSettings scene_;
    std::wstring backgroundFile_;  // the one that is loaded, or could not be; empty: the room
};
