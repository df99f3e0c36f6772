#pragma once
// What the demo camera sees: a person in a room, with the effects that the camera service would apply.
//
// Parts that stand still are painted once for each look and size and then only laid over the background, so that a
// picture costs little. The settings glide to new values within half a second. Threads: one at a time.
#include <cstdint>
#include <memory>
#include <vector>

#include "tools/democamera/Person.h"

namespace democamera {

struct Picture {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> pixels;  // 0x00RRGGBB, top row first
};

struct SceneSettings {
    bool framing = false;     // the person is centred and near
    bool eyeContact = false;  // looks at you instead of at the screen
    PersonLook look;
    std::shared_ptr<const Picture> background;  // null: the room
    bool backgroundMoves = false;
};

class DemoScene {
  public:
    // `picture`: width x height pixels, top row first. `seconds`: of the scene's own time.
    void Paint(std::uint32_t* picture, int width, int height, double seconds, const SceneSettings& settings);

  private:
    struct Pose {
        float x = 0;  // of the head's middle, from 0 to 1 of the picture
        float y = 0;
        float scale = 1;
        float gaze = 1;  // 0: at you
        PersonLook look;
    };
    static Pose PoseOf(const SceneSettings& settings);
    void Glide(const Pose& goal, double seconds);
    void PrepareBackground(int width, int height, const SceneSettings& settings);
    void PreparePerson(int height);
    void CopyBackground(std::uint32_t* picture, int width, int height, double seconds, bool moves) const;

    Pose pose_;
    bool posed_ = false;
    double lastSeconds_ = 0;
    std::shared_ptr<const Picture> shownBackground_;
    Picture background_;  // larger than the picture where it moves
    bool roomShown_ = false;
    PersonLayers person_;
    PersonLook paintedLook_;
    float paintedScale_ = 0;
};

}  // namespace democamera
