/// Where the HDF5 library itself forgets some small block when a damaged file makes it give up half-way. The
/// sanitizer asks for this list by this name.
// NOLINTNEXTLINE(readability-identifier-naming,bugprone-reserved-identifier)
extern "C" const char* __lsan_default_suppressions()
{
    return "leak:H5O__add_cont_msg\n"
           "leak:H5O__dtype_decode_helper\n"
           "leak:H5D__layout_oh_read\n"
           "leak:H5A__dense_build_table\n";
}
