#!/usr/bin/env bash
# Several at once: two hosts on neighbouring spools that share one DestDir and whose pairs have the
# same names; at each spool producers that use the directory lock and producers that know nothing of
# it; and a second host on a source directory, which refuses. Every message comes exactly once.
# Arguments: the directory with the products, the source tree, [MESSAGES: 100000].
. "$(dirname "$0")/common.sh"
messages=${3:-100000}
producers=(locked renamed inplace envelopefirst)
each=$(((messages + 7) / 8))
export KRX_RUN_DIR=$spool/run
mkdir -p "$spool"/{a,b,wanted} "$KRX_RUN_DIR"
chmod 700 "$KRX_RUN_DIR"

write_config() { # SPOOL
  cat >"$spool/$1.ini" <<END
[Main]
SourceDir = $spool/$1
DestDir = $spool/out
MailDomain = $1
ContainerClass = Class
[Host]
Poll = 1
END
}
start_host() { # SPOOL; sets $host
  "$krxhost" run --config "$spool/$1.ini" >"$spool/$1.log" 2>&1 &
  host=$!
}
start_producers() { # SPOOL
  local how
  for how in "${producers[@]}"; do
    "$pairs" put "$how" "$spool/wanted/$1$how" "$spool/$1" &
    running+=($!)
  done
}
# What is still to be fetched; the scan is as lazy as the shell lets it be.
waiting() {
  find "$spool/a" "$spool/b" -maxdepth 1 -name '*.RCP' | wc -l
}
wait_until_empty() {
  local left before=-1 still=0
  while left=$(waiting) && [ "$left" -gt 0 ]; do
    [ "$left" -eq "$before" ] && still=$((still + 1)) || still=0
    [ "$still" -lt 60 ] || { fail "$left messages wait for ever"; return; }
    before=$left
    sleep 1
  done
}
end_host() { # PROCESS SPOOL
  local fetched
  kill -TERM "$1"
  wait "$1" || fail "the host of $2 ended with $?: $(tail -3 "$spool/$2.log")"
  grep -q 'kept 0, failed 0$' "$spool/$2.log" || fail "the host of $2: $(tail -1 "$spool/$2.log")"
  fetched=$(sed -n 's/^fetched \([0-9]*\),.*/\1/p' "$spool/$2.log")
  count fetched "${fetched:-0}"
}
# A second consumer is refused as long as the first one lives, and says who that is.
refuse_second() {
  expect_status 69 "$krxhost" run --config "$spool/a.ini" --once
  expect_output "is in use by process $host_a."
  count "second hosts refused"
}

for side in a b; do
  write_config "$side"
  for how in "${producers[@]}"; do
    mkdir "$spool/wanted/$side$how"
    (cd "$spool/wanted" && "$pairs" make "$side$how" "${how:0:1}" "$each" 2000)
  done
done
start=$SECONDS
start_host a
host_a=$host
start_host b
host_b=$host
running=()
start_producers a
start_producers b
until [ -s "$spool/a/.krxhost" ]; do sleep 0.05; done
refuse_second
for producer in "${running[@]}"; do
  wait "$producer" || fail "a producer failed"
done
refuse_second
wait_until_empty
sleep 1
refuse_second
end_host "$host_a" a
end_host "$host_b" b
take_census
check_remains "in the end"
count "messages through" "$(awk '$2 == 1 && !/^[!-]/' "$spool/census" | wc -l)"
count lost "$(awk '$2 == 0 && !/^[!-]/' "$spool/census" | wc -l)"
count twice "$(awk '!/^[!-]/ && $2 > 1' "$spool/census" | wc -l)"
[ "${figure["messages through"]}" -eq $((8 * each)) ] || fail "not every message came exactly once"
for side in a b; do
  expect_files "$spool/$side"
done
figures "messages through" lost twice fetched "envelopes without whole message" \
  "envelopes not whole" "lone message files" "working files left" "second hosts refused"
echo "seconds: $((SECONDS - start))"
finish
