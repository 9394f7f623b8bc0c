// There are no plug-ins in the sandbox: every attempt to load one fails.
#pragma once

#define RTLD_LAZY 1
#define RTLD_LOCAL 0

static inline void* dlopen(const char* name, int flags)
{
    (void)name;
    (void)flags;
    return (void*)0;
}

static inline void* dlsym(void* library, const char* name)
{
    (void)library;
    (void)name;
    return (void*)0;
}

static inline int dlclose(void* library)
{
    (void)library;
    return -1;
}

static inline char* dlerror(void)
{
    return (char*)"";
}
