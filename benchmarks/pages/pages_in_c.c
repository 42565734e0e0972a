/* SPDX-License-Identifier: Apache-2.0 */
/* The work of a page job and nothing else: reads each page, splits it into planes or turns it into
 * the inks of a pattern, writes it, forces it to the disk and renames it.
 *   pages_in_c FOLDER-IN FOLDER-OUT FIRST END [PATTERN]
 * takes the pages FIRST to END - 1, named 0.tif and so on, and prints the seconds. */
#include <pelkraft/plan.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <tiffio.h>
#include <time.h>
#include <unistd.h>

static void Check(int ok, const char* what)
{
    if (!ok) {
        fprintf(stderr, "pages_in_c: %s\n", what);
        exit(1);
    }
}

static double Now(void)
{
    struct timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return (double)now.tv_sec + 1e-9 * (double)now.tv_nsec;
}

struct Page
{
    uint32_t width, height;
    int channels, planar;
    unsigned char* bytes;
};

static uint64_t RowBytes(const struct Page* page)
{
    return (uint64_t)page->width * (uint64_t)page->channels;
}

static struct Page Read(const char* path)
{
    struct Page page = {0, 0, 0, 0, NULL};
    uint16_t channels = 0;
    TIFF* file = TIFFOpen(path, "r");
    Check(file != NULL, path);
    TIFFGetField(file, TIFFTAG_IMAGEWIDTH, &page.width);
    TIFFGetField(file, TIFFTAG_IMAGELENGTH, &page.height);
    TIFFGetField(file, TIFFTAG_SAMPLESPERPIXEL, &channels);
    page.channels = channels;
    page.bytes = malloc(RowBytes(&page) * page.height);
    Check(page.bytes != NULL, "no memory");
    unsigned char* next = page.bytes;
    for (uint32_t strip = 0; strip < TIFFNumberOfStrips(file); ++strip) {
        const tmsize_t got = TIFFReadEncodedStrip(file, strip, next, -1);
        Check(got >= 0, path);
        next += got;
    }
    TIFFClose(file);
    return page;
}

static void Write(const struct Page* page, const char* path)
{
    char temporary[4096];
    snprintf(temporary, sizeof temporary, "%s.part", path);
    TIFF* file = TIFFOpen(temporary, "w");
    Check(file != NULL, temporary);
    TIFFSetField(file, TIFFTAG_IMAGEWIDTH, page->width);
    TIFFSetField(file, TIFFTAG_IMAGELENGTH, page->height);
    TIFFSetField(file, TIFFTAG_BITSPERSAMPLE, 8);
    TIFFSetField(file, TIFFTAG_SAMPLESPERPIXEL, page->channels);
    TIFFSetField(file, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_SEPARATED);
    TIFFSetField(file, TIFFTAG_PLANARCONFIG,
                 page->planar ? PLANARCONFIG_SEPARATE : PLANARCONFIG_CONTIG);
    TIFFSetField(file, TIFFTAG_ROWSPERSTRIP, page->height);
    const int planes = page->planar ? page->channels : 1;
    const uint64_t bytes = RowBytes(page) * page->height / (uint64_t)planes;
    for (int plane = 0; plane < planes; ++plane)
        Check(TIFFWriteEncodedStrip(file, (uint32_t)plane, page->bytes + (uint64_t)plane * bytes,
                                    (tmsize_t)bytes) >= 0,
              temporary);
    Check(TIFFFlush(file) == 1 && fsync(TIFFFileno(file)) == 0, temporary);
    TIFFClose(file);
    Check(rename(temporary, path) == 0, path);
}

static plk_source SourceOf(const struct Page* page)
{
    plk_source source = {sizeof source,           0, page->bytes, RowBytes(page) * page->height, 0,
                         (int64_t)RowBytes(page), 0};
    return source;
}

static struct Page Split(const struct Page* from)
{
    struct Page to = {from->width, from->height, from->channels, 1, NULL};
    to.bytes = malloc(RowBytes(&to) * to.height);
    Check(to.bytes != NULL, "no memory");
    plk_spec spec;
    memset(&spec, 0, sizeof spec);
    spec.size = sizeof spec;
    spec.source = (plk_format){from->width, from->channels, 8, 0, 0};
    spec.target = (plk_format){from->width, from->channels, 8, 1, 0};
    plk_plan* plan = NULL;
    Check(plk_plan_create(&spec, &plan, NULL) == PLK_OK, "no plan");
    const plk_source source = SourceOf(from);
    const plk_target target = {sizeof target,
                               0,
                               to.bytes,
                               RowBytes(&to) * to.height,
                               0,
                               (int64_t)to.width,
                               (int64_t)to.width * (int64_t)to.height};
    Check(plk_plan_run(plan, &source, &target, from->height, NULL) == PLK_OK, "no split");
    plk_plan_free(plan);
    return to;
}

static void Quantize(struct Page* page, const unsigned char* topSteps)
{
    const uint64_t pixels = (uint64_t)page->width * page->height;
    for (uint64_t pixel = 0; pixel < pixels; ++pixel)
        for (int i = 0; i < page->channels; ++i) {
            unsigned char* sample = page->bytes + pixel * (uint64_t)page->channels + (uint64_t)i;
            *sample = (unsigned char)(*sample * (topSteps[i] + 1) / 256);
        }
}

static struct Page Simulate(struct Page* from, const plk_pattern* pattern)
{
    plk_pattern_facts facts;
    memset(&facts, 0, sizeof facts);
    facts.size = sizeof facts;
    Check(plk_pattern_needs(pattern, &facts, NULL) == PLK_OK, "no facts");
    Check(facts.in_colours == from->channels, "other channels than in-colours");
    Quantize(from, facts.top_steps);
    struct Page to = {from->width, from->height, facts.out_inks, 0, NULL};
    to.bytes = malloc(RowBytes(&to) * to.height);
    Check(to.bytes != NULL, "no memory");
    const plk_source source = SourceOf(from);
    const plk_target target = {sizeof target,          0, to.bytes, RowBytes(&to) * to.height, 0,
                               (int64_t)RowBytes(&to), 0};
    Check(plk_pattern_run(pattern, 0, from->height, from->width, &source, &target, NULL) == PLK_OK,
          "no simulation");
    return to;
}

static plk_pattern* Load(const char* path)
{
    static char text[1 << 20];
    FILE* file = fopen(path, "rb");
    Check(file != NULL, path);
    const size_t bytes = fread(text, 1, sizeof text, file);
    fclose(file);
    plk_pattern* pattern = NULL;
    Check(plk_pattern_create(text, bytes, NULL, &pattern, NULL) == PLK_OK, path);
    return pattern;
}

int main(int count, char** words)
{
    Check(count == 5 || count == 6, "FOLDER-IN FOLDER-OUT FIRST END [PATTERN]");
    plk_pattern* pattern = count == 6 ? Load(words[5]) : NULL;
    const double start = Now();
    for (int number = atoi(words[3]); number < atoi(words[4]); ++number) {
        char path[4000];
        snprintf(path, sizeof path, "%s/%d.tif", words[1], number);
        struct Page from = Read(path);
        struct Page to = pattern != NULL ? Simulate(&from, pattern) : Split(&from);
        snprintf(path, sizeof path, "%s/%d.tif", words[2], number);
        Write(&to, path);
        free(from.bytes);
        free(to.bytes);
    }
    printf("%.6f\n", Now() - start);
    plk_pattern_free(pattern);
    return 0;
}
