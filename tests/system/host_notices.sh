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

# Nor is a body whose encoding is of another kind, unknown, or in no order; what stands as it is may be
# named in any case and with comments.
mime=$'MIME-Version: 1.0\nSubject: Hi\nDate: d\nContent-Type: text/plain\nContent-Transfer-Encoding: '
number=0
while read -r kind encoding; do
  number=$((number + 1))
  put "$spool/in" "E$number" "$mime$encoding"$'\n\nTWFu=\n.'
  expect_status 0 "$krxhost" run --once --config "$spool/krx.ini" --append "$spool/after"
  mixed=parts
  [ "$(body_of "$spool/out/E$number.MSG")" = $'TWFu=\n-- \nsent by s@a\n.' ] && mixed=mixed
  [ "$mixed" = "$kind" ] || fail "$encoding: $(cat "$spool/out/E$number.MSG")"
  grep -qF "Content-Transfer-Encoding: $encoding" "$spool/out/E$number.MSG" || fail "$encoding is lost"
done <<'END'
parts quoted-printable
parts x-uuencode
parts base64;
parts 7bit base64
mixed 7BIT
mixed (as) 8bit (it stands)
mixed Binary
END
put "$spool/in" PART $'MIME-Version: 1.0\nSubject: Hi\nDate: d\nContent-Type: multipart/mixed; boundary=b\n\n--b\nContent-Type: text/plain\nContent-Transfer-Encoding: x-uuencode\n\nTWFu\n--b--\n.'
expect_status 0 "$krxhost" run --once --config "$spool/krx.ini" --append "$spool/after"
tr -d '\r' <"$spool/out/PART.MSG" | grep -A1 '^TWFu$' | grep -q '^--[^ ]' || fail "$(cat "$spool/out/PART.MSG")"

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
