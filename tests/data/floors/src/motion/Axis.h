#include "common/Fine.h"
#include "machine/Machine.h"   // its row names it, but too early
