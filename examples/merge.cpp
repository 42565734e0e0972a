// Merges the four planes of a row into interleaved pixels.
#include <pelkraft/image_row.h>

#include <cstdio>

int main()
{
    unsigned char inks[] = {1, 11, 21, 2, 12, 22, 3, 13, 23, 4, 14, 24};
    const zvk::Pelkraft::ImageRow planes(3, 4, 8, true, inks);

    zvk::Pelkraft::ImageRow pixels(3, 4, 8, false, nullptr);
    pixels.FillFrom(planes, nullptr);

    const unsigned char* pixel = pixels.GetData();
    for (int i = 0; i != 3; ++i, pixel += 4) {
        std::printf("pixel %d: %d %d %d %d\n", i, pixel[0], pixel[1], pixel[2], pixel[3]);
    }
}
