#!/usr/bin/env bash
# The products are built hardened: full RELRO, immediate binding, position-independent, stack
# protector, fortified calls, no executable stack.
. "$(dirname "$0")/common.sh"
for file in bin/krxhost lib/libkrxmail.so lib/KRXWNT.so lib/RASAPI32.so; do
  headers=$(readelf -lWd "$build/$file")
  grep -q GNU_RELRO <<<"$headers" || fail "$file: no RELRO"
  grep -qE 'BIND_NOW|FLAGS_1.*NOW' <<<"$headers" || fail "$file: lazy binding"
  grep -q 'GNU_STACK.*RWE' <<<"$headers" && fail "$file: executable stack"
  grep -qE 'DYN \(' <<<"$(readelf -h "$build/$file")" || fail "$file: not position-independent"
  grep -q endbr64 <<<"$(objdump -d "$build/$file")" || fail "$file: no control-flow protection"
done
symbols=$(readelf -sW --dyn-syms "$build/lib/libkrxmail.so")
grep -q '__stack_chk_fail' <<<"$symbols" || fail "no stack protector"
grep -qE '__[a-z]+_chk' <<<"$symbols" || fail "no fortified calls"
finish
