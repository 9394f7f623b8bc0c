# The HDF5 library trusts much of what a file says. It is taken as it is, but a copy of the archive asks
# formats/HdfGuard.cpp for its memory, and before it looks at one more block or datatype of a file.
set(guarded_hdf5 ${PROJECT_BINARY_DIR}/guarded-hdf5.a)
get_target_property(hdf5_archive hdf5-static IMPORTED_LOCATION_RELEASE)
set(renames)
foreach(function malloc calloc realloc free strdup)
  list(APPEND renames --redefine-sym ${function}=LumoraHdf_${function})
endforeach()
execute_process(COMMAND ${CMAKE_OBJCOPY} ${renames} ${hdf5_archive} ${guarded_hdf5} COMMAND_ERROR_IS_FATAL ANY)
set_target_properties(hdf5-static PROPERTIES IMPORTED_LOCATION_RELEASE ${guarded_hdf5})
target_link_options(hdf5-static INTERFACE
  -Wl,--wrap=H5T__alloc -Wl,--wrap=H5C_protect -Wl,--wrap=H5B2_delete -Wl,--wrap=H5AC_mark_entry_dirty
  -Wl,--wrap=H5Z_pipeline -Wl,--wrap=H5A__dense_open -Wl,--wrap=H5A__dense_exists -Wl,--wrap=H5A__dense_iterate
  -Wl,--wrap=H5A__get_ainfo -Wl,--wrap=H5S_select_deserialize -Wl,--wrap=H5FA_iterate -Wl,--wrap=H5EA_iterate)
