// The SSSE3 rows: 8 pixels at a time. The arithmetic is that of the AVX2 rows, where it is explained.
#include <immintrin.h>

#include "preview/pixels/PixelRows.h"

#define SSSE3 __attribute__((target("ssse3")))
#define SSSE3_INLINE SSSE3 __attribute__((always_inline))

namespace preview {

namespace {

// What the chroma of 8 pixels adds to red and blue and takes from green.
struct Chroma {
    __m128i red;
    __m128i green;
    __m128i blue;
};

SSSE3_INLINE inline __m128i Words(int value) {
    return _mm_set1_epi16(static_cast<short>(value));
}

// From the bytes Cb, Cr of each pixel.
SSSE3_INLINE inline Chroma ChromaOf(__m128i pairs) {
    const __m128i signedPairs = _mm_xor_si128(pairs, _mm_set1_epi8(static_cast<char>(0x80)));
    const __m128i crHigh = _mm_and_si128(pairs, Words(0xFF00));
    Chroma chroma;
    // floor(409 Cr / 2), and the constant that makes 409 E / 2, 64 - 149 * 16 and 32768 of it.
    chroma.red = _mm_add_epi16(_mm_mulhi_epu16(crHigh, Words(409 << 7)), Words(32768 - 26176 - 2320));
    chroma.green = _mm_maddubs_epi16(Words(52 << 8 | 25), signedPairs);
    chroma.blue = _mm_maddubs_epi16(Words(129), signedPairs);
    return chroma;
}

// Shuffles that spread a block's bytes to one word a pixel, reversed when mirrored. "z" makes a zero.
template <bool kMirrored>
struct Masks {
    static constexpr char z = static_cast<char>(0x80);

    // 8 bytes Y -> 256 Y.
    SSSE3_INLINE static __m128i Luma() {
        return kMirrored ? _mm_setr_epi8(z, 7, z, 6, z, 5, z, 4, z, 3, z, 2, z, 1, z, 0)
                         : _mm_setr_epi8(z, 0, z, 1, z, 2, z, 3, z, 4, z, 5, z, 6, z, 7);
    }
    // 4 pairs Cb Cr -> the pair of each pixel.
    SSSE3_INLINE static __m128i Pairs() {
        return kMirrored ? _mm_setr_epi8(6, 7, 6, 7, 4, 5, 4, 5, 2, 3, 2, 3, 0, 1, 0, 1)
                         : _mm_setr_epi8(0, 1, 0, 1, 2, 3, 2, 3, 4, 5, 4, 5, 6, 7, 6, 7);
    }
    // 4 times Y0 Cb Y1 Cr.
    SSSE3_INLINE static __m128i Yuy2Luma() {
        return kMirrored ? _mm_setr_epi8(z, 14, z, 12, z, 10, z, 8, z, 6, z, 4, z, 2, z, 0)
                         : _mm_setr_epi8(z, 0, z, 2, z, 4, z, 6, z, 8, z, 10, z, 12, z, 14);
    }
    SSSE3_INLINE static __m128i Yuy2Pairs() {
        return kMirrored ? _mm_setr_epi8(13, 15, 13, 15, 9, 11, 9, 11, 5, 7, 5, 7, 1, 3, 1, 3)
                         : _mm_setr_epi8(1, 3, 1, 3, 5, 7, 5, 7, 9, 11, 9, 11, 13, 15, 13, 15);
    }
};

SSSE3_INLINE inline __m128i Load128(const std::uint8_t* from) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
}

SSSE3_INLINE inline __m128i Load64(const std::uint8_t* from) {
    return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(from));
}

SSSE3_INLINE inline void Store128(std::uint8_t* to, __m128i value) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to), value);
}

// The address may lie past the picture's end, where there is nothing to fetch.
SSSE3_INLINE inline void Fetch(const std::uint8_t* place, std::ptrdiff_t ahead) {
    _mm_prefetch(reinterpret_cast<const char*>(reinterpret_cast<std::uintptr_t>(place) + ahead), _MM_HINT_T0);
}

// Stores 8 pixels. `luma`: 256 Y for each pixel.
SSSE3_INLINE inline void StorePixels(std::uint8_t* to, __m128i luma, const Chroma& chroma) {
    const __m128i whole = _mm_mulhi_epu16(luma, Words(149 << 8));
    const __m128i half = _mm_sub_epi16(_mm_mulhi_epu16(luma, Words(149 << 7)), Words(1160));
    const __m128i red = _mm_srli_epi16(_mm_subs_epu16(_mm_adds_epu16(whole, chroma.red), Words(0x8000)), 7);
    const __m128i green = _mm_srai_epi16(_mm_sub_epi16(half, chroma.green), 6);
    const __m128i blue = _mm_srai_epi16(_mm_adds_epi16(half, chroma.blue), 6);
    const __m128i interleave = _mm_setr_epi8(0, 8, 1, 9, 2, 10, 3, 11, 4, 12, 5, 13, 6, 14, 7, 15);
    const __m128i blueGreen = _mm_shuffle_epi8(_mm_packus_epi16(blue, green), interleave);
    Store128(to, _mm_unpacklo_epi16(blueGreen, red));
    Store128(to + 16, _mm_unpackhi_epi16(blueGreen, red));
}

constexpr std::uint32_t kBlock = 8;

template <bool kMirrored>
struct Rows {
    using Blocks = PixelBlocks<kBlock, kMirrored>;

    SSSE3 static void MirroredRgb32(std::uint8_t* destination, std::ptrdiff_t ahead, const std::uint8_t* source,
                                    std::uint32_t width) {
        if (width < kBlock) {
            ScalarRgb32<true>(destination, source, width, 0, width);
            return;
        }
        constexpr int kReversed = _MM_SHUFFLE(0, 1, 2, 3);
        for (const auto& [x, place] : Blocks(width, destination, width)) {
            const __m128i first = Load128(source + 4 * x);
            const __m128i second = Load128(source + 4 * x + 16);
            Fetch(place, ahead);
            Store128(place + 16, _mm_shuffle_epi32(first, kReversed));
            Store128(place, _mm_shuffle_epi32(second, kReversed));
        }
    }

    SSSE3 static void Rgb24(std::uint8_t* destination, std::ptrdiff_t ahead, const std::uint8_t* source,
                            std::uint32_t width) {
        if (width < kBlock) {
            ScalarRgb24<kMirrored>(destination, source, width, 0, width);
            return;
        }
        // Of eight pixels, the first four are loaded from their start and the last four so that the load ends with
        // them: no byte past the eight is read.
        constexpr char z = static_cast<char>(0x80);
        const __m128i front = kMirrored ? _mm_setr_epi8(9, 10, 11, z, 6, 7, 8, z, 3, 4, 5, z, 0, 1, 2, z)
                                        : _mm_setr_epi8(0, 1, 2, z, 3, 4, 5, z, 6, 7, 8, z, 9, 10, 11, z);
        const __m128i back = kMirrored ? _mm_setr_epi8(13, 14, 15, z, 10, 11, 12, z, 7, 8, 9, z, 4, 5, 6, z)
                                       : _mm_setr_epi8(4, 5, 6, z, 7, 8, 9, z, 10, 11, 12, z, 13, 14, 15, z);
        const __m128i opaque = _mm_set1_epi32(static_cast<int>(0xFF000000U));
        for (const auto& [x, place] : Blocks(width, destination, width)) {
            const __m128i first = _mm_shuffle_epi8(Load128(source + 3 * x), front);
            const __m128i second = _mm_shuffle_epi8(Load128(source + 3 * x + 8), back);
            Fetch(place, ahead);
            Store128(place + (kMirrored ? 16 : 0), _mm_or_si128(first, opaque));
            Store128(place + (kMirrored ? 0 : 16), _mm_or_si128(second, opaque));
        }
    }

    SSSE3 static void Yuy2(std::uint8_t* destination, std::ptrdiff_t ahead, const std::uint8_t* source,
                           std::uint32_t width, bool missingCr) {
        const std::uint32_t even = width & ~1U;
        if (even < kBlock) {
            ScalarYuy2<kMirrored>(destination, source, width, 0, width, missingCr);
            return;
        }
        const __m128i lumaMask = Masks<kMirrored>::Yuy2Luma();
        const __m128i pairMask = Masks<kMirrored>::Yuy2Pairs();
        for (const auto& [x, place] : Blocks(even, destination, width)) {
            const __m128i bytes = Load128(source + 2 * x);
            Fetch(place, ahead);
            StorePixels(place, _mm_shuffle_epi8(bytes, lumaMask), ChromaOf(_mm_shuffle_epi8(bytes, pairMask)));
        }
        ScalarYuy2<kMirrored>(destination, source, width, even, width, missingCr);
    }

    SSSE3 static void Nv12Pair(std::uint8_t* destination, std::ptrdiff_t below, const std::uint8_t* luma0,
                               const std::uint8_t* luma1, const std::uint8_t* chroma, std::uint32_t width,
                               bool missingCr) {
        const std::uint32_t even = width < kBlock ? 0 : width & ~1U;
        if (even != 0) {
            const __m128i lumaMask = Masks<kMirrored>::Luma();
            const __m128i pairMask = Masks<kMirrored>::Pairs();
            for (const auto& [x, place] : Blocks(even, destination, width)) {
                const Chroma parts = ChromaOf(_mm_shuffle_epi8(Load64(chroma + x), pairMask));
                Fetch(place, 2 * below);
                StorePixels(place, _mm_shuffle_epi8(Load64(luma0 + x), lumaMask), parts);
                Fetch(place, 3 * below);
                StorePixels(place + below, _mm_shuffle_epi8(Load64(luma1 + x), lumaMask), parts);
            }
        }
        ScalarNv12<kMirrored>(destination, luma0, chroma, width, even, width, missingCr);
        ScalarNv12<kMirrored>(destination + below, luma1, chroma, width, even, width, missingCr);
    }

    SSSE3 static void Nv12Last(std::uint8_t* destination, const std::uint8_t* luma, const std::uint8_t* chroma,
                               std::uint32_t width, bool missingCr) {
        const std::uint32_t even = width < kBlock ? 0 : width & ~1U;
        if (even != 0) {
            const __m128i lumaMask = Masks<kMirrored>::Luma();
            const __m128i pairMask = Masks<kMirrored>::Pairs();
            for (const auto& [x, place] : Blocks(even, destination, width)) {
                StorePixels(place, _mm_shuffle_epi8(Load64(luma + x), lumaMask),
                            ChromaOf(_mm_shuffle_epi8(Load64(chroma + x), pairMask)));
            }
        }
        ScalarNv12<kMirrored>(destination, luma, chroma, width, even, width, missingCr);
    }

    static constexpr PixelRowFunctions kTable = {kMirrored ? MirroredRgb32 : CopyRgb32, Rgb24, Yuy2, Nv12Pair,
                                                 Nv12Last};
};

}  // namespace

constinit const PixelRowFunctions kSsse3Rows = Rows<false>::kTable;
constinit const PixelRowFunctions kSsse3RowsMirrored = Rows<true>::kTable;

}  // namespace preview
