// The system calls of the sandbox's C library. Each is answered here, inside, so that the module imports nothing:
// there is no file, no clock and no environment.
#include <stdint.h>

// The C library ends the program when it starts and gets any other error.
#define BAD_FILE_DESCRIPTOR 8

#define FAILS(name, ...)                                             \
    int32_t __imported_wasi_snapshot_preview1_##name(__VA_ARGS__)    \
    {                                                                \
        return BAD_FILE_DESCRIPTOR;                                  \
    }

typedef int32_t word;
typedef int64_t wide;

FAILS(args_get, word a, word b)
FAILS(args_sizes_get, word a, word b)
FAILS(environ_get, word a, word b)
FAILS(clock_res_get, word a, word b)
FAILS(clock_time_get, word a, wide b, word c)
FAILS(fd_advise, word a, wide b, wide c, word d)
FAILS(fd_allocate, word a, wide b, wide c)
FAILS(fd_close, word a)
FAILS(fd_datasync, word a)
FAILS(fd_fdstat_get, word a, word b)
FAILS(fd_fdstat_set_flags, word a, word b)
FAILS(fd_fdstat_set_rights, word a, wide b, wide c)
FAILS(fd_filestat_get, word a, word b)
FAILS(fd_filestat_set_size, word a, wide b)
FAILS(fd_filestat_set_times, word a, wide b, wide c, word d)
FAILS(fd_pread, word a, word b, word c, wide d, word e)
FAILS(fd_prestat_dir_name, word a, word b, word c)
FAILS(fd_prestat_get, word a, word b)
FAILS(fd_pwrite, word a, word b, word c, wide d, word e)
FAILS(fd_read, word a, word b, word c, word d)
FAILS(fd_readdir, word a, word b, word c, wide d, word e)
FAILS(fd_renumber, word a, word b)
FAILS(fd_seek, word a, wide b, word c, word d)
FAILS(fd_sync, word a)
FAILS(fd_tell, word a, word b)
FAILS(fd_write, word a, word b, word c, word d)
FAILS(path_create_directory, word a, word b, word c)
FAILS(path_filestat_get, word a, word b, word c, word d, word e)
FAILS(path_filestat_set_times, word a, word b, word c, word d, wide e, wide f, word g)
FAILS(path_link, word a, word b, word c, word d, word e, word f, word g)
FAILS(path_open, word a, word b, word c, word d, word e, wide f, wide g, word h, word i)
FAILS(path_readlink, word a, word b, word c, word d, word e, word f)
FAILS(path_remove_directory, word a, word b, word c)
FAILS(path_rename, word a, word b, word c, word d, word e, word f)
FAILS(path_symlink, word a, word b, word c, word d, word e)
FAILS(path_unlink_file, word a, word b, word c)
FAILS(poll_oneoff, word a, word b, word c, word d)
FAILS(random_get, word a, word b)
FAILS(sched_yield, void)
FAILS(sock_accept, word a, word b, word c)
FAILS(sock_recv, word a, word b, word c, word d, word e, word f)
FAILS(sock_send, word a, word b, word c, word d, word e)
FAILS(sock_shutdown, word a, word b)

// An empty environment: getenv would end the program where there is none.
int32_t __imported_wasi_snapshot_preview1_environ_sizes_get(word count, word bytes)
{
    *(uint32_t *)count = 0;
    *(uint32_t *)bytes = 0;
    return 0;
}

_Noreturn void __imported_wasi_snapshot_preview1_proc_exit(word code)
{
    (void)code;
    __builtin_trap();
}

// There are no time zones. HDF5 calls this without a declaration, hence the type.
int tzset(void)
{
    return 0;
}

// In place of the library's description of its build, which has folders and the time in it.
const char H5build_settings[] = "";
