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

# Mail that can be neither delivered nor kept stays, and the program says so.
rm -f "$spool/in/.krxhost"
put "$spool/in" A "" "no envelope"
touch "$spool/in/QDXRECVR"
expect_status 74 "$krxhost" run --once --config "$spool/krx.ini"
expect_output 'Message A.RCP stays where it is'
expect_output 'fetched 1, delivered 0, kept 0, failed 1'
expect_files "$spool/in" A.MSG A.RCP QDXRECVR
KRX_MODULE=$spool/missing.so expect_status 69 "$krxhost" check --config "$spool/krx.ini"
finish
