#include "tools/pelkraft/message_style.h"

namespace zvk::Pelkraft::Client {
namespace {

MessageStyle style;

} // namespace

void SetMessageStyle(const MessageStyle& newStyle)
{
    style = newStyle;
}

const MessageStyle& GetMessageStyle()
{
    return style;
}

} // namespace zvk::Pelkraft::Client
