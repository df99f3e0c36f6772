#pragma once
// What the environment variable PIXORA_DEMO_CAMERA asks of the demo camera: words "name=value" with blanks between.
//
//   format=rgb32|rgb24|yuy2|nv12|mjpg   nv12       size=WIDTHxHEIGHT   1280x720      rate=FRAMES   30, a second
//   picture=person|bars|halves          person     halves: left half red, right half blue
//   fault=NAME   none   absent busy refused nostart error taken silent unplugged end empty short: CameraFaults
//   after=FRAMES 0      when the fault begins, for those that come while frames are delivered
//   opening=MS   0      how long it takes to open         closing=MS   0      to shut it down, each time
//   opens=COUNT  all    how many openings the fault holds for; a later one finds the camera well
// An unknown word or a bad value is left out. Pure function, any thread.
#include <cstdint>
#include <string_view>

#include "tools/democamera/CameraMode.h"

namespace democamera {

enum class CameraFault {
    kNone,
    kAbsent,
    kBusy,
    kRefused,
    kNoStart,
    kError,
    kTaken,
    kSilent,
    kUnplugged,
    kEnd,
    kEmpty,
    kShort
};
enum class CameraPicture { kPerson, kBars, kHalves };

struct CameraOptions {
    CameraMode mode{.format = CameraFormat::kNv12};
    CameraPicture picture = CameraPicture::kPerson;
    CameraFault fault = CameraFault::kNone;
    std::int64_t after = 0;
    std::int64_t opens = -1;  // -1: all
    std::uint32_t openingMs = 0;
    std::uint32_t closingMs = 0;
};

CameraOptions ParseCameraOptions(std::string_view text);

}  // namespace democamera
