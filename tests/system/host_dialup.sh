#!/usr/bin/env bash
# A scheduled dial raises the line, runs the command, and wakes another post office's delivery; a real
# pppd's refusal is reported as a dial error with its text.
. "$(dirname "$0")/common.sh"
export KRX_PHONEBOOK=$spool/phonebook.ini KRX_REGISTRY=$spool/registry.db KRX_RUN_DIR=$spool/run
export KRX_RAS_LIBRARY=$build/lib/RASAPI32.so
mkdir -m 700 "$spool/run"
mkdir -p "$spool"/{line,far}/{in,out}
cat >"$spool/dial" <<EOF
#!/bin/sh
echo "\$*" >>$spool/calls
cat <&3 >$spool/password
sleep 60 3<&- >/dev/null 2>&1 &
echo \$! >$spool/link.pid
EOF
chmod +x "$spool/dial"
trap 'kill $(cat "$spool/link.pid" 2>/dev/null) 2>/dev/null; chmod -R u+w "$spool"; rm -rf "$spool"' EXIT
cat >"$spool/phonebook.ini" <<EOF
[isp]
Command = $spool/dial %e %u
PidFile = $spool/link.pid
EOF
profile() { # the schedule
  cat >"$spool/krx.ini" <<EOF
[Host]
PostOffice = Far
PostOffice = Line
Poll = ${poll:-1}
[Line]
SourceDir = $spool/line/in
DestDir = $spool/line/out
MailDomain = here
ContainerClass = Class
RasPhoneBookEntry = isp
RasUserName = user
RasPassword = s3cret
RasSchedule = $1
RasRetryCount = 1
RasRetryDelay = 1
RasCommand = "touch $spool/connected"
[Far]
SourceDir = $spool/far/in
DestDir = $spool/far/out
MailDomain = here
ContainerClass = Class
EOF
}

# A wrong schedule is a configuration error.
profile "25:00"
expect_status 78 "$krxhost" check --config "$spool/krx.ini"
expect_output 'Error in configuration section Line, entry "RasSchedule" is not valid, status 11917.'
profile "+00:00:04"
sed -i 's/RasPhoneBookEntry = isp/RasPhoneBookEntry = nobody/' "$spool/krx.ini"
expect_status 78 "$krxhost" check --config "$spool/krx.ini"
expect_output 'Error in configuration section Line,Phonebook entry "nobody" does not exist.'
KRX_RAS_LIBRARY=$spool/missing.so expect_status 78 "$krxhost" check --config "$spool/krx.ini"
expect_output 'Failed to link to the RAS API, is it installed?'
expect_output "RASAPI32.DLL cannot be loaded, $spool/missing.so: cannot open shared object file"

# One host polls rarely; the dial of another's post office wakes it.
only() { sed -i "/^PostOffice = /d; s/^\[Host\]/[Host]\nPostOffice = $1/" "$spool/krx.ini"; }
place=()
start() { # LOG: a polling host over the profile as it stands, in the place that is set
  cp "$spool/krx.ini" "$spool/$1.ini"
  "${place[@]}" "$krxhost" run --config "$spool/$1.ini" >"$spool/$1.log" 2>&1 &
}
wait_for() { # FILE
  for _ in $(seq 100); do
    [ -e "$1" ] && return
    sleep 0.1
  done
  fail "$1 did not come: $(cat "$spool"/*.log)"
}
poll=60 profile "+10:00"
only Far
start far
far=$!
sleep 1
put "$spool/far" WAKE
mv "$spool/far/WAKE.MSG" "$spool/far/WAKE.RCP" "$spool/far/in/"
poll=1 profile "+00:00:01"
only Line
start line
line=$!
wait_for "$spool/far/out/WAKE.RCP"
wait_for "$spool/connected"
[ "$(cat "$spool/calls")" = "isp user" ] || fail "calls: $(cat "$spool/calls")"
[ "$(cat "$spool/password")" = "s3cret" ] || fail "the password did not arrive"
grep -rq s3cret "$spool"/*.log && fail "the password is in a log"
tr '\0' ' ' </proc/"$line"/cmdline | grep -q s3cret && fail "the password is in the process list"
kill -TERM "$far" "$line"
wait "$far" || fail "the host ended with $?"
wait "$line" || fail "the host ended with $?"

# Debian's pppd as the dialler that a site gets by default: what it says is a dial error. With a peer
# of its own, where that can be had in private, it comes as far as a kernel without PPP lets it.
words=.
if unshare -m mount -t tmpfs none /etc/ppp/peers 2>/dev/null; then
  place=(unshare -m sh -c 'mount -t tmpfs none /etc/ppp/peers &&
    printf "noauth\n/dev/null\n" >/etc/ppp/peers/isp && exec "$@"' sh)
  [ -e /dev/ppp ] || words=/dev/ppp
fi
if command -v pppd >/dev/null; then
  kill "$(cat "$spool/link.pid")"
  printf '[isp]\nPidFile = %s/none.pid\n' "$spool" >"$spool/phonebook.ini"
  rm "$spool/connected"
  start pppd
  pppd=$!
  for _ in $(seq 60); do
    grep -q "Line:Error in initiating RAS dial up connection RasError [^:]*: .*$words" "$spool/pppd.log" && break
    sleep 0.1
  done
  grep "RasError [^:]*: .*$words" "$spool/pppd.log" || fail "no dial error: $(cat "$spool/pppd.log")"
  grep -q s3cret "$spool/pppd.log" && fail "the password is in the log"
  [ -e "$spool/connected" ] && fail "the command ran without a line"
  kill -TERM "$pppd"
  wait "$pppd" || fail "the host ended with $?"
fi
finish
