# shellcheck shell=bash
# Part of ./dev: speed, fuzzing, the gauntlet and coverage.

bench() {
  local results=build/bench/results.json figures=build/bench/python.json options=() report=()
  local dll=
  while [ $# -gt 0 ]; do
    case $1 in
      --dll) dll=1 ;;
      --compare) report+=(--compare bench/baseline.json) ;;
      --save) report+=(--save bench/baseline.json) ;;
      *) options+=("$1") ;;
    esac
    shift
  done
  setup
  if [ -n "$dll" ]; then
    build windows
    configure_windows_tests
    compile windows-tests dll_bench
    prefix
    cmake/wine-run build/windows/bin/dll_bench.exe 2>/dev/null
    return
  fi
  build bench
  /usr/bin/python3 bench/python_frames.py >"$figures"
  build/bench/bin/lumora_bench --benchmark_out="$results" --benchmark_out_format=json "${options[@]}" >/dev/null
  bench/report.py "$results" --python "$figures" "${report[@]}"
  echo "All that was measured is in $results."
}

fuzz() {
  if [ "${1:-}" = --coverage ]; then
    seed_coverage
    return
  fi
  setup
  build fuzz fuzz_lumora fuzz_boundary
  fuzz/run.py build/fuzz/bin "$@"
}

# Windows under Wine first, then Linux. What is shown of both is one report.
gauntlet() {
  local words=() native=() status=0 path
  while [ $# -gt 0 ]; do
    case $1 in
      --seconds | --memory)
        words+=("$1" "${2:-}")
        native+=("$1" "${2:-}")
        shift
        ;;
      -*) words+=("$1") ;;
      *)
        path=$(cd "$started_in" && realpath -m -- "$1")
        words+=("$(windows_path "$path")")
        native+=("$path")
        ;;
    esac
    shift || true
  done
  setup
  build windows
  configure_windows_tests
  compile windows-tests gauntlet
  prefix
  step register "Registering Lumora in the Wine prefix" lumora register
  cmake/wine-run build/windows/bin/gauntlet.exe "${words[@]}" || status=$?
  [ $status -lt 2 ] && [[ " ${words[*]} " != *' --help '* ]] || return $status
  build native lumora lumora-thumbnailer
  echo "Linux:"
  tests/tool/gauntlet build/native/bin "${native[@]}" || status=$?
  return $status
}

# merge_profiles FOLDER FILE: adds up what programs have counted.
merge_profiles() {
  llvm-profdata merge --sparse "$1"/*.profraw -o "$2"
  rm -r "$1"
}

# show_coverage DATA PROGRAM...
show_coverage() {
  local programs=("${@:2}") report
  report=("${programs[0]}" "${programs[@]/#/-object=}" -instr-profile="$1"
    -ignore-filename-regex='tests/|fuzz/|googletest|/usr/|hdf5_module')
  llvm-cov report "${report[@]}"
  llvm-cov show "${report[@]}" --format=html --output-dir="${1%.*}"
  echo "Line by line: ${1%.*}/index.html"
}

coverage() {
  local profiles=build/coverage/profiles status=0
  setup
  configure coverage -D LUMORA_REAL_FILES="$(real_files)"
  compile coverage
  rm -rf "$profiles"
  mkdir -p "$profiles"
  LLVM_PROFILE_FILE=$root/$profiles/%p.profraw show_tests ctest-coverage "Running the native tests" \
    ctest --preset coverage -j "$jobs" || status=1
  merge_profiles "$profiles" build/coverage/html.profdata
  show_coverage build/coverage/html.profdata build/coverage/bin/{unit,process}_tests
  return $status
}

# What the seeds of the fuzzer reach.
seed_coverage() {
  local profiles=build/coverage/profiles
  setup
  configure coverage
  compile coverage fuzz_lumora fuzz_boundary
  rm -rf "$profiles"
  mkdir -p "$profiles"
  LLVM_PROFILE_FILE=$root/$profiles/%p.profraw step replay "Running the seeds" fuzz/run.py build/coverage/bin --replay
  merge_profiles "$profiles" build/coverage/seeds.profdata
  show_coverage build/coverage/seeds.profdata build/coverage/bin/fuzz_{lumora,boundary}
}
