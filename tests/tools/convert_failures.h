#pragma once

#include "tests/tools/tool_fixture.h"

#include <string>
#include <vector>

namespace zvk::Pelkraft::TestSupport {

// convert of a picture in a folder in which a failure must leave nothing else.
class ConvertFailures : public ToolFixture
{
protected:
    void MakeInput(int bits = 8, const FileForm& form = {})
    {
        WriteTiff(Path("in.tif"), RandomImage(40, 30, 3, bits, 8), form);
    }

    // Nothing but the input lies in the folder.
    [[nodiscard]] bool LeftNothing() const { return Files() == std::vector<std::string>{"in.tif"}; }
};

} // namespace zvk::Pelkraft::TestSupport
