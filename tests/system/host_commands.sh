#!/usr/bin/env bash
# krxhost show, list and send.
. "$(dirname "$0")/common.sh"

# show: the whole model of a sample pair, and nothing in the spool changes.
cp "$source"/examples/spool/MIXED01.* "$spool/in/"
expect_status 0 "$krxhost" show --json --domain example.org --container Mail "$spool/in/MIXED01.RCP"
diff "$source/tests/system/MIXED01.json" "$spool/output" || fail "show --json changed"
expect_files "$spool/in" MIXED01.MSG MIXED01.RCP
expect_status 0 "$krxhost" show "$spool/in/MIXED01.RCP"
expect_output 'Message Subject " Picture and contract"'
put "$spool/in" LATIN $'Subject: caf\xe9\n\nx\n.'
expect_status 0 "$krxhost" show --json "$spool/in/LATIN.RCP"
expect_output 'caf\u00e9'
put "$spool/in" BAD "" $'Recipient: <postmaster>'
expect_status 65 "$krxhost" show --json "$spool/in/BAD.RCP"
expect_output '"status": 10132'
expect_output 'could not be loaded, status 10132'
rm "$spool/in/BAD.MSG"
expect_status 74 "$krxhost" show "$spool/in/BAD.RCP"
rm "$spool"/in/*

# list
configure
put "$spool/in" ONE "" $'Return-path: s@a\nRecipient: r1@b\nRecipient: r2@b'
printf 'Recipient: a@b\r\n' >"$spool/in/HALF.RCP"
expect_status 0 "$krxhost" list --config "$spool/krx.ini"
expect_output 'from <s@a> to <r1@b> <r2@b>'
expect_output '1 waiting'
expect_status 0 "$krxhost" list --json --config "$spool/krx.ini"
expect_output '"recipients": ['

# An envelope of more than a block, one in the other letter case, and one that talks to a terminal.
long=$(for i in $(seq 2000); do echo "Recipient: r$i@b"; done)
put "$spool/in" LONG "" "$long"
mv "$spool/in/ONE.RCP" "$spool/in/ONE.rcp"
mv "$spool/in/ONE.MSG" "$spool/in/ONE.msg"
put "$spool/in" ESC "" $'Return-path: a\e[2J%n@b\nRecipient: c@d'
for name in READONLY LINKED FIFO; do put "$spool/in" "$name"; done
chmod 444 "$spool/in/READONLY.RCP"
ln -sf "$spool/text" "$spool/in/LINKED.MSG"
rm "$spool/in/FIFO.RCP" && mkfifo "$spool/in/FIFO.RCP"
expect_status 0 "$krxhost" list --config "$spool/krx.ini"
expect_output ' <r2000@b>'
expect_output 'ONE.rcp'
expect_output 'from <a [2J%n@b> to <c@d>'
expect_output '3 waiting'

# What lacks its other half, with its age; of a name that only looks like a pair, both halves.
rm -f "$spool"/in/*
mkdir "$spool/in/QDXRECVR"
put "$spool/in" WHOLE
for lone in in/LEFT.MSG in/QDXRECVR/KEPT.MSG out/HALF.RCP in/FAKE.MSG in/.POINT.MSG in/README; do
  echo x >"$spool/$lone"
done
mkdir "$spool/in/FAKE.RCP"
touch -d '-1 hour' "$spool/in/LEFT.MSG"
expect_status 0 "$krxhost" list --incomplete --config "$spool/krx.ini"
grep -qE '^  LEFT.MSG +2 bytes +36[0-9]{2} s  without its envelope$' "$spool/output" || fail "$(cat "$spool/output")"
expect_output '2 incomplete'
grep -qE '^  HALF.RCP .* without its message file$' "$spool/output" || fail "$(cat "$spool/output")"
[ "$(grep -c ' s  without ' "$spool/output")" -eq 4 ] || fail "$(cat "$spool/output")"
expect_status 0 "$krxhost" list --incomplete --json --config "$spool/krx.ini"
for row in FAKE.MSG:envelope LEFT.MSG:envelope HALF.RCP:message KEPT.MSG:envelope; do
  tr -d ' \n' <"$spool/output" | grep -qE "\"name\":\"${row%:*}\",\"size\":2,\"age\":[0-9]+,\"lacks\":\"${row#*:}\"" ||
    fail "$row: $(cat "$spool/output")"
done
rm -rf "$spool"/in/* "$spool"/out/*

# send, and take it in again
printf 'Hello\n.\nlast' >"$spool/text"
printf '\x00\x01binary\r\n.\r\n' >"$spool/data.bin"
expect_status 0 "$krxhost" send --config "$spool/krx.ini" --post-office Main --from ann@a \
  --to bob@b --to carol@c --subject "A test" --body "$spool/text" --attach "$spool/data.bin"
mv "$spool"/out/* "$spool/in/"
pair=$(ls "$spool"/in/*.RCP)
expect_status 0 "$krxhost" show "$pair"
expect_output 'To address "bob@b", Message Subject " A test"'
expect_status 0 "$krxhost" show --json "$pair"
expect_output '\u0000\u0001binary\r\n.\r\n'
expect_output 'Hello\r\n.\r\nlast'
expect_status 64 "$krxhost" send --config "$spool/krx.ini" --post-office Main --from "<>" --to b@b
expect_status 78 "$krxhost" send --config "$spool/krx.ini" --post-office No --from a@a --to b@b

for file in missing in; do
  expect_status 74 "$krxhost" send --config "$spool/krx.ini" --post-office Main --from a@a --to b@b \
    --body "$spool/$file"
  [ "$file" = in ] && reason="Is a directory" || reason="No such file or directory"
  expect_output "$spool/$file cannot be read, $reason."
done
expect_files "$spool/out"
expect_status 0 "$krxhost" send --config "$spool/krx.ini" --post-office Main --from a@a --to b@b \
  --body <(echo from a pipe)
grep -q 'from a pipe' "$spool"/out/*.MSG || fail "a pipe as body"

# What is too large, for positions of 32 bits or for the memory that is allowed, leaves nothing behind;
# nor does a delivery that fails count as one.
rm "$spool"/out/*
truncate -s 1700M "$spool/base64"
truncate -s 3G "$spool/plain"
sending=("$krxhost" send --config "$spool/krx.ini" --post-office Main --from a@a --to b@b)
for option in "--attach $spool/base64" "--attach $spool/plain" "--body $spool/plain"; do
  expect_status 65 timeout 20 "${sending[@]}" $option
  expect_output "${option#* } is too large, a message holds at most 2147483647 bytes"
done
head -c 3000 /dev/zero >"$spool/small"
KRX_MAX_CONTENT=3000 expect_status 0 "${sending[@]}" --body "$spool/small"
rm "$spool"/out/*
for option in "--attach $spool/small" "--body -"; do
  KRX_MAX_CONTENT=2999 expect_status 65 "${sending[@]}" $option <"$spool/small"
  expect_output "is too large, status 10011."
done
expect_files "$spool/out"
configure "MustOpenAtStart = NO"
rmdir "$spool/out"
expect_status 74 "${sending[@]}"
expect_output "cannot be delivered, status"
mkdir "$spool/out"

# A half-written pair waits until it is complete; a host that polls ends when it is asked to.
rm -f "$spool"/in/* "$spool"/out/*
printf 'Message-ID: <LATE@x>\r\nRecipient: a@b\r\n' >"$spool/in/LATE.RCP"
configure "[Host]
PostOffice = Main
Poll = 1"
"$krxhost" run --config "$spool/krx.ini" >"$spool/run" 2>&1 &
host=$!
sleep 0.3
expect_files "$spool/out"
put "$spool" LATE
mv "$spool/LATE.MSG" "$spool/in/LATE.MSG"
for _ in $(seq 50); do [ -e "$spool/out/LATE.RCP" ] && break; sleep 0.1; done
kill -TERM "$host"
wait "$host" || fail "the host ended with $?"
grep -q 'fetched 1, delivered 1' "$spool/run" || fail "$(cat "$spool/run")"
expect_files "$spool/out" LATE.MSG LATE.RCP

# Asked to end, it does not drain a long queue first.
for i in $(seq 3000); do
  printf 'Return-path: s@a\r\nRecipient: a@b\r\n' >"$spool/in/Q$i.RCP"
  printf 'Subject: x\r\n\r\nx\r\n.\r\n' >"$spool/in/Q$i.MSG"
done
"$krxhost" run --config "$spool/krx.ini" >"$spool/run" 2>&1 &
host=$!
for _ in $(seq 500); do ls "$spool/out" | grep -q '^Q' && break; sleep 0.01; done
kill -TERM "$host"
wait "$host" || fail "the host ended with $?"
[ "$(ls "$spool"/in/Q*.RCP | wc -l)" -gt 0 ] || fail "the queue was drained first"
finish
