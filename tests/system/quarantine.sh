#!/usr/bin/env bash
# What cannot be loaded or delivered is kept with its reason, tried again a limited number of times,
# and never holds up the others.
. "$(dirname "$0")/common.sh"
retry_pause() { # SECONDS
  configure "[Host]
Retries = 2
RetryPause = $1"
}
retry_pause 0
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
rm "$spool/in/SAME.RCP"
expect_status 69 "$krxhost" retry --config "$spool/krx.ini" --post-office Main SAME
grep -q another "$spool/in/SAME.MSG" || fail "a message file without its envelope was replaced"
expect_files "$kept" SAME.MSG SAME.RCP
# Nor does anything move in a directory that somebody else has locked.
rm "$spool/in/SAME.MSG"
expect_status 69 flock "$spool/in" "$krxhost" retry --config "$spool/krx.ini" --post-office Main SAME
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

# Whoever has the name of a pair that is to be kept, each mail is kept once, whole and apart: of mails
# that differ in the envelope alone, behind a long common beginning, or in nothing, and beside names
# that are no files.
rm -rf "$spool"/in/*
retry_pause 1000
text=$'Subject: x\n\n'$(yes line | head -n 20000)
tests=("x;to one" "x;to two" "$text.a;to one" "$text.b;to one" "x;to one")
for test in "${tests[@]}"; do
  put "$spool/in" EQ "${test%;*}" "${test##*;}"
  run
  [ ! -e "$spool/in/EQ.RCP" ] || fail "EQ stays"
done
for test in "${tests[@]::4}"; do
  put "$spool" EQ "${test%;*}" "${test##*;}"
  matching=0
  for envelope in "$kept"/EQ*.RCP; do
    cmp -s "$spool/EQ.RCP" "$envelope" && cmp -s "$spool/EQ.MSG" "${envelope%.RCP}.MSG" &&
      matching=$((matching + 1))
  done
  [ "$matching" -eq 1 ] || fail "$matching copies of a mail to ${test##*;}: $(ls "$kept")"
done
mkdir "$kept/DIR.RCP"
ln -s "$spool/precious" "$kept/LINK.MSG"
ln -s "$spool/precious" "$kept/LINK.RCP"
ln -s "$spool/nowhere" "$kept/LOST.MSG"
mkfifo "$kept/FIFO.MSG"
for name in DIR LINK LOST FIFO; do put "$spool/in" $name "" "no envelope"; done
run
expect_files "$kept" DIR.RCP {DIR,LINK,LOST,FIFO}-1.{MSG,RCP,txt} {LOST,FIFO}.MSG LINK.{MSG,RCP} \
  {EQ,EQ-1,EQ-2,EQ-3}.{MSG,RCP,txt}

# A pause is waited for from the last failure on; a time that cannot be makes nobody wait.
rm -rf "$spool"/in/*
put "$spool/in" BAD "" "no envelope"
for wanted in 1 1; do run && [ "$(tries BAD)" -eq "$wanted" ] || fail "$(tries BAD) tries"; done
reason() { printf 'Status: 1\nReason: x\nTime: %s ()\nTries: 1\n' "$1" >"$kept/BAD.txt"; }
for time in 5 -9223372036854775808 9223372036854775807 "$(date -d '+1 day' +%s)"; do
  reason "$time"
  for wanted in 2 2; do
    run
    [ "$(tries BAD)" -eq "$wanted" ] || fail "$(tries BAD) tries after the time $time"
  done
done

# A try that cannot be counted is not made.
retry_pause 0
reason 0
mkdir "$kept/BAD.txt~"
run
expect_output "fetched 0,"
expect_output "BAD.txt cannot be written, Is a directory: its pair is not put back."
expect_status 69 "$krxhost" retry --config "$spool/krx.ini" --post-office Main BAD
expect_files "$kept" BAD.{MSG,RCP,txt} BAD.txt~

# A name too long for the receiver directory, or for a number behind it, is kept under a short one and
# comes back under its own; one that no path holds hides nobody.
rm -rf "$spool"/in/*
long() { # LENGTH CHARACTER: of a name whose path in the source directory has that length
  printf "%$(($1 - ${#spool} - 8))s" "" | tr ' ' "$2"
}
names=("$(long 257 L)" "$(long 257 L | sed 's/.$/M/')" "$(long 249 N)")
mkdir "$kept"
put "$kept" "${names[2]}" "Subject: an earlier one"
for name in "${names[@]}"; do put "$spool/in" "$name" "" "no envelope"; done
put "$spool/in" GOOD
run
expect_output "fetched 4, delivered 1, kept 3, failed 0"
expect_files "$spool/in" QDXRECVR
[ "$(ls "$kept"/*.txt | wc -l)" -eq 3 ] || fail "$(ls "$kept")"
ls "$kept"/L*-1.txt 2>/dev/null && fail "two long names have one short name"
for name in "${names[@]}"; do grep -q "^Name: $name$" "$kept"/*.txt || fail "no reason names $name"; done
put "$kept" "$(printf '%240s' "" | tr ' ' X)"
run
expect_output "fetched 3, delivered 0, kept 3, failed 0"
[ "$(cat "$kept"/*.txt | grep -c '^Tries: 2$')" -eq 3 ] || fail "$(cat "$kept"/*.txt)"
mv "$kept" "$spool/mended"
mkdir "$kept"
for reason in "$spool"/mended/*.txt; do
  cp "$reason" "$kept/"
  put "$kept" "$(basename "$reason" .txt)"
done
run
expect_output "fetched 3, delivered 3, kept 0, failed 0"
expect_files "$kept"
for name in "${names[@]}"; do [ -e "$spool/out/$name.RCP" ] || fail "$name is not delivered"; done
put "$kept" TRAVELS
printf 'Status: 1\nReason: x\nTime: 0 ()\nTries: 1\nName: ../out/TRAVELS\n' >"$kept/TRAVELS.txt"
run
expect_output "fetched 1, delivered 1"

# Through a link no mail leaves the spool, and none comes into it.
rm -rf "$spool"/in/* "$spool"/out/* "$spool/mended" "$spool/elsewhere"
mkdir "$spool/elsewhere"
ln -s "$spool/elsewhere" "$kept"
put "$spool/in" BAD "" "no envelope"
expect_status 74 "$krxhost" run --once --config "$spool/krx.ini"
expect_output "is a link or no directory"
expect_files "$spool/elsewhere"
expect_files "$spool/in" BAD.MSG BAD.RCP QDXRECVR
rm "$spool"/in/BAD.*
put "$spool/elsewhere" OTHER
printf 'Status: 1\nReason: x\nTime: 0 ()\nTries: 1\n' | tee "$spool/elsewhere/LONE.txt" >"$spool/elsewhere/OTHER.txt"
put "$spool/in" LONE
run
expect_output "fetched 1, delivered 1"
expect_status 69 "$krxhost" retry --config "$spool/krx.ini" --post-office Main OTHER
for option in "" --incomplete; do
  echo x >"$spool/elsewhere/HALF.MSG"
  expect_status 0 "$krxhost" list $option --config "$spool/krx.ini"
  grep -qE 'OTHER|HALF' "$spool/output" && fail "$(cat "$spool/output")"
done
expect_files "$spool/elsewhere" OTHER.{MSG,RCP,txt} LONE.txt HALF.MSG
# What a crash finds is never an envelope without its message: of a copy beside an earlier one the
# message file comes first, and each is on the disk before the next; a pair is put back in that order.
if strace -o /dev/null true 2>/dev/null; then
  traced() { # CALLS: runs, and prints calls and the last parts of their paths
    ASAN_OPTIONS=detect_leaks=0 expect_status 0 strace -y -o "$spool/trace" -e "trace=$1" "$krxhost" run --once \
      --config "$spool/krx.ini"
    sed -nE 's/^([a-z0-9]+)\(.*\/(in\/|QDXRECVR\/)?((TWO-1|TWO)\.(MSG|RCP)|QDXRECVR)\/?[>"].*/\1 \3/p' "$spool/trace"
  }
  rm -rf "$spool"/in/*
  retry_pause 1000
  mkdir "$kept"
  put "$kept" TWO "Subject: an earlier one"
  put "$spool/in" TWO "" "no envelope"
  order=$(traced fsync | tr '\n' ';')
  [[ $order == *"fsync TWO-1.MSG;fsync TWO-1.RCP;fsync QDXRECVR;"* ]] || fail "the commits of a copy: $order"
  rm "$kept"/TWO.*
  retry_pause 0
  order=$(traced renameat2 | tr '\n' ';')
  [[ $order == *TWO*.MSG*TWO*.RCP* ]] || fail "the order of putting back: $order"
fi

finish
