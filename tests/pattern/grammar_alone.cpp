#include "pattern/tokenizer.h"

// The build links the whole static target to this program, and no library but the standard one:
// a page in a browser has no more.
int main()
{
    return zvk::Pelkraft::CutTokens("two tokens", '#').size() == 2 ? 0 : 1;
}
