#include "common/Fine.h"
