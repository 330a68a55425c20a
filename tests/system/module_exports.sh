#!/usr/bin/env bash
# The connector's module exports its factory under two names, at one address, and nothing else.
. "$(dirname "$0")/common.sh"
symbols=$(nm -D --defined-only "$build/lib/KRXWNT.so" | grep -v ' A ')
names=$(awk '{print $3}' <<<"$symbols" | sort | tr '\n' ' ')
[ "$names" = "GetMailAccessObject KRX_GetMailAccessObject " ] || fail "exported: $names"
[ "$(awk '{print $1}' <<<"$symbols" | sort -u | wc -l)" -eq 1 ] || fail "two addresses: $symbols"
finish
