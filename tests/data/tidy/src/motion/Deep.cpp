#include "motion/Many.h"

static const int LIMIT = 1;

// The body is the first level.
int Four(int n)
{
    for (; n < 9; ++n) {
        if (n > LIMIT) {
            while (n < 5) {
                n += 2;
            }
        }
    }
    return n;
}

int Five(int n)
{
    for (; n < 9; ++n) {
        if (n > LIMIT) {
            while (n < 5) {
                if (n == 3) {
                    n += 2;
                }
            }
        }
    }
    return n;
}
