#pragma once
// The picture file of one of the user's own backgrounds: the image itself or the video's cover.
//
// Why: the camera service reads these files while they are written, and the program may be ended at any moment, so a
// picture is written beside its place and moved there whole. Reading a file that the user named may take for ever; what
// is left to itself meanwhile must not come to its place later, so the two steps can be had one by one.
// Threads: any that has entered a COM apartment.
#include <chrono>
#include <string>

namespace pictures::BackgroundPicture {

enum class Result {
    kMade,
    kNothingToShow,  // neither the file nor the picture that stands in for it can be read
    kNotWritten,     // the folder does not take the file
};

// Whether a picture that stands for such is written where the source cannot be loaded.
enum class StandIn { kWritten, kNone };

// Both steps. Writes `target`, over an older one: an image as JPEG; a video's cover as a bitmap file, whatever the name
// ends in. After a failure an older target is as it was. `source` is only read.
[[nodiscard]] Result Make(const std::wstring& source, bool isVideo, const std::wstring& target,
                          StandIn standIn = StandIn::kWritten);

// How long Prepare is waited for.
inline constexpr std::chrono::seconds kPatience{20};

// A name beside `target`; another one for each number.
std::wstring UnfinishedName(const std::wstring& target, int number = 0);
// Writes `unfinished`. After a failure nothing is left of it.
[[nodiscard]] Result Prepare(const std::wstring& source, bool isVideo, const std::wstring& unfinished,
                             StandIn standIn = StandIn::kWritten);
// Moves what was prepared into its place; kMade or kNotWritten. Touches the two files only.
[[nodiscard]] Result Finish(const std::wstring& unfinished, const std::wstring& target);
// Removes what was prepared and is not wanted any more.
void Discard(const std::wstring& unfinished);

// Deletes a picture, a write-protected one too; what cannot be deleted stays.
void Remove(const std::wstring& picture);

// Removes what a program that was ended left unfinished in that folder.
void RemoveUnfinished(const std::wstring& folder);

}  // namespace pictures::BackgroundPicture
