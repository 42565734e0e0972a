// Packs one ink of levels 0 and 1 into a plane of bits, and levels 0 to 3 into a plane of two bits
// per pixel. Packing takes the lowest bits of a sample: it is for levels, not for tones.
#include <pelkraft/image_row.h>

#include <cstdio>

int main()
{
    unsigned char levels[] = {1, 0, 1, 1, 0, 0, 0, 1, 3, 2};
    const zvk::Pelkraft::ImageRow samples(10, 1, 8, false, levels);

    zvk::Pelkraft::ImageRow bits(10, 1, 1, true, nullptr);
    bits.FillFrom(samples, nullptr);
    std::printf("1 bit:  %02X %02X\n", bits.GetData()[0], bits.GetData()[1]);

    zvk::Pelkraft::ImageRow pairs(10, 1, 2, true, nullptr);
    pairs.FillFrom(samples, nullptr);
    const unsigned char* bytes = pairs.GetData();
    std::printf("2 bits: %02X %02X %02X\n", bytes[0], bytes[1], bytes[2]);

    zvk::Pelkraft::ImageRow unpacked(10, 1, 8, false, nullptr);
    unpacked.FillFrom(pairs, nullptr);
    for (int i = 0; i != 10; ++i)
        std::printf("%d%c", unpacked.GetData()[i], i == 9 ? '\n' : ' ');
}
