/* SPDX-License-Identifier: Apache-2.0 */
#ifndef PELKRAFT_DITHER_H
#define PELKRAFT_DITHER_H

#include "pelkraft/plan.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Tones of ink turned into the steps of a pattern, by a mask.
 *
 * Shape      Rows of interleaved samples of 8 or 16 bits become rows of interleaved steps of a
 *            byte. Samples of 16 bits have the byte order of the processor.
 * Method     A sample between the inks of two steps becomes the upper one in as large a share of
 *            the mask's places, and the lower one in all others, so that an even area has the ink
 *            that was asked for. A step depends on the sample, its channel and its place on the
 *            page alone: parts of a page that are dithered one by one fit together. The bytes are
 *            the same on every machine.
 * Mask       256 by 256 ranks, which repeat in both directions. Each channel has them at another
 *            place.
 * All else   Units, errors, ownership, threads and records are as plan.h has them.
 */

/* The largest expected ink of a step. */
#define PLK_MOST_INK ((uint32_t)1 << 30)

/* The tones of a channel. */
typedef struct plk_tones
{
    /* The expected ink of each step in any unit: 0, then rising, to PLK_MOST_INK at most. */
    const uint32_t* inks;
    /* The number of steps, 1 to 256. */
    int32_t steps;
    /* The sample of no ink. */
    int32_t no_ink;
    /* The sample of the last step's ink, at any other number. Samples between the two are tones in
     * equal distances, and those beyond either are taken for it. */
    int32_t full_ink;
    /* 0. */
    int32_t reserved;
} plk_tones;

/* A dither as it is asked for. The steps depend on nothing else. */
typedef struct plk_dither_spec
{
    /* sizeof this record. */
    uint32_t size;
    /* 8 or 16, the bits of a sample. */
    int32_t bits;
    /* An entry for each channel. Null, with no channels, is none. */
    const plk_tones* tones;
    /* Samples of a pixel, 0 or more. */
    int32_t channels;
    /* PLK_ROAD_AUTOMATIC or PLK_ROAD_PORTABLE. */
    int32_t road;
    /* 65,536 ranks, row by row, of which a sample takes those below its own share of 65536. Null
     * stands for plk_dither_mask(). */
    const uint16_t* mask;
} plk_dither_spec;

/* The bytes that a dither needs of the rows that it is run on. */
typedef struct plk_dither_facts
{
    /* sizeof this record. */
    uint32_t size;
    /* 1: source and target may be the same rows at the same strides. Those of 16 bits must not
     * share bytes with one another then. */
    int32_t in_place;
    /* Bytes of a source pixel. */
    uint64_t source_pixel_bytes;
    /* Bytes of a target pixel, a step for each channel. */
    uint64_t target_pixel_bytes;
} plk_dither_facts;

/* A dither, made ready. */
typedef struct plk_dither plk_dither;

/* Checks a spec and makes a dither of it. Inks and mask are copied. */
PELKRAFT_EXPORT plk_status plk_dither_create(const plk_dither_spec* spec, plk_dither** dither,
                                             plk_failure* failure);

/* Dithers so many rows of so many pixels, the first of which stands at column x of row y of its
 * page. Any two pages whose x and y agree modulo 256 have the same steps. Source and target must
 * not share a byte that is written, unless they have the same base, offset and strides. Of no rows
 * nothing is checked but the records, and the pointers may be null. */
PELKRAFT_EXPORT plk_status plk_dither_run(const plk_dither* dither, int64_t x, int64_t y,
                                          uint64_t rows, uint64_t pixels, const plk_source* source,
                                          const plk_target* target, plk_failure* failure);

/* Tells what the rows of a run take. */
PELKRAFT_EXPORT plk_status plk_dither_needs(const plk_dither* dither, plk_dither_facts* facts,
                                            plk_failure* failure);

/* The library's own mask, each of its 65,536 ranks once, or null where the library was built
 * without it. */
PELKRAFT_EXPORT const uint16_t* plk_dither_mask(void);

/* Frees a dither. Null is accepted. */
PELKRAFT_EXPORT void plk_dither_free(plk_dither* dither);

#ifdef __cplusplus
}
#endif

#endif
