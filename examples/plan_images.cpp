// Converts pictures that own their rows, on two threads, by one plan.
#include <pelkraft/plan.hpp>

#include <cstdio>
#include <thread>
#include <vector>

using namespace zvk::Pelkraft;

int main()
{
    // Blue, green, red to planes of red, green, blue and black; the last one is empty.
    ConversionSpec spec;
    spec.source = {3, 3, 8, false};
    spec.target = {3, 4, 8, true};
    spec.map = {2, 1, 0, PLK_EMPTY};
    const ConversionPlan plan(spec);

    std::vector<Image> pages(2, Image(spec.source, 1));
    for (unsigned page = 0; page != 2; ++page)
        for (unsigned i = 0; i != 9; ++i)
            pages[page].GetRow(0)[i] = static_cast<unsigned char>(100 * page + i);
    std::vector<Image> planes(2, Image(spec.target, 1));
    std::thread other([&] { plan(pages[1], planes[1]); });
    plan(pages[0], planes[0]);
    other.join();
    for (const Image& page : planes)
        for (int plane = 0; plane != 4; ++plane)
            std::printf("%d %d %d%s", page.GetRow(0, plane)[0], page.GetRow(0, plane)[1],
                        page.GetRow(0, plane)[2], plane == 3 ? "\n" : ", ");

    try {
        spec.map->at(3) = 3;
        ConversionPlan{spec};
    } catch (const PelkraftError& error) {
        std::printf("%s: %s\n", error.GetField(), error.what());
    }
}
