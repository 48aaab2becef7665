#include "hardware/RpiGpio.h"

qint32 CRpiGpio::mem_fd = 0;
void* CRpiGpio::gpio_map = nullptr;
volatile quint32* CRpiGpio::gpio = nullptr;
