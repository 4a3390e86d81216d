#include "ZAXHostChecksum.h"

#include <zlib.h>

#if defined(__x86_64__) && defined(__GNUC__)
#define ZAX_HAS_FOLDING
#include <immintrin.h>
#endif

namespace {

quint32 Continue(quint32 checksum, const char* bytes, qsizetype size)
{
    return static_cast<quint32>(crc32_z(checksum, reinterpret_cast<const Bytef*>(bytes), static_cast<size_t>(size)));
}

#ifdef ZAX_HAS_FOLDING

constexpr qsizetype blockSize = sizeof(__m128i);
constexpr qsizetype stride = 4 * blockSize;

#define ZAX_FOLDING __attribute__((target("pclmul,sse4.1")))

ZAX_FOLDING inline __m128i Load(const char* bytes)
{
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
}

/// \a block moved on by as many bits as \a factors stand for, onto \a next.
ZAX_FOLDING inline __m128i Fold(__m128i block, __m128i factors, __m128i next)
{
    const __m128i low = _mm_clmulepi64_si128(block, factors, 0x00);
    const __m128i high = _mm_clmulepi64_si128(block, factors, 0x11);
    return _mm_xor_si128(_mm_xor_si128(low, high), next);
}

/// The remainder of \a block by the polynomial.
ZAX_FOLDING inline quint32 Remainder(__m128i block, __m128i by16)
{
    // x^64 mod P; and P with the quotient of x^64 by it, for Barrett's reduction. All bits are in reverse order.
    const __m128i by8 = _mm_set_epi64x(0, 0x163cd6124);
    const __m128i reduction = _mm_set_epi64x(0x1f7011641, 0x1db710641);
    const __m128i mask = _mm_set_epi32(0, -1, 0, -1);
    block = _mm_xor_si128(_mm_srli_si128(block, 8), _mm_clmulepi64_si128(block, by16, 0x10));
    block = _mm_xor_si128(_mm_srli_si128(block, 4), _mm_clmulepi64_si128(_mm_and_si128(block, mask), by8, 0x00));
    __m128i quotient = _mm_clmulepi64_si128(_mm_and_si128(block, mask), reduction, 0x10);
    quotient = _mm_clmulepi64_si128(_mm_and_si128(quotient, mask), reduction, 0x00);
    return static_cast<quint32>(_mm_extract_epi32(_mm_xor_si128(block, quotient), 1));
}

/// The checksum of \a size bytes, a multiple of a block and at least a stride.
ZAX_FOLDING quint32 Folded(const char* bytes, qsizetype size)
{
    // x to the powers by which four blocks, or one, are moved on, mod P.
    const __m128i by64 = _mm_set_epi64x(0x1c6e41596, 0x154442bd4);
    const __m128i by16 = _mm_set_epi64x(0x0ccaa009e, 0x1751997d0);
    const char* const end = bytes + size;
    __m128i lanes[] = {_mm_xor_si128(Load(bytes), _mm_cvtsi32_si128(-1)), Load(bytes + blockSize),
                       Load(bytes + 2 * blockSize), Load(bytes + 3 * blockSize)};
    for (bytes += stride; end - bytes >= stride; bytes += stride) {
        for (int i = 0; i < 4; ++i)
            lanes[i] = Fold(lanes[i], by64, Load(bytes + i * blockSize));
    }
    __m128i block = lanes[0];
    for (int i = 1; i < 4; ++i)
        block = Fold(block, by16, lanes[i]);
    for (; bytes < end; bytes += blockSize)
        block = Fold(block, by16, Load(bytes));
    return ~Remainder(block, by16);
}

bool CanFold()
{
    static const bool canFold = __builtin_cpu_supports("pclmul") && __builtin_cpu_supports("sse4.1");
    return canFold;
}

#endif

} // namespace

quint32 ZAXHostChecksum::Of(QByteArrayView bytes)
{
#ifdef ZAX_HAS_FOLDING
    if (bytes.size() >= stride && CanFold()) {
        const qsizetype folded = bytes.size() / blockSize * blockSize;
        return Continue(Folded(bytes.data(), folded), bytes.data() + folded, bytes.size() - folded);
    }
#endif
    return Continue(0, bytes.data(), bytes.size());
}
