# shellcheck shell=bash
# Shared by the tests that are scripts. $output, which they set, names a file for the output of the commands.
# shellcheck disable=SC2154,SC2034  # set and used by the tests
failures=0

# expect SENTENCE COMMAND...: counts what is not so.
expect() {
  if "${@:2}" >"$output" 2>&1; then
    echo "ok    $1"
  else
    echo "FAIL  $1"
    tail -n 15 "$output"
    failures=$((failures + 1))
  fi
}

not() {
  ! "$@"
}

# names_none FILE FOLDER...: whether a program contains none of these names. Windows' own texts have a zero behind each
# letter.
names_none() {
  local folder options=()
  for folder in "${@:2}"; do
    options+=(-e "$folder")
  done
  not grep -qaF "${options[@]}" <(tr -d '\0' <"$1")
}
