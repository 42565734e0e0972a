/* SPDX-License-Identifier: Apache-2.0 */
#ifndef PELKRAFT_PLAN_H
#define PELKRAFT_PLAN_H

#include "pelkraft/export.h"

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Conversions of rows and dot patterns that are planned once and run for as many rows as there
 * are.
 *
 * Shape      An interleaved row has the samples of a pixel side by side, each in whole bytes. A
 *            planar row has one plane for each channel; the samples of 1 and 2 bits are packed, the
 *            first in the top bits, and the unused low bits of a plane's last byte are written as
 *            zeros. Samples of 16 bits have the byte order of the processor.
 * Units      Widths in pixels, depths in bits, sizes, offsets and strides in bytes. Counts have 64
 *            bits.
 * Errors     Each function that can fail answers a status, and describes the failure in a record
 *            where the caller gives one. Nothing is thrown. All is checked before the first byte is
 *            written. A handle that could not be made is null.
 * Ownership  The caller frees each handle once. Nothing of what is passed to a function is kept
 *            after it returns; specs, maps and texts are copied.
 * Threads    A handle never changes: any number of threads may use it at once, and free it when
 *            none does. A run allocates nothing.
 * Records    Each begins with its size in bytes, set by the caller to sizeof. A record that is
 *            shorter than this header's is one of an older header: the fields that it lacks are 0.
 *            A longer one is accepted where all that this library does not know is 0; of a
 *            failure's record that rest is left as it is. The library writes no byte beyond the
 *            size.
 */

/* The answer of a function. */
typedef int32_t plk_status;

/* The answers. */
enum
{
    /* All is done. */
    PLK_OK = 0,
    /* A field has a value that none may have. */
    PLK_INVALID = 1,
    /* Each field is valid, but nothing serves all of them together. */
    PLK_UNSUPPORTED = 2,
    /* A record holds something that a later version of the library understands. */
    PLK_TOO_NEW = 3,
    /* A buffer ends before the bytes that are needed. */
    PLK_TOO_SMALL = 4,
    /* Rows share bytes that are to be written. */
    PLK_OVERLAP = 5,
    /* There is not enough memory. */
    PLK_NO_MEMORY = 6,
    /* A pattern text breaks a rule of its format. */
    PLK_BAD_TEXT = 7,
    /* A saved record is damaged or is none. */
    PLK_BAD_RECORD = 8
};

/* What went wrong. */
typedef struct plk_failure
{
    /* sizeof this record. */
    uint32_t size;
    /* The answer of the function. */
    plk_status status;
    /* The field or argument as the program's text names it, such as "target.bits", or empty. */
    char field[32];
    /* The value that it had, or 0 where there is no number to name. */
    int64_t given;
    /* A value that would do, or 0. */
    int64_t needed;
    /* The place in a text, counted from 1, or 0 where there is none. */
    uint32_t line;
    /* The place in that line, counted in the same way. */
    uint32_t column;
    /* A sentence in English that names the field, what it was and what would do. */
    char text[256];
} plk_failure;

/* The form of a row. */
typedef struct plk_format
{
    /* Pixels, 0 or more. */
    int64_t width;
    /* Samples of a pixel, 0 or more. */
    int32_t channels;
    /* 1, 2, 8, 10 or 16. Interleaved rows of 1 and 2 bits hold bytes and those of 10 bits hold
     * samples of 16 bits, whose values are not limited to the depth. Planes of 10 bits are
     * refused. */
    int32_t bits;
    /* 1 for planes, 0 for interleaved samples. */
    int32_t planar;
    /* 0. */
    int32_t reserved;
} plk_format;

/* What happens to samples where the depth changes. */
enum
{
    /* As ImageRow::FillFrom treats them: 8 and 16 bits are tones, 1 and 2 bits are levels. */
    PLK_SAMPLES_AS_FILL = 0,
    /* Full scale becomes full scale. 8 and 16 bits become one another as FillFrom has it; tones of
     * 8 bits are rounded to the nearest level, and those of 16 bits become 8 bits before. */
    PLK_SAMPLES_AS_TONES = 1,
    /* A number stays what it is, and keeps its low bits where it does not fit. */
    PLK_SAMPLES_AS_LEVELS = 2
};

/* The entry of a map for zeros. */
#define PLK_EMPTY ((int32_t)-1)
/* The entry of a map for a constant sample as it stands in the target, from 0 to the largest that a
 * target's sample can be. */
#define PLK_CONSTANT(sample) ((int32_t)(-2 - (int32_t)(sample)))

/* The code that runs. */
enum
{
    /* The best that the processor has. */
    PLK_ROAD_AUTOMATIC = 0,
    /* Plain code without vectors, with the same bytes. */
    PLK_ROAD_PORTABLE = 1
};

/* A conversion as it is asked for. The bytes of the target depend on nothing else. */
typedef struct plk_spec
{
    /* sizeof this record. */
    uint32_t size;
    /* 0. */
    int32_t reserved;
    /* The rows that are read. */
    plk_format source;
    /* The rows that are written. */
    plk_format target;
    /* An entry for each channel of the target: a channel of the source, PLK_EMPTY or
     * PLK_CONSTANT. Null, with a count of 0, takes the channels as they are. */
    const int32_t* map;
    /* The number of entries. */
    uint64_t map_count;
    /* Each pixel stands 1, 2 or 4 times in the target; 0 is taken for 1. */
    int32_t repeat;
    /* 1 reads the source from its last pixel to its first. */
    int32_t mirror;
    /* PLK_SAMPLES_AS_FILL, _TONES or _LEVELS. */
    int32_t samples;
    /* 1 turns each sample into the target's full scale less the sample, after all else. Entries
     * that name no channel stay as they are. */
    int32_t invert;
    /* 1 lets a row end where the shorter side ends; 0 refuses widths that do not meet. A mirrored
     * row begins at the source's last pixel all the same. */
    int32_t clip;
    /* 1 writes past the cache, for targets that are not read again soon. */
    int32_t stream;
    /* PLK_ROAD_AUTOMATIC or PLK_ROAD_PORTABLE. */
    int32_t road;
    /* 0. */
    int32_t reserved2;
} plk_spec;

/* What a plan needs of the rows that it is run on. */
typedef struct plk_needs
{
    /* sizeof this record. */
    uint32_t size;
    /* 1 if source and target may be the same rows at the same strides. */
    int32_t in_place;
    /* Bytes of a row of the source: of its pixels if it is interleaved, else of all planes, one
     * directly after the other. */
    uint64_t source_row_bytes;
    /* Bytes of one plane, or of the row where it is interleaved. */
    uint64_t source_plane_bytes;
    /* The same of the target. */
    uint64_t target_row_bytes;
    /* The same of the target. */
    uint64_t target_plane_bytes;
} plk_needs;

/* Rows in memory. Byte 0 of row r, and of plane c where the row has planes, stands at
 *   base + offset + r * row_stride + c * plane_stride
 * Any address will do. Strides may be negative, and those of a source 0. */
typedef struct plk_source
{
    /* sizeof this record. */
    uint32_t size;
    /* 0. */
    int32_t reserved;
    /* The place that offset and bytes are counted from. */
    const void* base;
    /* So many bytes from base on may be read. Of planes a map needs those that it names, and those
     * between them. */
    uint64_t bytes;
    /* Bytes from base to the first row. */
    int64_t offset;
    /* Bytes from a row to the next; of one row it may be any number. */
    int64_t row_stride;
    /* Bytes from a plane to the next. Interleaved rows do without it. */
    int64_t plane_stride;
} plk_source;

/* Rows in memory that are written, which stand as those of a source do. */
typedef struct plk_target
{
    /* sizeof this record. */
    uint32_t size;
    /* 0. */
    int32_t reserved;
    /* The place that offset and bytes are counted from. */
    void* base;
    /* So many bytes from base on may be written. */
    uint64_t bytes;
    /* Bytes from base to the first row. */
    int64_t offset;
    /* Bytes from a row to the next; of one row it may be any number. */
    int64_t row_stride;
    /* Bytes from a plane to the next. Interleaved rows do without it. */
    int64_t plane_stride;
} plk_target;

/* The form of a description. */
enum
{
    /* Lines for people. */
    PLK_TEXT = 0,
    /* An object whose "schema" is 1. */
    PLK_JSON = 1
};

/* A conversion, decided. */
typedef struct plk_plan plk_plan;

/* Checks a spec and makes a plan of it. */
PELKRAFT_EXPORT plk_status plk_plan_create(const plk_spec* spec, plk_plan** plan,
                                           plk_failure* failure);

/* Converts so many rows. Source and target must not share a byte that is written, unless they
 * have the same base, offset and strides and plk_plan_needs allows it. Of no rows nothing is
 * checked but the records, and the pointers may be null. */
PELKRAFT_EXPORT plk_status plk_plan_run(const plk_plan* plan, const plk_source* source,
                                        const plk_target* target, uint64_t rows,
                                        plk_failure* failure);

/* Tells what the rows of a run take. */
PELKRAFT_EXPORT plk_status plk_plan_needs(const plk_plan* plan, plk_needs* needs,
                                          plk_failure* failure);

/* The plk_spec that a plan was made of, in the form that equal plans share. The map is the plan's
 * own and lives as long. */
PELKRAFT_EXPORT plk_status plk_plan_spec(const plk_plan* plan, plk_spec* spec,
                                         plk_failure* failure);

/* Describes the plan as it runs on this machine: steps, road, level, bytes read and written for
 * each row. The text ends with a zero byte. `needed` is set to its bytes with that one; a buffer of
 * fewer bytes is left as it is, with PLK_TOO_SMALL, and may be null if it has none. */
PELKRAFT_EXPORT plk_status plk_plan_describe(const plk_plan* plan, int32_t form, char* buffer,
                                             uint64_t bytes, uint64_t* needed,
                                             plk_failure* failure);

/* Saves the record that the plan was made of, in bytes that are the same for equal plans, on every
 * machine. The sizes are as for a description, without a zero byte. */
PELKRAFT_EXPORT plk_status plk_plan_save(const plk_plan* plan, void* buffer, uint64_t bytes,
                                         uint64_t* needed, plk_failure* failure);

/* Makes a plan of a saved record, which goes through the checks of a spec. */
PELKRAFT_EXPORT plk_status plk_plan_load(const void* record, uint64_t bytes, plk_plan** plan,
                                         plk_failure* failure);

/* Frees a plan. Null is accepted. */
PELKRAFT_EXPORT void plk_plan_free(plk_plan* plan);

/* The engine of a pattern. */
enum
{
    /* The bytes of DotWeavePattern::Sse on every machine, and its limits. */
    PLK_ENGINE_AUTOMATIC = 0,
    /* The limits of DotWeavePattern::X86. PLK_INVALID is the answer to 1, which runs on across
     * rows. */
    PLK_ENGINE_X86 = 2,
    /* The same as automatic, by name. */
    PLK_ENGINE_SSE = 3
};

/* The choices that a pattern is made with. */
typedef struct plk_pattern_spec
{
    /* sizeof this record. */
    uint32_t size;
    /* PLK_ENGINE_AUTOMATIC, _X86 or _SSE. */
    int32_t engine;
} plk_pattern_spec;

/* What a pattern needs of the rows that it is run on, and what it holds. */
typedef struct plk_pattern_facts
{
    /* sizeof this record. */
    uint32_t size;
    /* Bytes of a source pixel, one step for each in-colour. */
    int32_t in_colours;
    /* Bytes of a target pixel, one value for each out-ink. */
    int32_t out_inks;
    /* The number that stands in the text. */
    int32_t version;
    /* Combinations of in-colours' alternatives. */
    int64_t combinations;
    /* Entries of the field that pixels draw from, one after the other. */
    int64_t field_size;
    /* For each in-colour the highest step, 255 for one that is listed but not described. */
    uint8_t top_steps[16];
} plk_pattern_facts;

/* The two lists of names. */
enum
{
    /* The names of in-colours. */
    PLK_IN_COLOURS = 0,
    /* The names of out-inks. */
    PLK_OUT_INKS = 1
};

/* A dot pattern, read. */
typedef struct plk_pattern plk_pattern;

/* Reads a text of so many bytes, which may end with a zero byte. A null spec is one of zeros. */
PELKRAFT_EXPORT plk_status plk_pattern_create(const char* text, uint64_t bytes,
                                              const plk_pattern_spec* spec, plk_pattern** pattern,
                                              plk_failure* failure);

/* Applies the pattern to rows of interleaved pixels, a byte for each in-colour to a byte for each
 * out-ink. What row r becomes depends on text, engine and r alone: its pixels begin at entry
 * r mod 65536 of the jump table, as after construction. Rows must not overlap. */
PELKRAFT_EXPORT plk_status plk_pattern_run(const plk_pattern* pattern, uint64_t first_row,
                                           uint64_t rows, uint64_t pixels, const plk_source* source,
                                           const plk_target* target, plk_failure* failure);

/* Tells what the rows of a run take, and what the pattern holds. */
PELKRAFT_EXPORT plk_status plk_pattern_needs(const plk_pattern* pattern, plk_pattern_facts* facts,
                                             plk_failure* failure);

/* A name of a list, owned by the pattern, or null beyond its end. */
PELKRAFT_EXPORT const char* plk_pattern_name(const plk_pattern* pattern, int32_t list,
                                             int32_t index);

/* The text and the engine that a pattern was made of. The text is the pattern's own and lives as
 * long; it ends with a zero byte, which is not counted. */
PELKRAFT_EXPORT plk_status plk_pattern_text(const plk_pattern* pattern, const char** text,
                                            uint64_t* bytes, plk_pattern_spec* spec,
                                            plk_failure* failure);

/* Saves text and engine; sizes and equality are as for plk_plan_save. */
PELKRAFT_EXPORT plk_status plk_pattern_save(const plk_pattern* pattern, void* buffer,
                                            uint64_t bytes, uint64_t* needed, plk_failure* failure);

/* Makes a pattern of a saved record, which goes through the checks of a text. */
PELKRAFT_EXPORT plk_status plk_pattern_load(const void* record, uint64_t bytes,
                                            plk_pattern** pattern, plk_failure* failure);

/* Frees a pattern. Null is accepted. */
PELKRAFT_EXPORT void plk_pattern_free(plk_pattern* pattern);

#ifdef __cplusplus
}
#endif

#endif
