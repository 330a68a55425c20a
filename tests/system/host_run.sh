#!/usr/bin/env bash
# krxhost run: every sample pair goes in and comes out; what cannot be loaded is kept; nothing stays.
. "$(dirname "$0")/common.sh"
mkdir -p "$spool"/{internet,office}/{in,out} "$spool/log"
sed "s|@SPOOL@|$spool|g" "$source/examples/krxhost.ini" >"$spool/example.ini"
cp "$source"/examples/spool/* "$spool/internet/in/"
put "$spool/office/in" BACK01
put "$spool/office/in" BAD01 "" $'no field here'
put "$spool/office/in" BAD02 "" $'Return-path: <>\nRecipient: a@b'
pairs=$(ls "$source"/examples/spool/*.RCP | wc -l)

expect_status 0 "$krxhost" run --config "$spool/example.ini" --once
expect_output "fetched $((pairs + 3)), delivered $((pairs + 1)), kept 2, failed 0"
[ "$(ls "$spool"/office/out/*.RCP | wc -l)" -eq $((pairs + 1)) ] || fail "pairs in office/out"
expect_files "$spool/internet/in"
expect_files "$spool/internet/out"
expect_files "$spool/office/in" QDXRECVR
expect_files "$spool/office/in/QDXRECVR" BAD01.{MSG,RCP,txt} BAD02.{MSG,RCP,txt}

# Nothing is changed but what has to be: a repaired type, a missing date or sender.
for message in "$source"/examples/spool/*.MSG; do
  name=$(basename "$message")
  changed=$(diff -a "$message" "$spool/office/out/$name" | grep -a '^[<>]' | tr -d '\r')
  case $name in
    REPAIR*) [ "$(grep -c 'Content-Type' <<<"$changed")" -eq 2 ] || fail "$name: $changed" ;;
    *) [ -z "$changed" ] || fail "$name: $changed" ;;
  esac
done
log=$(cat "$spool"/log/main*.log)
grep -q "Message BAD01.RCP could not be loaded, status 11981." <<<"$log" || fail "no log line: $log"
grep -q "Message BAD02.RCP could not be loaded, status 10132." <<<"$log" || fail "no log line: $log"
grep -q 'Contents of "PLAIN01.RCP"' "$spool"/log/contents*.log || fail "no contents listing"

# The same name again: the copy that is there stays, the new one gets a number.
put "$spool/office/in" BAD01 "" $'no field here'
put "$spool/office/in" BAD02 $'Subject: other\n\nx\n.' $'Return-path: <>\nRecipient: a@b'
expect_status 0 "$krxhost" run --config "$spool/example.ini" --once
expect_files "$spool/office/in/QDXRECVR" BAD01.{MSG,RCP,txt} BAD02.{MSG,RCP,txt} BAD02-1.{MSG,RCP,txt}

# What looks like a format is text, wherever it comes from.
rm -rf "$spool"/in/* "$spool"/out/* "$spool/log/"*
cat >"$spool/format.ini" <<EOF
[Host]
PostOffice = %n%s
Log = Log
$(sed -n '/^\[Log\]/,$p' "$spool/example.ini")
[%n%s]
SourceDir = $spool/in
DestDir = $spool/out
MailDomain = %n%s
ContainerClass = %n%s
PODownFile = $spool/%n%s.down
EOF
put "$spool/in" %n%s $'Subject: %n%s\nFrom: %n%s@a\nX-%n: %s\nDate: %n\nMIME-Version: 1.0\nContent-Type: %n/%s; name="%n%s"\n\n%n%s\n.' \
  $'Return-path: %n%s@a\nRecipient: %n%s\nX-%n: %s'
put "$spool/in" BAD%n%s "" '%n%s'
expect_status 0 "$krxhost" run --config "$spool/format.ini" --once
expect_output "fetched 2, delivered 1, kept 1, failed 0"
grep -q '%n%s' "$spool/out/%n%s.MSG" || fail "$(ls "$spool/out")"
grep -q '^Recipient: %n%s' "$spool/out/%n%s.RCP" || fail "$(cat "$spool/out/%n%s.RCP")"
grep -qF 'BAD%n%s.RCP could not be loaded' "$spool"/log/main*.log || fail "$(cat "$spool"/log/main*.log)"
grep -qF '"%n%s@a"' "$spool"/log/*.log || fail "$(cat "$spool"/log/*.log)"

# A log disk without room costs lines, not mail. The disk is there for this one process.
put "$spool/office/in" FULL01
private="unshare -m"
[ "$(id -u)" -eq 0 ] || private="unshare -rm"
with_full_log() { # COMMAND...
  $private sh -c 'mount -t tmpfs -o size=64k none "$0" && { cat /dev/zero >"$0/full"; exec "$@"; }' \
    "$spool/log" "$@"
}
if with_full_log true 2>/dev/null; then
  expect_status 0 with_full_log timeout 60 "$krxhost" run --config "$spool/example.ini" --once
  expect_output "fetched 1, delivered 1, kept 0, failed 0"
else
  echo "not shown here: a full log disk, because a mount is refused"
fi

# Memory that runs out at any moment of a run, for one call or for some, costs no mail. A sanitizer has
# an allocator of its own.
g++ -std=c++20 -O1 -shared -fPIC "$source/tests/system/failing_new.cpp" -o "$spool/failing_new.so" ||
  fail "failing_new.cpp cannot be compiled"
remains() { # NAME
  local directory
  for directory in in in/QDXRECVR out; do
    [ -e "$spool/$directory/$1.RCP" ] && [ -e "$spool/$directory/$1.MSG" ] && return
  done
  return 1
}
fail_at() { # CALL COUNT; false when there is no such call
  rm -rf "$spool"/in/* "$spool"/out/*
  cp "$source"/examples/spool/PLAIN01.* "$spool/in/"
  printf 'no envelope\r\n' >"$spool/in/BAD01.RCP"
  printf 'Subject: x\r\n\r\nx\r\n.\r\n' >"$spool/in/BAD01.MSG"
  KRX_COMMIT=0 FAIL_FROM=$1 FAIL_COUNT=$2 LD_PRELOAD=$spool/failing_new.so timeout 60 \
    "$krxhost" run --once --config "$spool/krx.ini" >"$spool/output" 2>&1
  grep -q '^no memory$' "$spool/output" || return
  for name in PLAIN01 BAD01; do
    remains $name || fail "allocation $1 and $(($2 - 1)) more fail: $name is lost: $(cat "$spool/output")"
  done
}
configure
if [[ $(nm -D "$krxhost") != *__asan* ]]; then
  for count in 1 4; do
    call=1
    while fail_at $call $count; do call=$((call + count)); done
    [ "$call" -gt 100 ] || fail "no more than $call allocations could fail"
  done
fi
finish
