#pragma once
// A small picture within a JPEG file, as the format's own extension has it ("JFXX", itself a JPEG file).
//
// Why: the gallery shows thirty-two cells of 52 x 32 units; decoding as many full pictures would take seconds.
// Every other reader of the file passes over it.
// Threads: pure functions, any thread.
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace pictures::JpegThumbnail {

using Bytes = std::span<const std::uint8_t>;

// How much of a file's beginning Find needs.
inline constexpr std::size_t kSearchBytes = 2 * 64 * 1024;

// The file with the thumbnail in it, for which it must have room in one segment; else the file as it is.
std::vector<std::uint8_t> Embed(Bytes file, Bytes thumbnail);
// The thumbnail's bytes within those; empty when there is none, or not all of it.
Bytes Find(Bytes beginning);

}  // namespace pictures::JpegThumbnail
