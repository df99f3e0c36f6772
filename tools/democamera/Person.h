#pragma once
// The figure before the demo camera: head and shoulders, flat shapes with soft shading.
//
// Still parts are painted once on layers, which the scene moves; eyes and mouth move within the face and are painted
// each time. Units: the head's middle is the origin, the face is about 180 wide. Pure code, any thread.
#include "tools/democamera/Shapes.h"

namespace democamera {

// How the person looks; 0 to 1 each.
struct PersonLook {
    float smooth = 0;  // skin without spots
    float white = 0;   // brighter skin
    float eye = 0;     // larger eyes
    float thin = 0;    // narrower face
    bool operator==(const PersonLook&) const = default;
};

struct PersonLayers {
    Layer hair;  // behind neck and face; moves with the head
    Layer body;
    Layer head;
};
PersonLayers PaintPerson(const PersonLook& look, float scale);

struct FaceMoment {
    float gazeX = 0;  // -1 to 1; 0 looks at you
    float gazeY = 0;
    float lid = 0;    // 1: closed
    float smile = 0;  // 0 to 1
};
// `place`: size of the picture, its origin at the head's middle, and its scale.
void PaintFaceMoment(std::uint32_t* picture, const Layer& place, const PersonLook& look, const FaceMoment& moment);

}  // namespace democamera
