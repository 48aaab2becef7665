#include "platform/First.h"
