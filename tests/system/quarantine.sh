#!/usr/bin/env bash
# What cannot be loaded or delivered is kept with its reason, tried again a limited number of times,
# and never holds up the others.
. "$(dirname "$0")/common.sh"
configure "[Host]
Retries = 2
RetryPause = 0"
kept=$spool/in/QDXRECVR
run() { expect_status 0 "$krxhost" run --once --config "$spool/krx.ini"; }
tries() { sed -n 's/^Tries: //p' "$kept/$1.txt"; }

put "$spool/in" BAD "" "no envelope"
put "$spool/in" GOOD
run
expect_output "fetched 2, delivered 1, kept 1, failed 0"
expect_files "$kept" BAD.MSG BAD.RCP BAD.txt
grep -q '^Status: 11981$' "$kept/BAD.txt" || fail "$(cat "$kept/BAD.txt")"
expect_status 0 "$krxhost" list --config "$spool/krx.ini"
expect_output "kept after 1 tries, status 11981: it cannot be loaded"

# Two more tries, then it stays; the good ones flow.
for wanted in 2 3 3; do
  put "$spool/in" "GOOD$RANDOM"
  run
  [ "$(tries BAD)" -eq "$wanted" ] || fail "$(tries BAD) tries instead of $wanted"
done
expect_files "$spool/in" QDXRECVR

# By hand, once its cause is mended: it goes through, and its reason goes.
put "$kept" BAD
expect_status 0 "$krxhost" retry --config "$spool/krx.ini" --post-office Main BAD
expect_files "$kept" BAD.txt
run
expect_output "delivered 1, kept 0"
expect_files "$kept"
expect_files "$spool/out" BAD.MSG BAD.RCP $(cd "$spool/out" && ls GOOD*)
expect_status 69 "$krxhost" retry --config "$spool/krx.ini" --post-office Main BAD
expect_output "cannot be put back"

# Somebody else's files in the place of a reason neither hold up the host nor are written into.
rm -f "$kept"/*
echo precious >"$spool/precious"
put "$kept" HANG
mkfifo "$kept/HANG.txt"
put "$spool/in" BAD "" "no envelope"
ln -s "$spool/precious" "$kept/BAD.txt"
ln -s "$spool/precious" "$kept/BAD.txt~"
expect_status 0 timeout 20 "$krxhost" run --once --config "$spool/krx.ini"
expect_output "fetched 1, delivered 0, kept 1, failed 0"
expect_status 0 timeout 20 "$krxhost" list --config "$spool/krx.ini"
expect_output "HANG.RCP"
[ "$(cat "$spool/precious")" = precious ] || fail "a reason was written through a link"

# A name that is taken is not replaced.
rm -f "$kept"/*
put "$kept" SAME
put "$spool/in" SAME "Subject: another"
expect_status 69 "$krxhost" retry --config "$spool/krx.ini" --post-office Main SAME
expect_files "$kept" SAME.MSG SAME.RCP

# A move that was interrupted between its two files is finished.
rm -f "$spool"/in/*.* "$kept"/*
put "$kept" CUT
printf 'Status: 1\nReason: x\nTime: 0 ()\nTries: 1\nFile: %s\n' "$(stat -c '%d %i' "$kept/CUT.MSG")" >"$kept/CUT.txt"
mv "$kept/CUT.MSG" "$spool/in/"
run
expect_output "delivered 1, kept 0"
[ -e "$spool/out/CUT.RCP" ] || fail "the interrupted move is not finished"
# ... but a stranger's message file of the name is left alone.
put "$kept" CUT
rm "$kept/CUT.MSG"
printf 'Status: 1\nReason: x\nTime: 0 ()\nTries: 1\nFile: 1 1\n' >"$kept/CUT.txt"
echo stranger >"$spool/in/CUT.MSG"
run
expect_output "fetched 0"
[ "$(cat "$spool/in/CUT.MSG")" = stranger ] || fail "a stranger's file changed"
finish
