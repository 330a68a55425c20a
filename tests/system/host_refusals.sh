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
