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

# send, and take it in again
rm "$spool"/in/*
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
finish
