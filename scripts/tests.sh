# shellcheck shell=bash
# Part of ./dev: all tests.

# With the sanitizers. ./dev desktop does this with the program of the package, and in the desktops' sandboxes.
test_desktop() {
  rm -rf build/desktop-native
  DESTDIR=build/desktop-native cmake --install build/native --prefix /usr
  tests/desktop/check build/desktop-native . --no-sandbox
}

# A thumbnail takes a process, so there are not thumbnails of all seeds here; ./dev gauntlet fuzz/corpus makes them.
test_gauntlet() {
  local status=0 checked
  # It waits most of the time.
  tests/tool/check-gauntlet build/native/bin &
  checked=$!
  tests/tool/gauntlet build/native/bin samples fuzz/regressions $(real_files) || status=1
  tests/tool/gauntlet --thumbnails 100 build/native/bin $(seeds_for_readers) || status=1
  wait $checked || status=1
  return $status
}

# These wait more than they compute.
test_linux() {
  local status=0
  show_tests thumbnailer "Making thumbnails for Linux" tests/thumbnailer/check \
    build/native/bin/lumora-thumbnailer . "$(real_files)" || status=1
  show_tests transcripts-linux "Playing the tool's transcripts on Linux" tests/tool/check-transcripts build/native/bin/lumora ||
    status=1
  show_tests tool-linux "Running the tool on Linux" tests/tool/check-linux build/native/bin/lumora || status=1
  show_tests facility "Sharing files among processes as a facility does" tests/facility/check build/native/bin/lumora \
    build/facility --files 640 || status=1
  show_tests gauntlet-linux "Taking the samples, seeds and real files through the programs for Linux" test_gauntlet || status=1
  show_tests desktop "Looking at the samples on a Linux desktop" test_desktop || status=1
  return $status
}

test_natively() {
  local status=0 linux lint
  # The tests under Wine take longest, because they wait much. Whenever they compute, they go first.
  renice -n 5 -p $BASHPID >/dev/null
  compile native
  test_linux &
  linux=$!
  (lint_portable '^(src|fuzz|tools)/') &
  lint=$!
  show_tests ctest-native "Running the native tests" ctest --preset native -j "$jobs" || status=1
  compile fuzz fuzz_lumora fuzz_boundary
  show_tests fuzz "Fuzzing each target for a moment" fuzz/run.py build/fuzz/bin --test || status=1
  wait $linux || status=1
  wait $lint || status=1
  return $status
}

# Each of these makes a Wine prefix of its own.
test_package() {
  local status=0
  package build/package
  package_tests
  show_tests package-test "Installing, upgrading and removing the setup package" tests/package/run \
    build/package/Lumora.msi build/package-newer/Lumora.msi "$root/build/package-test" || status=1
  show_tests signing "Signing the setup package" tests/package/signing "$root/build/package-signed" "$hdf5/windows" || status=1
  show_tests travel "Running the tests where there is no source tree" tests/travel/run \
    build/package/Lumora-tests.zip "$hdf5" "$root/build/travel" || status=1
  show_tests reproducible "Building the same bytes in another folder" tests/reproducible/run \
    "$root/build/reproducible" "$hdf5/windows" 12 || status=1
  return $status
}

test_windows() {
  local status=0 lint packaged looked
  compile windows
  compile windows-tests
  (tidy windows $($tidied | grep -E "$for_windows")) &
  lint=$!
  test_package &
  packaged=$!
  prefix
  show_tests gallery "Looking at pages of the HTML sheet in a browser" tests/gallery/check-page \
    build/windows/bin/gallery_page.exe build/gallery &
  looked=$!
  show_tests ctest-windows "Running the Windows tests" ctest --preset windows-tests -j "$jobs" || status=1
  wait $looked || status=1
  wait $packaged || status=1
  wait $lint || status=1
  return $status
}

# Prints the folders of the fuzzer's seeds that are whole files; the other seeds are parts of one.
seeds_for_readers() {
  printf 'fuzz/corpus/%s\n' bin dm emi hdf lattice mrc npy raw ser
}

test_same_pictures() {
  # The tests of the registration have removed it.
  step register "Registering Lumora in the Wine prefix" lumora register
  show_tests same-pictures "Comparing the pictures of both systems" tests/tool/check-pictures build/native/bin/lumora \
    "cmake/wine-run $root/build/windows/bin/lumora.exe" samples fuzz/regressions $(seeds_for_readers) $(real_files)
}

# Prints the folder of the files that instruments have written, or nothing if there is none.
real_files() {
  local folder=${LUMORA_REAL_FILES:-$root/../shared/real}
  [ ! -d "$folder" ] || printf '%s' "$folder"
}

# facility: with as many files as docs/facility.md speaks of, and with Slurm.
facility() {
  setup "${for_facility[@]}"
  build_hdf5 bench
  step configure-linux "Configuring the linux build" cmake --preset linux -D LUMORA_HDF5="$hdf5/bench" "${strict[@]}"
  compile linux
  show_tests facility "Sharing 10,000 files among machines" tests/facility/check build/linux/bin/lumora build/facility
}

run_tests() {
  local real status=0 started=$SECONDS
  real=$(real_files)
  # clang-tidy takes as long for everything as all tests do. ./dev lint lets it look at everything.
  tidied=latest_sources
  be_strict
  setup
  build_hdf5 windows native plain-windows
  configure native -D LUMORA_REAL_FILES="$real"
  # With the library of the native build: that of ./dev fuzz would take another minute.
  step configure-fuzz "Configuring the fuzz build" \
    cmake --preset fuzz -D LUMORA_HDF5="$hdf5/native" "${strict[@]}"
  configure windows
  configure_windows_tests -D LUMORA_REAL_FILES="$real"
  lint_format
  step json-lines "Checking the approved lines of JSON" tests/json/check-lines
  # Programs under Wine wait much, compilers do not: side by side they keep the processors busy.
  test_natively &
  local natively=$!
  test_windows &
  local windows=$!
  wait $natively || status=1
  wait $windows || status=1
  [ $status != 0 ] || test_same_pictures || status=1
  printf '\nTime taken, partly side by side:\n'
  cat "$times"
  printf '%5d s  in all\n' $((SECONDS - started))
  [ $status = 0 ] || fail "some tests failed"
}

desktop() {
  setup "${for_debian[@]}" "${for_desktops[@]}"
  package_debian
  show_tests desktop-package "Looking at the samples with the package" tests/desktop/run build/package/lumora_*.deb \
    "$hdf5/bench" build/desktop || fail "some tests failed"
}

screenshot() {
  setup "${for_debian[@]}" "${for_screenshot[@]}"
  package_debian
  rm -rf build/screenshot
  dpkg-deb -x build/package/lumora_*.deb build/screenshot
  step screenshot "Opening a file manager" tests/desktop/screenshot build/screenshot . docs/pictures/thunar.png
  echo "The picture is docs/pictures/thunar.png. Look at it."
}
