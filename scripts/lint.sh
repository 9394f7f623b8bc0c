# shellcheck shell=bash
# Part of ./dev: the format, clang-tidy and cppcheck, and the check of what was edited.

# The sources that cmake/build-hdf5 compiles for the sandbox …
in_sandbox='^src/formats/hdf/inside/.*\.cpp$'
# … those that are compiled for Windows alone, and the tests of these.
for_windows='^(src/(com|registration|setup)/|src/metadata/PropertyStore|src/platform/(Module|SystemText|jpeg/JpegDecoderWic)|tools/lumora/windows/)'
tests_for_windows='^tests/windows/'

sources() {
  git ls-files --cached --others --exclude-standard '*.h' '*.cpp'
}

# The sources that are not yet in the history, and those of the last commit; all if nobody knows.
latest_sources() {
  git diff --name-only --diff-filter=d HEAD~1 -- '*.h' '*.cpp' 2>/dev/null || sources
  git ls-files --others --exclude-standard '*.h' '*.cpp'
}

# What lists the sources that clang-tidy looks at.
tidied=sources

# Options with which clang reads what GCC compiles: the headers of the cross compiler, and a warning that has another
# name in GCC.
clang_for_gcc() {
  local headers
  headers=$(dirname "$(x86_64-w64-mingw32-g++-posix -print-libgcc-file-name)")/include/c++
  printf -- '--argument=%s\n' --target=x86_64-w64-windows-gnu -isystem"$headers" -isystem"$headers/x86_64-w64-mingw32" \
    -Wno-unknown-warning-option -Wshadow
}

# tidy PRESET FILE...: runs clang-tidy with the options of a build. For a header, it checks the source file of the same
# name.
tidy() {
  local preset=$1 arguments=()
  shift
  [ "$preset" != windows ] || mapfile -t arguments < <(clang_for_gcc)
  step "tidy-$preset" "Running clang-tidy ($preset)" cmake/tidy --cache "$cache/tidy" --jobs "$jobs" \
    "${arguments[@]}" \
    "build/$preset" $(printf '%s\n' "${@/%.h/.cpp}" | sort -u)
}

lint_format() {
  step lint-format "Checking the format (./dev format mends it)" clang-format --dry-run -Werror $(sources)
}

tidy_sandboxed() {
  local flags
  mapfile -t flags < <(cmake/build-hdf5 "$cache" --flags)
  step tidy-sandboxed "Running clang-tidy (sandbox)" clang-tidy --quiet "$@" -- "${flags[@]}"
}

# lint_portable PATTERN: lints what is not for Windows alone. clang-tidy checks the files that match the pattern.
lint_portable() {
  tidy native $($tidied | grep -E "$1" | grep -vE "$for_windows|$tests_for_windows|$in_sandbox")
  tidy_sandboxed $(sources | grep -E "$in_sandbox")
  # If code in the sandbox gets no memory, the sandbox handles that.
  step lint-cppcheck "Running cppcheck" cppcheck --quiet --std=c++20 --language=c++ --enable=warning,performance,portability \
    --error-exitcode=1 --inline-suppr --suppress=internalAstError --suppress=normalCheckLevelMaxBranches \
    --suppress='nullPointerOutOfMemory:src/formats/hdf/inside/*' -j "$jobs" \
    -I src -I tests src tools
}

lint() {
  be_strict
  setup
  lint_format
  build native
  build windows
  configure_windows_tests
  compile windows-tests
  lint_portable .
  tidy windows $(sources | grep -E "$for_windows")
  tidy windows-tests $(sources | grep -E "$tests_for_windows")
}

# run_filtered FILTER: runs the unit tests that match a filter, distributed over the processors.
run_filtered() {
  local shard processes=() status=0
  for ((shard = 0; shard < jobs; ++shard)); do
    GTEST_TOTAL_SHARDS=$jobs GTEST_SHARD_INDEX=$shard build/native/bin/unit_tests --gtest_brief=1 --gtest_filter="$1" &
    processes+=($!)
  done
  for shard in "${processes[@]}"; do
    wait "$shard" || status=1
  done
  return $status
}

# are_compiled PRESET FILE...: fails if no CMakeLists.txt names a source file. The benchmark has its own build.
are_compiled() {
  local preset=$1 file
  shift
  for file; do
    [[ $file != *.cpp || $file == bench/* ]] || grep -qF "\"$root/$file\"" "build/$preset/compile_commands.json" ||
      fail "$file is compiled by nothing: add it to a CMakeLists.txt"
  done
}

check() {
  local file files=() sandboxed=() portable=() windows=() tests=() filter
  for file; do
    files+=("$(realpath -m --relative-to="$root" -- "$started_in/$file")")
  done
  [ $# -gt 0 ] || mapfile -t files < <(
    git diff --name-only --diff-filter=d HEAD -- '*.h' '*.cpp'
    git ls-files --others --exclude-standard -- '*.h' '*.cpp'
  )
  [ ${#files[@]} -gt 0 ] || fail "no source file differs from the last commit; name those that are to be checked"
  for file in "${files[@]}"; do
    [[ -f $file && $file =~ \.(h|cpp)$ ]] || fail "$file is no .h or .cpp file"
    if [[ $file =~ $in_sandbox ]]; then
      sandboxed+=("$file")
    elif [[ $file =~ $for_windows ]]; then
      windows+=("$file")
    elif [[ $file =~ $tests_for_windows ]]; then
      tests+=("$file")
    else
      portable+=("$file")
    fi
  done
  be_strict
  setup
  step lint-format "Checking the format (./dev format mends it)" clang-format --dry-run -Werror "${files[@]}"
  if [ ${#sandboxed[@]} -gt 0 ]; then
    build native unit_tests
    show_tests unit "Running the tests of what was touched" run_filtered '*Hdf*:*Nested*:Sandbox*' || fail "some tests failed"
    tidy_sandboxed "${sandboxed[@]}"
  fi
  if [ ${#portable[@]} -gt 0 ]; then
    build native unit_tests
    are_compiled native "${portable[@]}"
    filter=$(cmake/tests-of build/native "${portable[@]}")
    if [ -n "$filter" ]; then
      show_tests unit "Running the tests of what was touched" run_filtered "$filter" || fail "some tests failed"
    else
      echo "No unit test includes these files."
    fi
    tidy native "${portable[@]}"
  fi
  if [ ${#windows[@]} -gt 0 ]; then
    build windows
    are_compiled windows "${windows[@]}"
    tidy windows "${windows[@]}"
  fi
  if [ ${#tests[@]} -gt 0 ]; then
    build windows
    configure_windows_tests
    compile windows-tests
    are_compiled windows-tests "${tests[@]}"
    tidy windows-tests "${tests[@]}"
  fi
  [ ${#windows[@]} = 0 ] && [ ${#tests[@]} = 0 ] || echo "./dev test runs the tests of what is for Windows alone."
  cat "$times"
}
