#!/usr/bin/env bash
# The installed SDK builds a host of somebody else's, by its CMake package and by pkg-config, and that
# host drives the module.
. "$(dirname "$0")/common.sh"
flags=${KRX_TEST_CXXFLAGS:-}
prefix=$spool/prefix
cmake --install "$build" --prefix "$prefix" >"$spool/output" 2>&1 || fail "$(cat "$spool/output")"
libdir=$(dirname "$(find "$prefix" -name libkrxmail.so)")
export LD_LIBRARY_PATH=$libdir

run_foreign() { # PROGRAM
  configure
  put "$spool/in" ONE
  put "$spool/in" TWO
  expect_status 0 "$1" "$spool/krx.ini" Main
  expect_output "2 messages"
  expect_output "!!Assert: Null pointer in krxpo at"
  expect_files "$spool/out" ONE.MSG ONE.RCP TWO.MSG TWO.RCP
  expect_files "$spool/in" QDXRECVR
  rm -rf "$spool"/in/* "$spool"/out/*
}

cmake -S "$source/tests/system/sdk" -B "$spool/cmake" -DCMAKE_PREFIX_PATH="$prefix" \
  -DCMAKE_CXX_FLAGS="$flags" >"$spool/output" 2>&1 &&
  cmake --build "$spool/cmake" >>"$spool/output" 2>&1 || fail "$(cat "$spool/output")"
run_foreign "$spool/cmake/foreign"

export PKG_CONFIG_PATH=$libdir/pkgconfig
# shellcheck disable=SC2046,SC2086
g++ -std=c++20 $flags -DMODULE="\"$(pkg-config --variable=moduledir krxmail)/KRXWNT.so\"" \
  "$source/tests/system/sdk/foreign.cpp" $(pkg-config --cflags --libs krxmail) -o "$spool/foreign" \
  >"$spool/output" 2>&1 || fail "$(cat "$spool/output")"
run_foreign "$spool/foreign"

# The installed program finds its library and its module without help.
unset LD_LIBRARY_PATH
configure
expect_status 0 "$prefix/bin/krxhost" check --config "$spool/krx.ini"
finish
