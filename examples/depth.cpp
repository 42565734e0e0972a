// Widens samples from 8 to 16 bits and narrows them again: every value survives the round trip.
#include <pelkraft/image_row.h>

#include <cstdint>
#include <cstdio>
#include <cstring>

int main()
{
    unsigned char tones[] = {0, 1, 127, 128, 255};
    const zvk::Pelkraft::ImageRow narrow(5, 1, 8, false, tones);

    zvk::Pelkraft::ImageRow wide(5, 1, 16, false, nullptr);
    wide.FillFrom(narrow, nullptr);
    zvk::Pelkraft::ImageRow again(5, 1, 8, false, nullptr);
    again.FillFrom(wide, nullptr);

    const unsigned char* bytes = wide.GetData();
    for (int i = 0; i != 5; ++i, bytes += 2) {
        std::uint16_t sample;
        std::memcpy(&sample, bytes, sizeof sample);
        std::printf("%d -> %d -> %d\n", tones[i], sample, again.GetData()[i]);
    }
}
