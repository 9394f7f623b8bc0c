#!/usr/bin/env python3
"""Makes C that can be compiled side by side, and limited, of the one file that wasm2c (wabt 1.0.32) writes:

    split_module.py MODULE.c FOLDER PARTS

Every function and every loop counts one step of work, filling and copying count by the length, and every function
looks whether the thread's stack still has room: the macros STEP, MEMORY_STEPS and LOOK_AT_STACK of wasm-rt.h do this.
The text is changed in places that are known to the letter, and other text ends this program."""
import pathlib
import re
import sys

KINDS = ["WASM_RT_I32", "WASM_RT_I64", "WASM_RT_F32", "WASM_RT_F64"]
C_TYPES = "(?:void|u32|u64|f32|f64)"


def fail(message):
    sys.exit(f"split_module.py: {message}: is this the output of another wasm2c?")


def replaced(text, old, new, times=1):
    if text.count(old) != times:
        fail(f"{old!r} stands there {text.count(old)} times, not {times}")
    return text.replace(old, new)


def with_limits(text):
    # What wasm2c does itself about deep calls and traps gives way to wasm-rt.h.
    start, end = text.index("#if WASM_RT_USE_STACK_DEPTH_COUNT"), text.index("#define UNREACHABLE")
    prologue = "#define FUNC_PROLOGUE { LOOK_AT_STACK; STEP(1); }\n#define FUNC_EPILOGUE (void)0\n\n"
    text = text[:start] + prologue + text[end:]
    text = replaced(text, "#include <alloca.h>\n", "")
    text = replaced(text, "    TRAP(OOB);\n\n#if WASM_RT_MEMCHECK_SIGNAL_HANDLER",
                    "    wasm_rt_trap_out_of_bounds();\n\n#if WASM_RT_MEMCHECK_SIGNAL_HANDLER")
    # Keeps loads that are not used, for the handler of signals that there is not.
    text = replaced(text, 'wasm_asm("" ::"r"(result));', "", times=2)
    text = replaced(text, "  memset(mem->data + d, val, n);",
                    "  MEMORY_STEPS(mem, n / 64);\n  memset(mem->data + d, val, n);")
    text = replaced(text, "  memmove(dest->data + dest_addr, src->data + src_addr, n);",
                    "  MEMORY_STEPS(dest, n / 64);\n  memmove(dest->data + dest_addr, src->data + src_addr, n);")
    text = re.sub(r"^( *w2c_L\d+:) $", r"\1 STEP(1);", text, flags=re.M)
    loops, counted = len(re.findall(r"^ *w2c_L\d+:", text, re.M)), len(re.findall(r"^ *w2c_L\d+: STEP", text, re.M))
    if not loops or counted != loops:
        fail(f"of {loops} loops {counted} count")
    return text


def check_signature_sums(registrations):
    """wasm-rt tells signatures apart by a sum, so that it needs no table that threads would share."""
    sums = {}
    for signature in registrations:
        count, _, *kinds = signature.split(", ")
        total = 2166136261
        for value in [int(count)] + [KINDS.index(kind) for kind in kinds]:
            total = (total ^ (value + 1)) * 16777619 % 2**32
        if sums.setdefault(total, signature) != signature:
            sys.exit(f"split_module.py: {signature} and {sums[total]} have the same sum")


def main():
    source, folder, parts = sys.argv[1], pathlib.Path(sys.argv[2]), int(sys.argv[3])
    text = with_limits(pathlib.Path(source).read_text())

    # The file has a head with declarations and tables, the functions, and the exports.
    first_function = re.search(rf"^static {C_TYPES} w2c_\w+\(Z_\w+\* instance.*\{{$", text, re.M).start()
    first_export = text.index("/* export: 'memory' */")
    head, functions, exports = text[:first_function], text[first_function:first_export], text[first_export:]
    declaration = re.compile(rf"^static ({C_TYPES} w2c_\w+\(Z_\w+\*[^\n]*;)$", re.M)
    declarations = "\n".join(declaration.findall(head))
    head = declaration.sub("", head)
    prelude_end = head.index("static bool s_module_initialized")
    prelude, tables = head[:prelude_end], head[prelude_end:]
    tables = replaced(tables, "static u32 func_types[", "u32 w2c_func_types[")
    prelude += "#define func_types w2c_func_types\nextern u32 w2c_func_types[];\n" + declarations + "\n"
    check_signature_sums(set(re.findall(r"wasm_rt_register_func_type\(([^)]*)\);", tables)))

    folder.mkdir(parents=True, exist_ok=True)
    (folder / "prelude.h").write_text("#pragma once\n" + prelude)
    (folder / "part00.c").write_text('#include "prelude.h"\n' + tables + exports)
    each = [re.sub(r"^static ", "", function)
            for function in re.split(rf"(?m)^(?=static {C_TYPES} w2c_)", functions) if function.strip()]
    if not each or any(function.count("FUNC_PROLOGUE;") != 1 for function in each):
        fail("a function has no prologue")
    room = sum(map(len, each)) / parts
    part, waiting = 1, []
    for function in each:
        waiting.append(function)
        if sum(map(len, waiting)) >= room or function is each[-1]:
            (folder / f"part{part:02}.c").write_text('#include "prelude.h"\n' + "".join(waiting))
            part, waiting = part + 1, []


main()
