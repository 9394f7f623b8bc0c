# shellcheck shell=bash
# Part of ./dev: steps that are quiet unless they fail.

fail() {
  echo "dev: $*" >&2
  exit 1
}

# The times of the steps, in seconds.
times=build/logs/times

# step NAME SENTENCE COMMAND...: runs a command quietly, and shows its last lines only if it fails.
step() {
  local log="build/logs/$1.log" what=$2 start=$SECONDS
  shift 2
  mkdir -p build/logs
  if [ -t 2 ]; then printf '%s …\n' "$what" >&2; fi
  if ! "$@" >"$log" 2>&1 </dev/null; then
    tail -n 40 "$log" >&2
    fail "$what failed; the whole log is in $log"
  fi
  printf '%5d s  %s\n' $((SECONDS - start)) "$what" >>"$times"
}

# show_tests NAME SENTENCE COMMAND...: like step, but shows the whole output when the command has ended, and returns 1
# if it fails.
show_tests() {
  local status=0
  if [ -t 2 ]; then printf '%s …\n' "$2" >&2; fi
  (step "$@" 2>/dev/null) || status=1
  cat "build/logs/$1.log"
  return $status
}
