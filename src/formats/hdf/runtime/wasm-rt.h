/* What the C code that wasm2c (wabt 1.0.32) makes of a WebAssembly module needs to run: in place of the
   header of this name that comes with wabt. Every access to memory is compared with the memory's size.
   Nothing is process-wide: no signal handler, no exception handler and no state beside that of an instance.
 */
#ifndef WASM_RT_H_
#define WASM_RT_H_

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>

#ifdef __cplusplus
extern "C" {
#endif

#define WASM_RT_MEMCHECK_SIGNAL_HANDLER 0
#define WASM_RT_USE_STACK_DEPTH_COUNT 0
#define UNLIKELY(condition) __builtin_expect(!!(condition), 0)
#define LIKELY(condition) __builtin_expect(!!(condition), 1)
#define wasm_rt_memcpy __builtin_memcpy
#define WASM_RT_NO_RETURN __attribute__((noreturn, cold))

typedef enum
{
    WASM_RT_TRAP_NONE,
    WASM_RT_TRAP_OOB,
    WASM_RT_TRAP_INT_OVERFLOW,
    WASM_RT_TRAP_DIV_BY_ZERO,
    WASM_RT_TRAP_INVALID_CONVERSION,
    WASM_RT_TRAP_UNREACHABLE,
    WASM_RT_TRAP_CALL_INDIRECT,
    WASM_RT_TRAP_UNCAUGHT_EXCEPTION,
    WASM_RT_TRAP_EXHAUSTION,
    WASM_RT_TRAP_STEPS
} wasm_rt_trap_t;

typedef enum
{
    WASM_RT_I32,
    WASM_RT_I64,
    WASM_RT_F32,
    WASM_RT_F64,
    WASM_RT_FUNCREF,
    WASM_RT_EXTERNREF
} wasm_rt_type_t;

typedef void (*wasm_rt_function_ptr_t)(void);

typedef struct
{
    uint32_t func_type;
    wasm_rt_function_ptr_t func;
    void* module_instance;
} wasm_rt_funcref_t;

typedef void* wasm_rt_externref_t;

static const wasm_rt_funcref_t wasm_rt_funcref_null_value = {0, NULL, NULL};
static const wasm_rt_externref_t wasm_rt_externref_null_value = NULL;

/* The linear memory, and what else an instance may use: every function has a pointer to this. */
typedef struct
{
    uint8_t* data;
    uint64_t size; /* in bytes; of 64 bits, so that one comparison tells whether an access lies within */
    int64_t steps; /* of work that are left */
    uintptr_t stack_limit; /* the thread's stack pointer never goes below */
    uint32_t pages, max_pages, reserved_pages;
} wasm_rt_memory_t;

typedef struct
{
    wasm_rt_funcref_t* data;
    uint32_t max_size, size;
} wasm_rt_funcref_table_t;

typedef struct
{
    wasm_rt_externref_t* data;
    uint32_t max_size, size;
} wasm_rt_externref_table_t;

WASM_RT_NO_RETURN void wasm_rt_trap(wasm_rt_trap_t);
WASM_RT_NO_RETURN void wasm_rt_trap_out_of_bounds(void);
WASM_RT_NO_RETURN void wasm_rt_trap_steps(void);
WASM_RT_NO_RETURN void wasm_rt_trap_stack(void);

static inline bool wasm_rt_is_initialized(void)
{
    return true;
}

uint32_t wasm_rt_register_func_type(uint32_t params, uint32_t results, ...);
void wasm_rt_allocate_memory(wasm_rt_memory_t*, uint32_t initial_pages, uint32_t max_pages);
uint32_t wasm_rt_grow_memory(wasm_rt_memory_t*, uint32_t pages);
void wasm_rt_free_memory(wasm_rt_memory_t*);
void wasm_rt_allocate_funcref_table(wasm_rt_funcref_table_t*, uint32_t elements, uint32_t max_elements);
void wasm_rt_free_funcref_table(wasm_rt_funcref_table_t*);

/* cmake/hdf5/split_module.py puts these into the code. */
#define MEMORY_STEPS(memory, count)                                                                          \
    if (UNLIKELY(((memory)->steps -= (count)) < 0))                                                          \
    wasm_rt_trap_steps()
#define STEP(count) MEMORY_STEPS(&instance->w2c_memory, count)
#define LOOK_AT_STACK                                                                                        \
    uintptr_t stack_pointer;                                                                                 \
    __asm__("movq %%rsp, %0" : "=r"(stack_pointer));                                                         \
    if (UNLIKELY(stack_pointer < instance->w2c_memory.stack_limit))                                          \
    wasm_rt_trap_stack()

#ifdef __cplusplus
}
#endif
#endif
