#include "tests/bounds/two_fills.h"

#include "tests/support/random_bytes.h"

#include <algorithm>

namespace zvk::Pelkraft::TestSupport {

TwoFills::TwoFills(std::size_t newCapacity)
    : before(RandomBytes(newCapacity + 2 * margin + 16, 3)), first(before.size()),
      second(before.size())
{}

std::string TwoFills::Run(std::size_t bytes, std::size_t shift, const CoveredBytes& covered,
                          const Operation& operation)
{
    const std::size_t begin = margin + shift;
    const std::size_t end = begin + bytes + margin;
    const auto inverse = [](unsigned char byte) { return static_cast<unsigned char>(~byte); };
    std::copy_n(before.begin(), end, first.begin());
    std::transform(before.begin(), before.begin() + static_cast<std::ptrdiff_t>(end),
                   second.begin(), inverse);

    operation(first.data() + begin);
    operation(second.data() + begin);

    for (std::size_t i = 0; i != end; ++i) {
        const bool isInside = i >= begin && i - begin < bytes;
        if (isInside && covered[i - begin]) {
            if (first[i] != second[i])
                return "a covered byte depends on what was there: " + std::to_string(i - begin);
        } else if (first[i] != before[i] || second[i] != inverse(before[i])) {
            return "a byte outside is changed: " +
                   std::to_string(static_cast<std::ptrdiff_t>(i - begin));
        }
    }
    return "";
}

} // namespace zvk::Pelkraft::TestSupport
