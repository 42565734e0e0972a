#pragma once

#include <cstdint>
#include <memory>
#include <vector>

namespace zvk::Pelkraft {

// One record for each in-colour listed. A record is large and most of a long list may never be
// described, so it comes into being when it is first named; until then it stands at its defaults.
template <typename Record>
class InColorRecords
{
public:
    void Free() { records.clear(); }

    void Allocate(std::int32_t count)
    {
        records.clear();
        records.resize(static_cast<std::size_t>(count));
    }

    std::int32_t Count() const { return static_cast<std::int32_t>(records.size()); }

    Record& Select(std::int32_t index)
    {
        auto& record = records[static_cast<std::size_t>(index)];
        if (record == nullptr)
            record = std::make_unique<Record>();
        return *record;
    }

    // Null for a record that was never named.
    Record* Find(std::int32_t index) const
    {
        return records[static_cast<std::size_t>(index)].get();
    }

private:
    std::vector<std::unique_ptr<Record>> records;
};

} // namespace zvk::Pelkraft
