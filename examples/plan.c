/* Splits the right half of a picture into planes of 16 bits, upside down, by one plan. */
#include <pelkraft/plan.h>

#include <stdio.h>
#include <string.h>

int main(void)
{
    /* Two rows of four pixels with two channels. */
    const unsigned char picture[16] = {1, 2, 3, 4, 5, 6, 7, 8, 11, 12, 13, 14, 15, 16, 17, 18};
    unsigned short planes[8];
    plk_spec spec;
    plk_source source;
    plk_target target;
    plk_failure failure;
    plk_plan* plan;
    int row;

    memset(&failure, 0, sizeof failure);
    failure.size = sizeof failure;
    memset(&spec, 0, sizeof spec);
    spec.size = sizeof spec;
    spec.source.width = spec.target.width = 2;
    spec.source.channels = spec.target.channels = 2;
    spec.source.bits = 8;
    spec.target.bits = 16;
    spec.target.planar = 1;
    spec.samples = PLK_SAMPLES_AS_LEVELS;
    if (plk_plan_create(&spec, &plan, &failure) != PLK_OK) {
        printf("%s\n", failure.text);
        return 1;
    }

    memset(&source, 0, sizeof source);
    source.size = sizeof source;
    source.base = picture;
    source.bytes = sizeof picture;
    source.offset = 8 + 4; /* the last row first */
    source.row_stride = -8;
    memset(&target, 0, sizeof target);
    target.size = sizeof target;
    target.base = planes;
    target.bytes = sizeof planes - 1; /* one byte too few */
    target.row_stride = 8;
    target.plane_stride = 4;
    if (plk_plan_run(plan, &source, &target, 2, &failure) != PLK_OK)
        printf("%s\n", failure.text);
    target.bytes = (uint64_t)failure.needed;
    if (plk_plan_run(plan, &source, &target, 2, &failure) != PLK_OK)
        return 1;
    plk_plan_free(plan);

    for (row = 0; row != 2; ++row)
        printf("row %d: %d %d and %d %d\n", row, planes[4 * row], planes[4 * row + 1],
               planes[4 * row + 2], planes[4 * row + 3]);
    return 0;
}
