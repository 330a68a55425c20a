#!/usr/bin/env bash
# The log from eight threads under ThreadSanitizer, in a build of its own below the products.
# Arguments: the directory with the products, the source tree, [ENTRIES of each thread: 2000].
. "$(dirname "$0")/common.sh"
entries=${3:-2000}
own=$build/tsan
flags="-fsanitize=thread -O1 -g1"

# With more random addresses than it knows of ThreadSanitizer gives up; then it goes without them.
run=()
echo 'int main() {}' >"$spool/probe.cpp"
${CXX:-c++} $flags "$spool/probe.cpp" -o "$spool/probe" 2>/dev/null ||
  skip "the compiler has no ThreadSanitizer"
"$spool/probe" 2>/dev/null || run=(setarch -R)
"${run[@]}" "$spool/probe" 2>/dev/null || skip "ThreadSanitizer does not run on this machine"

mkdir -p "$own"
{
  cmake -G Ninja -S "$source" -B "$own" -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG="$flags" \
    -DBUILD_TESTING=OFF && cmake --build "$own" --target krx_log
} >"$own/build.log" 2>&1 || { tail -20 "$own/build.log"; fail "the libraries cannot be built"; finish; }
# The libraries need one another in a circle.
${CXX:-c++} -std=c++20 $flags -I "$source/src" "$(dirname "$0")/log_threads.cpp" \
  -Wl,--start-group "$own"/archive/libkrx_*.a -Wl,--end-group -lsqlite3 -ldl \
  -o "$own/log_threads" || { fail "the program cannot be built"; finish; }

status=0
mkdir "$spool/log"
TSAN_OPTIONS="exitcode=66 halt_on_error=0 ${TSAN_OPTIONS:-}" \
  "${run[@]}" "$own/log_threads" "$spool/log" "$entries" >"$spool/output" 2>&1 || status=$?
cat "$spool/output"
echo "findings: $(grep -c '^WARNING: ThreadSanitizer' "$spool/output")"
[ "$status" -eq 0 ] || fail "the program ended with $status"
finish
