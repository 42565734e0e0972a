/* Dithers a ramp from paper to full ink into four steps, and shows them. */
#include <pelkraft/dither.h>

#include <stdio.h>
#include <string.h>

int main(void)
{
    enum
    {
        width = 64,
        height = 6
    };
    /* What the drops of the steps are worth: none, small, medium, large. */
    const uint32_t inks[4] = {0, 85, 170, 255};
    unsigned char ramp[width];
    unsigned char steps[height * width];
    plk_tones tones;
    plk_dither_spec spec;
    plk_dither* dither;
    plk_failure failure;
    plk_source source;
    plk_target target;
    int i;

    for (i = 0; i < width; ++i)
        ramp[i] = (unsigned char)(i * 255 / (width - 1));

    memset(&tones, 0, sizeof tones);
    tones.inks = inks;
    tones.steps = 4;
    tones.no_ink = 0;
    tones.full_ink = 255;
    memset(&spec, 0, sizeof spec);
    spec.size = sizeof spec;
    spec.bits = 8;
    spec.tones = &tones;
    spec.channels = 1;
    memset(&failure, 0, sizeof failure);
    failure.size = sizeof failure;
    if (plk_dither_create(&spec, &dither, &failure) != PLK_OK) {
        printf("%s\n", failure.text);
        return 1;
    }

    memset(&source, 0, sizeof source);
    source.size = sizeof source;
    source.base = ramp;
    source.bytes = sizeof ramp; /* each row is this one again: its stride is 0 */
    memset(&target, 0, sizeof target);
    target.size = sizeof target;
    target.base = steps;
    target.bytes = sizeof steps;
    target.row_stride = width;
    if (plk_dither_run(dither, 0, 0, height, width, &source, &target, &failure) != PLK_OK)
        return 1;
    plk_dither_free(dither);

    for (i = 0; i < height * width; ++i)
        printf("%c%s", " .o#"[steps[i]], i % width == width - 1 ? "\n" : "");
    return 0;
}
