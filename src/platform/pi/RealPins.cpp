#include "platform/PinKind.h"

bool PinsAreReal()
{
    return true;
}
