#include "web/page/module/answer.h"

#include "tools/pelkraft/failure.h"

#include <exception>
#include <new>

namespace zvk::Pelkraft::Page {
namespace {

std::string WordsOfCurrentException()
{
    try {
        throw;
    } catch (const Client::Failure& failure) {
        return failure.File().empty() ? failure.what() : failure.File() + ": " + failure.what();
    } catch (const std::bad_alloc&) {
        return "out of memory: this page takes less of it than the program";
    } catch (const std::exception& failure) {
        return failure.what();
    } catch (const char* text) {
        return text;
    }
}

} // namespace

void SetAnswerToCurrentException()
{
    SetAnswer(WordsOfCurrentException());
}

} // namespace zvk::Pelkraft::Page
