#!/usr/bin/env bash
# What krxhost refuses, with which exit status and words.
. "$(dirname "$0")/common.sh"

expect_status 64 "$krxhost"
expect_status 64 "$krxhost" run
expect_status 64 "$krxhost" show x.txt
expect_status 0 "$krxhost" --version
expect_status 78 "$krxhost" check --config "$spool/missing.ini"
expect_output "cannot be read, status 1822"

configure
expect_status 0 "$krxhost" check --config "$spool/krx.ini"
expect_output 'SourceDir of post office "Main": files in use are told by leases.'
expect_files "$spool/in"
chmod o+w "$spool/in"
chmod 1777 "$spool/out"
expect_status 0 "$krxhost" check --config "$spool/krx.ini"
expect_output "SourceDir of post office \"Main\", $spool/in, can be written by everybody, and has no sticky bit"
expect_output "DestDir of post office \"Main\", $spool/out, can be written by everybody, but has the sticky bit"
chmod 750 "$spool/in" "$spool/out"
if strace -o /dev/null true 2>/dev/null; then
  ASAN_OPTIONS=detect_leaks=0 expect_status 0 strace -o /dev/null -e inject=fcntl:error=ENOLCK \
    "$krxhost" check --config "$spool/krx.ini"
  expect_output 'told by locks and age, for leases do not work there, No locks available.'
fi
configure "Foo = bar"
expect_status 78 "$krxhost" check --config "$spool/krx.ini"
expect_output 'Error in configuration section Main, unrecognised configuration directive "Foo".'
configure "[Host]
PostOffice = Main
Pol = 5"
expect_status 78 "$krxhost" run --once --config "$spool/krx.ini"
expect_output 'krx.ini:8: section [Host], entry "Pol" is not known.'
configure "[Host]
PostOffice = Main
Route = Main, Nowhere"
expect_status 78 "$krxhost" run --once --config "$spool/krx.ini"
expect_output 'a route names "Nowhere"'
while IFS='|' read -r entry words; do
  configure "[Host]
PostOffice = Main
$entry"
  expect_status 78 "$krxhost" run --once --config "$spool/krx.ini"
  expect_output "$words"
done <<'END'
Retries = three|krx.ini:8: section [Host], entry "Retries" is not a number.
Log = Nowhere|The log section "Nowhere" cannot be used
END
configure "[Host]
PostOffice = Main
Route = Main, Main
Route = Main, Main"
expect_status 78 "$krxhost" run --once --config "$spool/krx.ini"
expect_output 'krx.ini:9: section [Host], entry "Route" has a second route for the same post office.'
# A post office without a section has no directories, least of all that at the root.
configure "[Host]
PostOffice = Main
PostOffice = Ghost"
for command in "run --once" check list "list --incomplete --json" "retry --post-office Ghost X"; do
  expect_status 78 "$krxhost" $command --config "$spool/krx.ini"
  expect_output 'Error in configuration section Ghost, there is no such section.'
done

# Mail that would go round.
configure
sed -i "s|DestDir = .*|DestDir = $spool/in/|" "$spool/krx.ini"
expect_status 78 "$krxhost" check --config "$spool/krx.ini"
expect_output 'ring: "Main" -> "Main"'
ln -s "$spool/out" "$spool/alias"
configure "[Other]
SourceDir = $spool/alias
DestDir = $spool/in
MailDomain = here
ContainerClass = Class"
expect_status 78 "$krxhost" run --once --config "$spool/krx.ini"
expect_output 'ring: "Main" -> "Other" -> "Main"'

# A second consumer.
configure
mkfifo "$spool/ready"
flock --close "$spool/in" true
( exec 9>>"$spool/in/.krxhost"; flock 9; echo 4711 >&9; echo >"$spool/ready"; sleep 30 ) &
holder=$!
read -r <"$spool/ready"
expect_status 69 "$krxhost" run --once --config "$spool/krx.ini"
expect_output 'in use by process 4711'
kill "$holder" 2>/dev/null
wait "$holder" 2>/dev/null
sleep 0.1
pkill -P "$holder" 2>/dev/null

# A host that polls holds its source directories: one that is there, one whose lock file is removed, and
# one that comes later; none that another process holds is fetched from.
configure "MustOpenAtStart = NO
[Late]
SourceDir = $spool/late
DestDir = $spool/out
MailDomain = here
ContainerClass = Class
MustOpenAtStart = NO
[Host]
PostOffice = Main
PostOffice = Late
Poll = 1"
start() { # LOG
  "$krxhost" run --config "$spool/krx.ini" >"$spool/$1" 2>&1 &
  host=$!
}
await() { # COMMAND...
  for _ in $(seq 100); do
    "$@" 2>/dev/null && return
    sleep 0.1
  done
  fail "$* does not come true: $(tail -n 3 "$spool"/first "$spool"/second 2>&1)"
}
is_ours() { [ "$(cat "$spool/$1/.krxhost" 2>/dev/null)" = "$host" ]; }
start first
await is_ours in
expect_status 69 "$krxhost" run --once --config "$spool/krx.ini"
expect_output "in use by process $host"
rm "$spool/in/.krxhost"
await is_ours in
mkdir "$spool/late.new"
put "$spool/late.new" LATE
mv "$spool/late.new" "$spool/late"
await is_ours late
await test -e "$spool/out/LATE.RCP"
expect_status 69 "$krxhost" run --once --config "$spool/krx.ini"
kill -TERM "$host"
wait "$host" || fail "the host ended with $?"
rm -rf "$spool/late"
start second
await grep -q 'post office "Late": it is not there' "$spool/second"
mkdir "$spool/late.new"
put "$spool/late.new" HELD
touch "$spool/late.new/.krxhost"
exec 8<"$spool/late.new/.krxhost"
flock 8
mv "$spool/late.new" "$spool/late"
await grep -q 'post office "Late" is in use by another process' "$spool/second"
kill -TERM "$host" 2>/dev/null
ended=0
wait "$host" || ended=$?
[ "$ended" -eq 69 ] || fail "the host ended with $ended"
exec 8<&-
expect_files "$spool/late" HELD.MSG HELD.RCP
rm -rf "$spool"/out/*
configure

# A link where the lock should be leads nowhere.
echo precious >"$spool/precious"
ln -sf "$spool/precious" "$spool/in/.krxhost"
expect_status 74 "$krxhost" run --once --config "$spool/krx.ini"
expect_output 'Too many levels of symbolic links'
[ "$(cat "$spool/precious")" = precious ] || fail "the lock was written through a link"

# Mail that can be neither delivered nor kept stays, and the program says so.
rm -f "$spool/in/.krxhost"
put "$spool/in" A "" "no envelope"
touch "$spool/in/QDXRECVR"
expect_status 74 "$krxhost" run --once --config "$spool/krx.ini"
expect_output 'Message A.RCP stays where it is'
expect_output 'fetched 1, delivered 0, kept 0, failed 1'
expect_files "$spool/in" A.MSG A.RCP QDXRECVR
KRX_MODULE=$spool/missing.so expect_status 69 "$krxhost" check --config "$spool/krx.ini"
expect_output "cannot be loaded, $spool/missing.so: cannot open shared object file: No such file or directory."
echo "no library" >"$spool/broken.so"
KRX_MODULE=$spool/broken.so expect_status 69 "$krxhost" check --config "$spool/krx.ini"
expect_output "broken.so: file too short."
KRX_MODULE=$build/lib/RASAPI32.so expect_status 69 "$krxhost" check --config "$spool/krx.ini"
expect_output "RASAPI32.so has no KRX_GetMailAccessObject."
finish
