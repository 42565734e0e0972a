#include "c_interface/failure.h"

#include "c_interface/record_size.h"

#include <algorithm>
#include <exception>
#include <new>
#include <stdexcept>

namespace zvk::Pelkraft {

template <>
struct FieldEnds<plk_failure>
{
    static constexpr std::array ends = {
        PELKRAFT_FIELD_END(plk_failure, size),   PELKRAFT_FIELD_END(plk_failure, status),
        PELKRAFT_FIELD_END(plk_failure, field),  PELKRAFT_FIELD_END(plk_failure, given),
        PELKRAFT_FIELD_END(plk_failure, needed), PELKRAFT_FIELD_END(plk_failure, line),
        PELKRAFT_FIELD_END(plk_failure, column), PELKRAFT_FIELD_END(plk_failure, text),
    };
};

namespace {

plk_status Report(plk_failure* failure, const Refusal& refusal)
{
    if (failure == nullptr)
        return refusal.status;
    plk_failure record = {};
    record.status = refusal.status;
    record.given = refusal.given;
    record.needed = refusal.needed;
    record.line = refusal.line;
    record.column = refusal.column;
    const auto& field = refusal.field.GetChars();
    std::copy(field.begin(), field.end(), record.field);
    const auto& text = refusal.text.GetChars();
    std::copy(text.begin(), text.end(), record.text);
    WriteRecord(failure, record);
    return refusal.status;
}

Refusal NoMemory()
{
    return {PLK_NO_MEMORY, FieldName(), 0, 0, "there is not enough memory"};
}

Refusal Unserved(const char* reason)
{
    return {PLK_UNSUPPORTED, FieldName(), 0, 0, "the library refuses this: ", reason};
}

} // namespace

Refusal NullRefusal(const char* field)
{
    return {PLK_INVALID, FieldName(field), 0, 0, field, " is null; it must point to something"};
}

plk_status ReportCaught(plk_failure* failure) noexcept
{
    try {
        throw;
    } catch (const Refusal& refusal) {
        return Report(failure, refusal);
    } catch (const std::bad_alloc&) {
        return Report(failure, NoMemory());
    } catch (const std::length_error&) {
        // A container refuses what no memory could hold.
        return Report(failure, NoMemory());
    } catch (const std::exception& exception) {
        return Report(failure, Unserved(exception.what()));
    } catch (const char* text) {
        return Report(failure, Unserved(text));
    } catch (...) {
        return Report(failure, Unserved("a failure without words"));
    }
}

} // namespace zvk::Pelkraft
