#pragma once

namespace zvk::Pelkraft::Client {

// Rows of 1 or 2 bits a sample. Woven: the samples of a pixel follow each other bit by bit, as
// contiguous files hold them. Planes: one bit-packed plane per channel, each a whole number of
// bytes, as the library holds them. Unused bits at the end are written as 0.
void SplitToPlanes(const unsigned char* woven, int width, int channels, int bits,
                   unsigned char* planes);
void WeavePlanes(const unsigned char* planes, int width, int channels, int bits,
                 unsigned char* woven);

} // namespace zvk::Pelkraft::Client
