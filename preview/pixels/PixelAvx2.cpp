// The AVX2 rows: 16 pixels at a time.
//
// All arithmetic is exact in 16 bits. With C = Y - 16, D = Cb - 128, E = Cr - 128, as 298, 516, 100 and 208 are even:
//     red   = (298 C + 409 E + 128) >> 8         = (149 C + 64 + floor(409 E / 2)) >> 7
//     blue  = (298 C + 516 D + 128) >> 8         = (floor(149 Y / 2) - 1160 + 129 D) >> 6
//     green = (298 C - 100 D - 208 E + 128) >> 8 = (floor(149 Y / 2) - 1160 - 25 D - 52 E) >> 6
// where 1160 = (149 * 16 - 64) / 2. Blue's sum may saturate, but only far beyond 255. Red does not fit the signed
// range, so it is shifted up by 32768, added and subtracted with unsigned saturation, which also clips it to 0 and 255.
//
// Where the destination allows it, rows are written past the caches (streamed): a frame is larger than what the caches
// keep until the graphics device reads it, and fetching lines only to overwrite them takes half of the time. Rows of
// 32-bit pixels are not streamed: of what is merely moved, a frame of 1280 x 720 that is still in the caches pays more
// than a cold one gains.
// On Windows the compiler does not align the stack to 32 bytes; the build file has the assembler use unaligned moves.
#include <immintrin.h>

#include "preview/pixels/PixelRows.h"

#define AVX2 __attribute__((target("avx2")))
#define AVX2_INLINE AVX2 __attribute__((always_inline))

namespace preview {

namespace {

// What the chroma of 16 pixels adds to red and blue and takes from green.
struct Chroma {
    __m256i red;
    __m256i green;
    __m256i blue;
};

AVX2_INLINE inline __m256i Words(int value) {
    return _mm256_set1_epi16(static_cast<short>(value));
}

AVX2_INLINE inline __m256i Load256(const std::uint8_t* from) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from));
}

AVX2_INLINE inline __m256i LoadTwice(const std::uint8_t* from) {
    return _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(from)));
}

// REQUIRES: `to` is a multiple of 16 when streamed.
template <bool kStreamed>
AVX2_INLINE inline void Store256(std::uint8_t* to, __m256i value) {
    if (kStreamed) {
        _mm_stream_si128(reinterpret_cast<__m128i*>(to), _mm256_castsi256_si128(value));
        _mm_stream_si128(reinterpret_cast<__m128i*>(to) + 1, _mm256_extracti128_si256(value, 1));
    } else {
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(to), value);
    }
}

// Whether every block of a row begins where streamed stores can write.
inline bool CanStream(const std::uint8_t* row, std::uint32_t width) {
    return reinterpret_cast<std::uintptr_t>(row) % 16 == 0 && width % 4 == 0;
}

// The address may lie past the picture's end, where there is nothing to fetch. What is streamed needs no fetching.
template <bool kStreamed>
AVX2_INLINE inline void Fetch(const std::uint8_t* place, std::ptrdiff_t ahead) {
    if (!kStreamed) {
        _mm_prefetch(reinterpret_cast<const char*>(reinterpret_cast<std::uintptr_t>(place) + ahead), _MM_HINT_T0);
    }
}

// From the bytes Cb, Cr of each pixel.
AVX2_INLINE inline Chroma ChromaOf(__m256i pairs) {
    const __m256i signedPairs = _mm256_xor_si256(pairs, _mm256_set1_epi8(static_cast<char>(0x80)));
    const __m256i crHigh = _mm256_and_si256(pairs, Words(0xFF00));
    Chroma chroma;
    // floor(409 Cr / 2), and the constant that makes 409 E / 2, 64 - 149 * 16 and 32768 of it.
    chroma.red = _mm256_add_epi16(_mm256_mulhi_epu16(crHigh, Words(409 << 7)), Words(32768 - 26176 - 2320));
    chroma.green = _mm256_maddubs_epi16(Words(52 << 8 | 25), signedPairs);
    chroma.blue = _mm256_maddubs_epi16(Words(129), signedPairs);
    return chroma;
}

// Stores 16 pixels. `luma`: 256 Y for each pixel; the lanes hold the pixels 0-3, 8-11 and 4-7, 12-15.
template <bool kStreamed>
AVX2_INLINE inline void StorePixels(std::uint8_t* to, __m256i luma, const Chroma& chroma) {
    const __m256i whole = _mm256_mulhi_epu16(luma, Words(149 << 8));
    const __m256i half = _mm256_sub_epi16(_mm256_mulhi_epu16(luma, Words(149 << 7)), Words(1160));
    const __m256i red = _mm256_srli_epi16(_mm256_subs_epu16(_mm256_adds_epu16(whole, chroma.red), Words(0x8000)), 7);
    const __m256i green = _mm256_srai_epi16(_mm256_sub_epi16(half, chroma.green), 6);
    const __m256i blue = _mm256_srai_epi16(_mm256_adds_epi16(half, chroma.blue), 6);
    const __m256i interleave =
        _mm256_broadcastsi128_si256(_mm_setr_epi8(0, 8, 1, 9, 2, 10, 3, 11, 4, 12, 5, 13, 6, 14, 7, 15));
    const __m256i blueGreen = _mm256_shuffle_epi8(_mm256_packus_epi16(blue, green), interleave);
    Store256<kStreamed>(to, _mm256_unpacklo_epi16(blueGreen, red));
    Store256<kStreamed>(to + 32, _mm256_unpackhi_epi16(blueGreen, red));
}

// Shuffles that take a block's bytes to the lanes that StorePixels wants, reversed when mirrored. "z" makes a zero.
template <bool kMirrored>
struct Masks {
    static constexpr char z = static_cast<char>(0x80);

    // 16 bytes Y, in both lanes -> 256 Y.
    AVX2_INLINE static __m256i Luma() {
        return kMirrored ? _mm256_setr_epi8(z, 15, z, 14, z, 13, z, 12, z, 7, z, 6, z, 5, z, 4,  //
                                            z, 11, z, 10, z, 9, z, 8, z, 3, z, 2, z, 1, z, 0)
                         : _mm256_setr_epi8(z, 0, z, 1, z, 2, z, 3, z, 8, z, 9, z, 10, z, 11,  //
                                            z, 4, z, 5, z, 6, z, 7, z, 12, z, 13, z, 14, z, 15);
    }
    // 8 pairs Cb Cr, in both lanes -> the pair of each pixel.
    AVX2_INLINE static __m256i Pairs() {
        return kMirrored ? _mm256_setr_epi8(14, 15, 14, 15, 12, 13, 12, 13, 6, 7, 6, 7, 4, 5, 4, 5,  //
                                            10, 11, 10, 11, 8, 9, 8, 9, 2, 3, 2, 3, 0, 1, 0, 1)
                         : _mm256_setr_epi8(0, 1, 0, 1, 2, 3, 2, 3, 8, 9, 8, 9, 10, 11, 10, 11,  //
                                            4, 5, 4, 5, 6, 7, 6, 7, 12, 13, 12, 13, 14, 15, 14, 15);
    }
    // YUY2 holds four pixels in each quarter: the quarters in the order of the lanes, and then for both lanes alike.
    static constexpr int kYuy2Quarters = kMirrored ? 0x27 : 0xD8;
    AVX2_INLINE static __m256i Yuy2Luma() {
        return _mm256_broadcastsi128_si256(kMirrored
                                               ? _mm_setr_epi8(z, 6, z, 4, z, 2, z, 0, z, 14, z, 12, z, 10, z, 8)
                                               : _mm_setr_epi8(z, 0, z, 2, z, 4, z, 6, z, 8, z, 10, z, 12, z, 14));
    }
    AVX2_INLINE static __m256i Yuy2Pairs() {
        return _mm256_broadcastsi128_si256(kMirrored
                                               ? _mm_setr_epi8(5, 7, 5, 7, 1, 3, 1, 3, 13, 15, 13, 15, 9, 11, 9, 11)
                                               : _mm_setr_epi8(1, 3, 1, 3, 5, 7, 5, 7, 9, 11, 9, 11, 13, 15, 13, 15));
    }
};

constexpr std::uint32_t kBlock = 16;

template <bool kMirrored>
struct Rows {
    using Blocks = PixelBlocks<kBlock, kMirrored>;

    AVX2 static void MirroredRgb32(std::uint8_t* destination, std::ptrdiff_t ahead, const std::uint8_t* source,
                                   std::uint32_t width) {
        if (width < kBlock) {
            ScalarRgb32<true>(destination, source, width, 0, width);
            return;
        }
        const __m256i reversed = _mm256_setr_epi32(7, 6, 5, 4, 3, 2, 1, 0);
        for (const auto& [x, place] : Blocks(width, destination, width)) {
            const __m256i first = Load256(source + 4 * x);
            const __m256i second = Load256(source + 4 * x + 32);
            Fetch<false>(place, ahead);
            Store256<false>(place + 32, _mm256_permutevar8x32_epi32(first, reversed));
            Store256<false>(place, _mm256_permutevar8x32_epi32(second, reversed));
        }
    }

    AVX2 static void Rgb24(std::uint8_t* destination, std::ptrdiff_t ahead, const std::uint8_t* source,
                           std::uint32_t width) {
        if (width < kBlock) {
            ScalarRgb24<kMirrored>(destination, source, width, 0, width);
        } else if (CanStream(destination, width)) {
            Rgb24Blocks<true>(destination, ahead, source, width);
        } else {
            Rgb24Blocks<false>(destination, ahead, source, width);
        }
    }

    template <bool kStreamed>
    AVX2 static void Rgb24Blocks(std::uint8_t* destination, std::ptrdiff_t ahead, const std::uint8_t* source,
                                 std::uint32_t width) {
        // Of eight pixels, the first four are loaded from their start and the last four from byte 8, so that no byte
        // past the eight is read.
        constexpr char z = static_cast<char>(0x80);
        const __m128i front = kMirrored ? _mm_setr_epi8(9, 10, 11, z, 6, 7, 8, z, 3, 4, 5, z, 0, 1, 2, z)
                                        : _mm_setr_epi8(0, 1, 2, z, 3, 4, 5, z, 6, 7, 8, z, 9, 10, 11, z);
        const __m128i back = kMirrored ? _mm_setr_epi8(13, 14, 15, z, 10, 11, 12, z, 7, 8, 9, z, 4, 5, 6, z)
                                       : _mm_setr_epi8(4, 5, 6, z, 7, 8, 9, z, 10, 11, 12, z, 13, 14, 15, z);
        const __m256i mask = kMirrored ? _mm256_setr_m128i(back, front) : _mm256_setr_m128i(front, back);
        const __m256i opaque = _mm256_set1_epi32(static_cast<int>(0xFF000000U));
        const auto eight = [=](const std::uint8_t* bytes, std::uint8_t* place) AVX2_INLINE {
            const auto* low = reinterpret_cast<const __m128i*>(bytes + (kMirrored ? 8 : 0));
            const auto* high = reinterpret_cast<const __m128i*>(bytes + (kMirrored ? 0 : 8));
            const __m256i both = _mm256_setr_m128i(_mm_loadu_si128(low), _mm_loadu_si128(high));
            Store256<kStreamed>(place, _mm256_or_si256(_mm256_shuffle_epi8(both, mask), opaque));
        };
        for (const auto& [x, place] : Blocks(width, destination, width)) {
            Fetch<kStreamed>(place, ahead);
            eight(source + 3 * x, place + (kMirrored ? 32 : 0));
            eight(source + 3 * x + 24, place + (kMirrored ? 0 : 32));
        }
    }

    AVX2 static void Yuy2(std::uint8_t* destination, std::ptrdiff_t ahead, const std::uint8_t* source,
                          std::uint32_t width, bool missingCr) {
        const std::uint32_t even = width & ~1U;
        if (even < kBlock) {
            ScalarYuy2<kMirrored>(destination, source, width, 0, width, missingCr);
            return;
        }
        if (CanStream(destination, width)) {
            Yuy2Blocks<true>(destination, ahead, source, width, even);
        } else {
            Yuy2Blocks<false>(destination, ahead, source, width, even);
        }
        ScalarYuy2<kMirrored>(destination, source, width, even, width, missingCr);
    }

    template <bool kStreamed>
    AVX2 static void Yuy2Blocks(std::uint8_t* destination, std::ptrdiff_t ahead, const std::uint8_t* source,
                                std::uint32_t width, std::uint32_t even) {
        const __m256i lumaMask = Masks<kMirrored>::Yuy2Luma();
        const __m256i pairMask = Masks<kMirrored>::Yuy2Pairs();
        for (const auto& [x, place] : Blocks(even, destination, width)) {
            const __m256i bytes = _mm256_permute4x64_epi64(Load256(source + 2 * x), Masks<kMirrored>::kYuy2Quarters);
            Fetch<kStreamed>(place, ahead);
            StorePixels<kStreamed>(place, _mm256_shuffle_epi8(bytes, lumaMask),
                                   ChromaOf(_mm256_shuffle_epi8(bytes, pairMask)));
        }
    }

    AVX2 static void Nv12Pair(std::uint8_t* destination, std::ptrdiff_t below, const std::uint8_t* luma0,
                              const std::uint8_t* luma1, const std::uint8_t* chroma, std::uint32_t width,
                              bool missingCr) {
        const std::uint32_t even = width < kBlock ? 0 : width & ~1U;
        if (even != 0 && CanStream(destination, width) && CanStream(destination + below, width)) {
            Nv12Blocks<true>(destination, below, luma0, luma1, chroma, width, even);
        } else if (even != 0) {
            Nv12Blocks<false>(destination, below, luma0, luma1, chroma, width, even);
        }
        ScalarNv12<kMirrored>(destination, luma0, chroma, width, even, width, missingCr);
        ScalarNv12<kMirrored>(destination + below, luma1, chroma, width, even, width, missingCr);
    }

    template <bool kStreamed>
    AVX2 static void Nv12Blocks(std::uint8_t* destination, std::ptrdiff_t below, const std::uint8_t* luma0,
                                const std::uint8_t* luma1, const std::uint8_t* chroma, std::uint32_t width,
                                std::uint32_t even) {
        const __m256i lumaMask = Masks<kMirrored>::Luma();
        const __m256i pairMask = Masks<kMirrored>::Pairs();
        for (const auto& [x, place] : Blocks(even, destination, width)) {
            const Chroma parts = ChromaOf(_mm256_shuffle_epi8(LoadTwice(chroma + x), pairMask));
            Fetch<kStreamed>(place, 2 * below);
            StorePixels<kStreamed>(place, _mm256_shuffle_epi8(LoadTwice(luma0 + x), lumaMask), parts);
            Fetch<kStreamed>(place, 3 * below);
            StorePixels<kStreamed>(place + below, _mm256_shuffle_epi8(LoadTwice(luma1 + x), lumaMask), parts);
        }
    }

    AVX2 static void Nv12Last(std::uint8_t* destination, const std::uint8_t* luma, const std::uint8_t* chroma,
                              std::uint32_t width, bool missingCr) {
        const std::uint32_t even = width < kBlock ? 0 : width & ~1U;
        if (even != 0) {
            const __m256i lumaMask = Masks<kMirrored>::Luma();
            const __m256i pairMask = Masks<kMirrored>::Pairs();
            for (const auto& [x, place] : Blocks(even, destination, width)) {
                StorePixels<false>(place, _mm256_shuffle_epi8(LoadTwice(luma + x), lumaMask),
                                   ChromaOf(_mm256_shuffle_epi8(LoadTwice(chroma + x), pairMask)));
            }
        }
        ScalarNv12<kMirrored>(destination, luma, chroma, width, even, width, missingCr);
    }

    static constexpr PixelRowFunctions kTable = {kMirrored ? MirroredRgb32 : CopyRgb32, Rgb24, Yuy2, Nv12Pair,
                                                 Nv12Last};
};

}  // namespace

constinit const PixelRowFunctions kAvx2Rows = Rows<false>::kTable;
constinit const PixelRowFunctions kAvx2RowsMirrored = Rows<true>::kTable;

}  // namespace preview
