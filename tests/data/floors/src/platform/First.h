#include "Second.h"
