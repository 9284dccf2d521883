// zerklsc_version
#include "zerklsc_driver.h"

int32_t zerklsc_version(void) {
    return ZERKLSC_VERSION_MAJOR * 10000 + ZERKLSC_VERSION_MINOR * 100 + ZERKLSC_VERSION_PATCH;
}
