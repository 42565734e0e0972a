#include "tests/c_interface/fuzz_input.h"

namespace zvk::Pelkraft::TestSupport {

NaivePlacement TakePlacement(InputNumbers& numbers, const NaiveGeometry& form, int size)
{
    const int row = static_cast<int>(NaiveRowBytes(form));
    const int plane = form.planar && form.channels != 0 ? row / form.channels : row;
    const int kind = numbers.Next(8);
    if (kind == 0)
        return {numbers.Next(size), numbers.Signed(60), numbers.Signed(60)};
    const NaivePlacement dense = {numbers.Next(kind < 5 ? 40 : size), row + numbers.Next(3) - 1,
                                  plane + numbers.Next(3) - 1};
    return kind % 2 == 0 ? dense : NaivePlacement{dense.offset, -dense.rowStep, -dense.planeStep};
}

std::string CheckRefused(plk_status status, const plk_failure& failure)
{
    if (failure.status != status || failure.text[0] == '\0')
        return "a refusal says nothing";
    return "";
}

} // namespace zvk::Pelkraft::TestSupport
