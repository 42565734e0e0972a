// Writes each pixel twice, into a row twice as wide. A narrower row takes what it has room for.
#include <pelkraft/image_row.h>

#include <cstdio>

int main()
{
    unsigned char gray[] = {10, 20, 30};
    const zvk::Pelkraft::ImageRow pixels(3, 1, 8, false, gray);

    zvk::Pelkraft::ImageRow doubled(6, 1, 8, false, nullptr);
    doubled.FillFromWithPixelRepeat(pixels, 2, nullptr);

    for (int i = 0; i != 6; ++i)
        std::printf("%d%c", doubled.GetData()[i], i == 5 ? '\n' : ' ');
}
