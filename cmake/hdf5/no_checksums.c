// For fuzzing: the library asks this function of its own whether a block of metadata is whole, and it always is.
#include <stddef.h>
#include <stdint.h>

int H5F_get_checksums(const uint8_t *block, size_t size, uint32_t *stored, uint32_t *computed)
{
    (void)block;
    (void)size;
    if (stored)
        *stored = 0;
    if (computed)
        *computed = 0;
    return 0;
}
