/* A customer in C99 that calls every function of plan.h and dither.h once with success, and sees
 * one fail. */
#include "pelkraft/dither.h"
#include "pelkraft/plan.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static int faults = 0;

static void Expect(int holds, const char* what)
{
    if (!holds) {
        fprintf(stderr, "%s\n", what);
        ++faults;
    }
}
#define EXPECT(condition) Expect(condition, #condition)

static const char text[] = "DotWeavePattern\nVERSION 2\n"
                           "BEGIN_OUT_INKS Cyan END_OUT_INKS\n"
                           "BEGIN_IN_COLORS Cyan END_IN_COLORS\n"
                           "BEGIN_IN_COLOR Cyan\nBEGIN_INKS Cyan END_INKS\n"
                           "BEGIN_VALUES\n1 1 0-255\nEND_VALUES\nEND_IN_COLOR\n";

/* Two rows of three pixels split into planes. */
static void RunPlan(const plk_plan* plan)
{
    const unsigned char pixels[12] = {1, 2, 11, 12, 21, 22, 31, 32, 41, 42, 51, 52};
    const unsigned char planes[12] = {1, 11, 21, 2, 12, 22, 31, 41, 51, 32, 42, 52};
    unsigned char found[12];
    plk_source source;
    plk_target target;
    memset(&source, 0, sizeof source);
    source.size = sizeof source;
    source.base = pixels;
    source.bytes = sizeof pixels;
    source.row_stride = 6;
    memset(&target, 0, sizeof target);
    target.size = sizeof target;
    target.base = found;
    target.bytes = sizeof found;
    target.row_stride = 6;
    target.plane_stride = 3;
    EXPECT(plk_plan_run(plan, &source, &target, 2, NULL) == PLK_OK);
    EXPECT(memcmp(found, planes, sizeof found) == 0);
}

static void UsePlan(void)
{
    plk_spec spec;
    plk_needs needs;
    plk_plan* plan = NULL;
    plk_plan* loaded = NULL;
    char record[1000];
    uint64_t bytes = 0;
    memset(&spec, 0, sizeof spec);
    spec.size = sizeof spec;
    spec.source.width = spec.target.width = 3;
    spec.source.channels = spec.target.channels = 2;
    spec.source.bits = spec.target.bits = 8;
    spec.target.planar = 1;
    EXPECT(plk_plan_create(&spec, &plan, NULL) == PLK_OK);
    RunPlan(plan);
    memset(&needs, 0, sizeof needs);
    needs.size = sizeof needs;
    EXPECT(plk_plan_needs(plan, &needs, NULL) == PLK_OK);
    EXPECT(needs.source_row_bytes == 6 && needs.target_plane_bytes == 3);
    EXPECT(plk_plan_describe(plan, PLK_TEXT, record, sizeof record, &bytes, NULL) == PLK_OK);
    EXPECT(strncmp(record, "road: direct", 12) == 0 && strlen(record) + 1 == bytes);
    EXPECT(plk_plan_save(plan, record, sizeof record, &bytes, NULL) == PLK_OK);
    EXPECT(plk_plan_load(record, bytes, &loaded, NULL) == PLK_OK);
    RunPlan(loaded);
    memset(&spec, 0, sizeof spec);
    spec.size = sizeof spec;
    EXPECT(plk_plan_spec(loaded, &spec, NULL) == PLK_OK);
    EXPECT(spec.source.width == 3 && spec.map == NULL && spec.target.planar == 1);
    plk_plan_free(loaded);
    plk_plan_free(plan);
}

static void SeeAFailure(void)
{
    plk_spec spec;
    plk_failure failure;
    plk_plan* plan = NULL;
    memset(&spec, 0, sizeof spec);
    spec.size = sizeof spec;
    spec.source.bits = spec.target.bits = 8;
    spec.source.width = -5;
    memset(&failure, 0, sizeof failure);
    failure.size = sizeof failure;
    EXPECT(plk_plan_create(&spec, &plan, &failure) == PLK_INVALID);
    EXPECT(plan == NULL && failure.status == PLK_INVALID && failure.given == -5);
    EXPECT(strcmp(failure.field, "source.width") == 0);
    EXPECT(strcmp(failure.text, "source.width is -5; it must be 0 or more") == 0);
}

static void UsePattern(void)
{
    const unsigned char steps[3] = {0, 1, 1};
    unsigned char inks[3] = {9, 9, 9};
    plk_pattern_spec spec = {sizeof(plk_pattern_spec), PLK_ENGINE_SSE};
    plk_pattern_facts facts;
    plk_pattern* pattern = NULL;
    plk_pattern* loaded = NULL;
    plk_source source = {sizeof(plk_source), 0, NULL, 3, 0, 3, 0};
    plk_target target = {sizeof(plk_target), 0, NULL, 3, 0, 3, 0};
    char record[1000];
    const char* kept = NULL;
    uint64_t bytes = 0;
    EXPECT(plk_pattern_create(text, sizeof text, &spec, &pattern, NULL) == PLK_OK);
    source.base = steps;
    target.base = inks;
    EXPECT(plk_pattern_run(pattern, 7, 1, 3, &source, &target, NULL) == PLK_OK);
    EXPECT(inks[0] == 0 && inks[1] == 255 && inks[2] == 255);
    memset(&facts, 0, sizeof facts);
    facts.size = sizeof facts;
    EXPECT(plk_pattern_needs(pattern, &facts, NULL) == PLK_OK);
    EXPECT(facts.in_colours == 1 && facts.out_inks == 1 && facts.top_steps[0] == 1);
    EXPECT(strcmp(plk_pattern_name(pattern, PLK_OUT_INKS, 0), "Cyan") == 0);
    EXPECT(plk_pattern_name(pattern, PLK_OUT_INKS, 1) == NULL);
    EXPECT(plk_pattern_text(pattern, &kept, &bytes, &spec, NULL) == PLK_OK);
    EXPECT(strcmp(kept, text) == 0 && spec.engine == PLK_ENGINE_SSE);
    EXPECT(plk_pattern_save(pattern, record, sizeof record, &bytes, NULL) == PLK_OK);
    EXPECT(plk_pattern_load(record, bytes, &loaded, NULL) == PLK_OK);
    plk_pattern_free(loaded);
    plk_pattern_free(pattern);
}

static void UseDither(void)
{
    const unsigned char samples[4] = {255, 0, 128, 7};
    unsigned char steps[4] = {9, 9, 9, 9};
    const uint32_t inks[3] = {0, 400, 1000};
    plk_tones tones = {inks, 3, 255, 0, 0};
    plk_dither_spec spec;
    plk_dither_facts facts;
    plk_dither* dither = NULL;
    plk_source source = {sizeof(plk_source), 0, NULL, 4, 0, 4, 0};
    plk_target target = {sizeof(plk_target), 0, NULL, 4, 0, 4, 0};
    memset(&spec, 0, sizeof spec);
    spec.size = sizeof spec;
    spec.bits = 8;
    spec.tones = &tones;
    spec.channels = 1;
    spec.mask = plk_dither_mask();
    EXPECT(plk_dither_create(&spec, &dither, NULL) == PLK_OK);
    memset(&facts, 0, sizeof facts);
    facts.size = sizeof facts;
    EXPECT(plk_dither_needs(dither, &facts, NULL) == PLK_OK);
    EXPECT(facts.source_pixel_bytes == 1 && facts.target_pixel_bytes == 1 && facts.in_place == 1);
    source.base = samples;
    target.base = steps;
    EXPECT(plk_dither_run(dither, -3, 5, 1, 4, &source, &target, NULL) == PLK_OK);
    EXPECT(steps[0] == 0 && steps[1] == 2 && (steps[2] == 1 || steps[2] == 2));
    plk_dither_free(dither);
}

int main(void)
{
    UsePlan();
    SeeAFailure();
    UsePattern();
    UseDither();
    return faults == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
