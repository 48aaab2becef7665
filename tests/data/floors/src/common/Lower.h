#include "motion/Upper.h"   // goes up
