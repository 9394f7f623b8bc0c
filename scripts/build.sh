# shellcheck shell=bash
# Part of ./dev: builds, what they give, and the setup package.

# configure PRESET [OPTION...]
configure() {
  local preset=$1 library=${1%-tests}
  shift
  [ "$preset" != coverage ] || library=native
  build_hdf5 "$library"
  step "configure-$preset" "Configuring the $preset build" \
    cmake --preset "$preset" -D LUMORA_HDF5="$hdf5/$library" "${strict[@]}" "$@"
}

# configure_windows_tests [OPTION...]: configures the tests of the windows build, which must be configured already.
configure_windows_tests() {
  build_hdf5 windows plain-windows
  configure windows-tests -D LUMORA_PLAIN_HDF5="$hdf5/plain-windows" "$@"
}

# compile PRESET [TARGET...]
compile() {
  local preset=$1
  shift
  step "build-$preset" "Building ($preset)" cmake --build --preset "$preset" -j "$jobs" ${1:+--target "$@"}
}

# build PRESET [TARGET...]
build() {
  configure "$1"
  compile "$@"
}

prefix() {
  [ -e "$WINEPREFIX/system.reg" ] || step wine "Creating a private Wine prefix" cmake/wine-run wineboot --init
}

lumora() {
  cmake/wine-run build/windows/bin/lumora.exe "$@"
}

# windows_path PATH: prints the name that an absolute path has for a Windows program under Wine.
windows_path() {
  printf 'Z:%s' "${1//\//\\}"
}

show() {
  [ $# -gt 0 ] || fail "show needs a file, for example: ./dev show samples/*.mrc"
  local file path files=() status=0
  for file in "$@"; do
    path=$(cd "$started_in" && realpath -m -- "$file")
    [ -e "$path" ] || fail "there is no file $file"
    files+=("$(windows_path "$path")")
  done
  setup
  build windows
  prefix
  step register "Registering Lumora in the Wine prefix" lumora register
  mkdir -p build/show
  lumora info "${files[@]}" || status=1
  lumora render --verbose -o "$(windows_path "$root/build/show")" "${files[@]}" || status=1
  [ $status = 0 ] || fail "some of the files could not be shown"
  echo "The pictures are in build/show."
}

# cached NAME: prints a variable of the Windows build.
cached() {
  sed -n "s/^$1:[A-Z]*=//p" build/windows/CMakeCache.txt
}

# package FOLDER [VERSION [SIGNING...]]: an empty version is that of the sources.
package() {
  local version=${2:-$(cached CMAKE_PROJECT_VERSION)}
  step package "Making the setup package $version" packaging/build-msi \
    build/windows/bin "$hdf5/windows" "$version" "$(cached LUMORA_RELEASE_DATE)" "$1" "${@:3}"
}

# package_debian: the HDF5 library of the benchmark is the one that GCC has made.
package_debian() {
  build_hdf5 bench
  step package-debian "Making the package for Debian" packaging/build-deb "$hdf5/bench" build/package
}

# package_tests: the zip that takes the package, a newer one and the tests to a machine with Windows.
package_tests() {
  package build/package-newer 100.0.0
  step package-tests "Making the zip of the tests" packaging/build-test-zip build/windows/bin \
    build/windows-tests/tests/data build/package build/package-newer/Lumora.msi "$(cached LUMORA_RELEASE_DATE)" \
    build/package/Lumora-tests.zip
}

# make_package [--tests] [--sign CERTIFICATE [--timestamp URL]]
make_package() {
  local with_tests=
  if [ "${1:-}" = --tests ]; then
    with_tests=1
    shift
  fi
  # The certificate is a file of the folder in which the user has started this.
  [ $# -lt 2 ] || set -- "$1" "$(cd "$started_in" && realpath -- "$2")" "${@:3}"
  setup "${for_debian[@]}"
  build windows
  package build/package '' "$@"
  package_debian
  echo "The setup package is build/package/Lumora.msi. The package for Debian is" build/package/lumora_*.deb
  [ -n "$with_tests" ] || return 0
  configure_windows_tests
  compile windows-tests
  package_tests
  echo "The zip of the tests is build/package/Lumora-tests.zip."
}
