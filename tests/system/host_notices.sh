#!/usr/bin/env bash
# Notices: krxhost run --prepend/--append and krxhost notify.
. "$(dirname "$0")/common.sh"
configure
printf 'To: %%To%%\nchecked %%SUBJECT%% %%NoSuch%%' >"$spool/before"
printf -- '-- \nsent by %%sender%%\n' >"$spool/after"
body_of() { sed '1,/^\r$/d' "$1" | tr -d '\r'; }

put "$spool/in" PLAIN $'To: Bob\nSubject: Hi\nDate: d\n\ntext\n.'
put "$spool/in" CODED $'MIME-Version: 1.0\nSubject: Hi\nDate: d\nContent-Type: text/plain\nContent-Transfer-Encoding: base64\n\nTWFu\n.'
put "$spool/in" HTML $'MIME-Version: 1.0\nSubject: Hi\nDate: d\nContent-Type: text/html\n\n<p>\n.'
put "$spool/in" LOOP $'Subject: %SUBJECT% %a%\nX-A: x\nA: %b%%b%\nB: %a%%a%\nDate: d\n\nx\n.'
expect_status 0 "$krxhost" run --once --config "$spool/krx.ini" \
  --prepend "$spool/before" --append "$spool/after"
expect_output "fetched 4, delivered 4, kept 0, failed 0"
[ "$(body_of "$spool/out/PLAIN.MSG")" = $'To: Bob\nchecked Hi %NoSuch%\ntext\n-- \nsent by s@a\n.' ] ||
  fail "$(cat "$spool/out/PLAIN.MSG")"

# A coded body is never mixed with a notice: it becomes a part of its own, still coded.
for pair in CODED HTML; do
  cp "$spool/out/$pair".* "$spool/"
  expect_status 0 "$krxhost" show --json "$spool/$pair.RCP"
  expect_output 'checked Hi'
  expect_output '"content": "'
done
expect_status 0 "$krxhost" show --json "$spool/CODED.RCP"
expect_output '"content": "Man"'
grep -q $'^Content-Transfer-Encoding: base64\r$' "$spool/CODED.MSG" || fail "the encoding is lost"
[ "$(grep -c '^Content-Type' "$spool/CODED.MSG")" -eq 3 ] || fail "$(cat "$spool/CODED.MSG")"

# The command does the same with one pair, which stays as it is.
mkdir "$spool/noted"
put "$spool" ONE $'Subject: Hi\nDate: d\n\ntext\n.'
expect_status 0 "$krxhost" notify --append "$spool/after" --out "$spool/noted" "$spool/ONE.RCP"
expect_files "$spool/noted" ONE.MSG ONE.RCP
[ "$(body_of "$spool/noted/ONE.MSG")" = $'text\n-- \nsent by s@a\n.' ] || fail "$(cat "$spool/noted/ONE.MSG")"
[ -e "$spool/ONE.MSG" ] || fail "the pair is gone"
expect_status 64 "$krxhost" notify --out "$spool/noted" "$spool/ONE.RCP"
expect_status 74 "$krxhost" notify --append "$spool/missing" --out "$spool/noted" "$spool/ONE.RCP"

# Without its template no mail is delivered, and none is lost.
put "$spool/in" PLAIN2
expect_status 0 "$krxhost" run --once --config "$spool/krx.ini" --append "$spool/missing"
expect_output "fetched 1, delivered 0, kept 1, failed 0"
expect_files "$spool/in/QDXRECVR" PLAIN2.MSG PLAIN2.RCP PLAIN2.txt
finish
