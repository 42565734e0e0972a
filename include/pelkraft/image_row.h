// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "pelkraft/export.h"

namespace zvk {
namespace Pelkraft {

// One row of pixels: a geometry, and a pointer to the bytes that it describes.
//
// Shape      Interleaved: pixel after pixel, each sample in whole bytes.
//            Planar: one bit-packed plane per channel, rounded up to a byte, no stride between.
// Units      Width in pixels, depth in bits per sample, sizes in bytes; all 32-bit signed.
// Ranges     Nothing is checked here. A conversion serves the depths 1, 2, 8, 10 and 16 and
//            refuses what it can't serve. Samples of 16 bits are in the machine's byte order.
// Errors     Thrown as const char*, a constant text given at the operation. std::bad_alloc where
//            a buffer can't be had; the row is then as it was.
// Memory     A conversion allocates nothing, save where the bytes of the rows overlap, where a map
//            has more than 64 entries or one beyond the source's channels, and where the portable
//            road unpacks samples. It takes at most 50 KB of the stack.
// Ownership  A row frees a buffer only if it allocated it. Copies share the pointer and the claim
//            to it: see to it that only one copy of an owning row is destroyed or released.
// Threads    Many readers or one writer. Conversions of distinct rows may run at once.
//
// The order of the virtual operations and of the fields is a binary interface: append, never
// reorder. Microsoft's binary interface numbers the overloads of one name from the last declared
// to the first, so each pair is declared the other way round for it.
class PELKRAFT_EXPORT ImageRow
{
public:
    // Bytes that a buffer allocated here is aligned to.
    static const int Alignment = 16;
    // Zero bytes that stand after the pixels in a buffer allocated here.
    static const int SafetyTrail = 64;

    // The options of one conversion.
    struct PELKRAFT_EXPORT OptionalParameters
    {
        // Carried along, without an effect.
        bool firstFlag;
        // True takes the portable road, without vector instructions, whatever the processor offers.
        // Only that road leaves channels out, which stay packed: it unpacks all channels of 1 or 2
        // bits only if they are 13 to 16, 29 to 32 and so on. Without the flag it is taken where
        // zvk::SystemTools::GetSseVersion() is below 3: on x86 before SSSE3, under a limit, and in
        // builds for other processors without SIMDe.
        bool forcePortable;
        // Carried along, without an effect.
        bool thirdFlag;

        // false, false, true
        OptionalParameters();
        // as given, and true
        OptionalParameters(bool newFirstFlag, bool newForcePortable);
    };

    // An empty row: geometry 0, no buffer, capacity -1.
    ImageRow();
    // Takes newData, which must hold CalcBufferSize() bytes and outlive the row. With null it
    // allocates a buffer of its own: pixels uninitialised, then SafetyTrail zeros.
    ImageRow(int newWidth, int newChannels, int newBits, bool newPlanar, unsigned char* newData);
    // Takes over geometry, pointer and claim.
    ImageRow(const ImageRow& other);
    // Does as the copy does. A buffer that this row owns is not freed: release it before.
    ImageRow& operator=(const ImageRow& other);

    // Bytes of the pixels of a row of this geometry, without the trail. Computed in 32 bits,
    // which wrap.
    //   interleaved  channels * width * ((bits + 7) / 8)
    //   planar       channels * ((width * bits + 7) / 8)
    static int CalcBufferSize(int width, int channels, int bits, bool planar);

    // Frees an own buffer.
    virtual ~ImageRow();

    // Takes a buffer, which must hold GetDataSize() bytes and outlive the row. With null, keeps
    // the present one if it is large enough, else allocates one; old pixels are not carried over.
    // Giving an owning row its own pointer is a caller's error.
    virtual void SetData(unsigned char* newData);

    // Stores the geometry, then does as SetData. If it throws, the row is as it was.
    virtual void SetAll(int newWidth, int newChannels, int newBits, bool newPlanar,
                        unsigned char* newData);

    // Frees an own buffer and leaves an empty row.
    virtual void Release();

    // The first byte of the pixels; null in an empty row.
    virtual unsigned char* GetData() const;
    // CalcBufferSize() of the present geometry; the buffer may hold more.
    virtual int GetDataSize() const;
    // The geometry, as it was given.
    virtual int GetWidth() const;
    virtual int GetChannels() const;
    virtual int GetBits() const;
    virtual bool IsPlanar() const;

    // Bytes of one plane. On an interleaved row it throws
    // "zvk::Pelkraft::ImageRow Invalid operation: interleaved data has no planes".
    virtual int CalcPlaneSize() const;

    // Fills all that the buffer holds, the trail excepted, with the low byte of value.
    virtual void FillBuffer(int value);

    // Fills this row from source, which may have another layout and depth, in the same channels.
    // The narrower row limits the conversion: pixels beyond it stay as they were. Null options
    // are default options. Throws
    //   "zvk::Pelkraft::ImageRow::FillFrom unsupported conversion"  channel counts differ
    //   "zvk::Pelkraft::ImageRowFormat unsupported bit depth"       not 1, 2, 8, 10 or 16
    //   "zvk::Pelkraft::ImageRowFormat invalid width"               negative, or a row whose size
    //                                                               does not fit 32 bits
    //   "zvk::Pelkraft::ImageRowFormat invalid channel count"       negative
    //   "zvk::Pelkraft::Convert unsupported conversion", the same with " to 16 bit" or
    //   " from 16 bit" after it, "zvk::Pelkraft::ChunkConvertFacility::Create_Packer unsupported
    //   format" and "...::Create_Unpacker unsupported format": no way leads from the source's
    //   depth and layout to this row's
    // and, where it needs memory and there is none, std::bad_alloc or
    //   "zvk::Pelkraft::ConversionPortal memory allocation failed for relocation buffer".
    // All of them come before the first pixel is written, and each is left as it was thrown. Each
    // is logged once; twice where the guards log structured exceptions, as on Windows, since a
    // throw is one there and is logged by its number first.
#if defined(_MSC_VER)
    virtual void FillFrom(const ImageRow& source, bool firstFlag, bool forcePortable);
    virtual void FillFrom(const ImageRow& source, const OptionalParameters* options);
#else
    virtual void FillFrom(const ImageRow& source, const OptionalParameters* options);
    virtual void FillFrom(const ImageRow& source, bool firstFlag, bool forcePortable);
#endif

    // As FillFrom, where channel c of this row is channel map[c] of source. map has one entry
    // for each of this row's channels and is only read during the call; a negative entry gives 0,
    // an entry beyond the source's channels an unspecified value. A null map throws
    // "zvk::Pelkraft::ImageRow::FillFromWithRemap unsupported conversion".
#if defined(_MSC_VER)
    virtual void FillFromWithRemap(const ImageRow& source, const int* map, bool firstFlag,
                                   bool forcePortable);
    virtual void FillFromWithRemap(const ImageRow& source, const int* map,
                                   const OptionalParameters* options);
#else
    virtual void FillFromWithRemap(const ImageRow& source, const int* map,
                                   const OptionalParameters* options);
    virtual void FillFromWithRemap(const ImageRow& source, const int* map, bool firstFlag,
                                   bool forcePortable);
#endif

    // As FillFrom, where each pixel of source is written abs(factor) times. A negative factor
    // reads source from its last pixel to its first. factor is 1, 2, 4, -1, -2 or -4; any other,
    // and differing channel counts, throw
    // "zvk::Pelkraft::ImageRow::FillFromWithPixelRepeat unsupported conversion".
#if defined(_MSC_VER)
    virtual void FillFromWithPixelRepeat(const ImageRow& source, int factor, bool firstFlag,
                                         bool forcePortable);
    virtual void FillFromWithPixelRepeat(const ImageRow& source, int factor,
                                         const OptionalParameters* options);
#else
    virtual void FillFromWithPixelRepeat(const ImageRow& source, int factor,
                                         const OptionalParameters* options);
    virtual void FillFromWithPixelRepeat(const ImageRow& source, int factor, bool firstFlag,
                                         bool forcePortable);
#endif

protected:
    // Bytes that SetData has to find room for.
    virtual int CalcDataSize() const;

    // The work of FillFrom and its kin; an override keeps the logging of the public operation.
    virtual void FillFromBody2(const ImageRow& source, const OptionalParameters& options);
    virtual void FillFromWithRemapBody2(const ImageRow& source, const int* map,
                                        const OptionalParameters& options);
    virtual void FillFromWithPixelRepeatBody2(const ImageRow& source, int factor,
                                              const OptionalParameters& options);

    // Between the public operations and the bodies: logs structured exceptions where the platform
    // has them, and calls the body.
    void FillFromSehGuard(const ImageRow& source, const OptionalParameters& options);
    void FillFromWithRemapSehGuard(const ImageRow& source, const int* map,
                                   const OptionalParameters& options);
    void FillFromWithPixelRepeatSehGuard(const ImageRow& source, int factor,
                                         const OptionalParameters& options);

private:
    int width;
    int channels;
    int bits;
    bool planar;
    bool ownsData;
    unsigned char* data;
    int dataCapacity;
};

} // namespace Pelkraft
} // namespace zvk
