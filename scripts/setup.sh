# shellcheck shell=bash
# Part of ./dev: what a build needs.

# Everything comes from Debian's packages.
packages=(
  g++-mingw-w64-x86-64-posix wine wine64         # the product, and what runs it here
  g++ clang libclang-rt-dev cmake ninja-build    # the native build, its sanitizers and the fuzzer
  lld llvm wasi-libc libc++-dev-wasm32 libclang-rt-dev-wasm32 # the HDF5 library: the sandbox that it runs in
  dpkg-dev                                       # … and its source
  googletest libbenchmark-dev                    # tests and benchmark
  libhdf5-dev libz-mingw-w64-dev zlib1g-dev      # … and what they write HDF5 files with
  python3 python3-numpy python3-h5py python3-mrcfile # test files by independent writers
  libturbojpeg0-dev libpng-dev                   # read and write pictures in the native build
  libjpeg62-turbo-dev libpango1.0-dev pkgconf    # … and the texts beside them
  chromium-headless-shell                        # looks at a page of lumora sheet --html
  parallel                                       # runs shards of a batch side by side
  clang-format clang-tidy cppcheck               # lint
  wixl msitools python3-markdown python3-pil     # the setup package, and its icon
  python3-jsonschema python3-yaml                # … its manifest for winget
  osslsigncode openssl                           # … its signature, and a certificate for the test
  shared-mime-info dbus-daemon tumbler python3-gi # a Linux desktop without a screen
)
# What only some commands need; the tests do not wait for it.
for_debian=(build-essential debhelper)           # the package for Debian
for_desktops=(lintian man-db bubblewrap gir1.2-gnomedesktop-4.0) # … its test
for_screenshot=(xvfb thunar)
for_facility=(slurm-wlm munge)

# Options that turn warnings into errors; be_strict sets them.
strict=()

is_installed() {
  [ "$(dpkg-query -W -f='${db:Status-Status}' "$1" 2>/dev/null)" = installed ]
}

install_packages() {
  local as_root=()
  [ "$(id -u)" = 0 ] || as_root=(sudo)
  "${as_root[@]}" apt-get update
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends "$@"
}

# setup [PACKAGE...]: installs what is missing of the list above, and of these.
setup() {
  command -v dpkg-query >/dev/null || fail "this script installs Debian packages; on another system see docs/architecture.md for what is needed"
  local missing=() package
  for package in "${packages[@]}" "$@"; do
    is_installed "$package" || missing+=("$package")
  done
  [ ${#missing[@]} = 0 ] && return
  [ "$(id -u)" = 0 ] || command -v sudo >/dev/null ||
    fail "these packages are missing, and only root can install them: ${missing[*]}"
  if [ -t 2 ]; then printf 'Missing: %s\n' "${missing[*]}" >&2; fi
  step setup "Installing Debian packages" install_packages "${missing[@]}"
}

# build_hdf5 PRESET...
build_hdf5() {
  local preset
  for preset; do
    if [ ! -e "$hdf5/$preset" ]; then
      step hdf5 "Building the HDF5 library ($*), once for all checkouts" cmake/build-hdf5 "$cache" "$@"
      return
    fi
  done
}

# Turns warnings into errors, but only on the two releases of Debian that the tests run on. Later builds of the same
# tree keep this setting, so that nothing is compiled twice.
be_strict() {
  # shellcheck source=/dev/null
  case $(. /etc/os-release 2>/dev/null && echo "$ID ${VERSION_ID:-}") in
    'debian 12' | 'debian 13') strict=(-D CMAKE_COMPILE_WARNING_AS_ERROR=ON) ;;
    *) echo "Warnings are not taken as errors: this is neither Debian 12 nor Debian 13." ;;
  esac
}
