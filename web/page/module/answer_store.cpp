#include "web/page/module/answer.h"

#include <cstddef>
#include <cstdlib>
#include <utility>

namespace zvk::Pelkraft::Page {
namespace {

std::string answer;

} // namespace

void SetAnswer(std::string bytes)
{
    answer = std::move(bytes);
}

extern "C" __attribute__((export_name("answer_data"))) const char* AnswerData()
{
    return answer.data();
}

PELKRAFT_FOR_PAGE(answer_bytes) AnswerBytes()
{
    return static_cast<int>(answer.size());
}

extern "C" __attribute__((export_name("allocate"))) void* Allocate(int bytes)
{
    return std::malloc(static_cast<std::size_t>(bytes < 1 ? 1 : bytes));
}

extern "C" __attribute__((export_name("release"))) void Release(void* memory)
{
    std::free(memory);
}

} // namespace zvk::Pelkraft::Page
