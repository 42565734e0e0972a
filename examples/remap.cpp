// Rebuilds each pixel from another one's channels: reordered, repeated, dropped, added.
#include <pelkraft/image_row.h>

#include <cstdio>

int main()
{
    unsigned char cmyk[] = {1, 2, 3, 4, 11, 12, 13, 14};
    const zvk::Pelkraft::ImageRow pixels(2, 4, 8, false, cmyk);

    // Channel by channel of the new row: black, cyan, nothing, yellow, yellow.
    const int map[] = {3, 0, -1, 2, 2};
    zvk::Pelkraft::ImageRow remapped(2, 5, 8, false, nullptr);
    remapped.FillFromWithRemap(pixels, map, nullptr);

    const unsigned char* pixel = remapped.GetData();
    for (int i = 0; i != 2; ++i, pixel += 5) {
        std::printf("%d %d %d %d %d\n", pixel[0], pixel[1], pixel[2], pixel[3], pixel[4]);
    }
}
