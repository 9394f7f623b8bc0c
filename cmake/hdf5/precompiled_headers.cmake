# Nearly every file of the library begins with H5private.h, and so with all of Windows' headers: that takes most of the
# compiler's time. Included where the library's project begins, this has them compiled once. The module is made without:
# where a file includes the public headers alone, the private ones make other code of a few macros.
function(precompile_headers)
  target_precompile_headers(hdf5-static PRIVATE <H5private.h>)
  # These two show how a driver of one's own is written, and refuse the private headers.
  set_source_files_properties(${HDF5_SRC_DIR}/H5FDmulti.c ${HDF5_SRC_DIR}/H5FDstdio.c
    TARGET_DIRECTORY hdf5-static PROPERTIES SKIP_PRECOMPILE_HEADERS ON)
endfunction()
cmake_language(DEFER CALL precompile_headers)
