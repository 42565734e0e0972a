// Splits a row of interleaved CMYK into its four planes.
#include <pelkraft/image_row.h>

#include <cstdio>

int main()
{
    unsigned char cmyk[] = {1, 2, 3, 4, 11, 12, 13, 14, 21, 22, 23, 24};
    const zvk::Pelkraft::ImageRow pixels(3, 4, 8, false, cmyk);

    zvk::Pelkraft::ImageRow planes(3, 4, 8, true, nullptr);
    planes.FillFrom(pixels, nullptr);

    const unsigned char* plane = planes.GetData();
    for (int ink = 0; ink != 4; ++ink, plane += planes.CalcPlaneSize()) {
        std::printf("plane %d: %d %d %d\n", ink, plane[0], plane[1], plane[2]);
    }
}
