// The C library of the sandbox has no setjmp. HDF5 includes its header and calls nothing of it.
#pragma once
