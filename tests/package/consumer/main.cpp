#include <pelkraft/image_row.h>
#include <zvk/diagnostics.h>
#include <zvk/split.h>
#include <zvk/system_tools.h>

// Fills a planar row from an interleaved one and fails unless the planes are right.
int main()
{
    unsigned char pixels[] = {1, 2, 3, 11, 12, 13, 21, 22, 23, 31, 32, 33, 41, 42, 43};
    const unsigned char planes[] = {1, 11, 21, 31, 41, 2, 12, 22, 32, 42, 3, 13, 23, 33, 43};
    const zvk::Pelkraft::ImageRow source(5, 3, 8, false, pixels);
    zvk::Pelkraft::ImageRow row(5, 3, 8, true, nullptr);
    row.FillFrom(source, nullptr);
    for (int i = 0; i != row.GetDataSize(); ++i)
        if (row.GetData()[i] != planes[i])
            return 1;
    return zvk::SystemTools::GetSseVersion() < 0 ? 1 : 0;
}
