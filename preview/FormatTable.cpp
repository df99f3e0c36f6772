#include "preview/FormatTable.h"

#include "preview/MediaFoundation.h"

namespace preview {

namespace {

void CopyRgb32(std::uint8_t* destination, std::int32_t destinationStride, const std::uint8_t* source,
               std::int32_t sourceStride, std::uint32_t width, std::uint32_t height) {
    media_foundation::CopyImage(destination, destinationStride, source, sourceStride, width * 4, height);
}

FormatEntry EntryFor(const GUID& subtype, PixelFormat format) {
    const ConverterPair converters = ConvertersFor(format, BestCpuLevel());
    const bool isCopy = format == PixelFormat::kRgb32;
    return {subtype, format, isCopy ? CopyRgb32 : converters.plain, converters.mirrored};
}

const FormatEntry kFormats[] = {
    EntryFor(MFVideoFormat_RGB32, PixelFormat::kRgb32),
    EntryFor(MFVideoFormat_RGB24, PixelFormat::kRgb24),
    EntryFor(MFVideoFormat_YUY2, PixelFormat::kYuy2),
    EntryFor(MFVideoFormat_NV12, PixelFormat::kNv12),
};

}  // namespace

std::span<const FormatEntry> FormatTable() {
    return kFormats;
}

const FormatEntry* FindFormat(const GUID& subtype) {
    for (const FormatEntry& entry : kFormats) {
        if (IsEqualGUID(entry.subtype, subtype)) {
            return &entry;
        }
    }
    return nullptr;
}

}  // namespace preview
