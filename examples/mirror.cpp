// Reads a row from its last pixel to its first: a negative repeat factor mirrors.
#include <pelkraft/image_row.h>

#include <cstdio>

int main()
{
    // Ten pixels of one bit, 1011000111, in a plane of two bytes.
    unsigned char bits[] = {0xB1, 0xC0};
    const zvk::Pelkraft::ImageRow plane(10, 1, 1, true, bits);

    zvk::Pelkraft::ImageRow mirrored(10, 1, 1, true, nullptr);
    mirrored.FillFromWithPixelRepeat(plane, -1, nullptr);

    const unsigned char* bytes = mirrored.GetData();
    std::printf("%02X %02X\n", bytes[0], bytes[1]); // 1110001101
}
