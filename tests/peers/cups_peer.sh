#!/bin/bash
# A private cupsd on 127.0.0.1:PORT with all its state under DIR and one printer, PeerPDFFile, that
# writes each job as a PDF to DIR/out/PeerPDFFile.pdf. Prints READY when lpadmin has made the printer,
# then runs until it gets SIGTERM, which also stops cupsd.
# Usage: cups_peer.sh DIR PORT (the folders above DIR must let the user lp pass: the filters run as lp)
set -u
dir=$1
port=$2
ppd=/usr/share/ppd/cupsfilters/Generic-PDF_Printer-PDF.ppd

for tool in /usr/sbin/cupsd /usr/sbin/lpadmin /usr/bin/lpstat; do
    [ -x "$tool" ] || { echo "missing $tool" >&2; exit 1; }
done
[ -f "$ppd" ] || { echo "missing $ppd" >&2; exit 1; }

mkdir -p "$dir"/{etc,state,cache,spool,tmp,log,run,out}
chmod 0755 "$dir" "$dir"/{etc,state,cache,run}
# The file: device and the filters run as lp.
chmod 0777 "$dir/out" "$dir/tmp"
chmod 0710 "$dir/spool"
chgrp lp "$dir/spool" 2>/dev/null
cp /etc/cups/raw.types /etc/cups/raw.convs "$dir/etc/"
if command -v runuser >/dev/null && ! runuser -u lp -- test -x "$dir/spool"; then
    echo "the user lp cannot reach $dir: jobs would fail in their filters" >&2
    exit 1
fi

cat >"$dir/etc/cups-files.conf" <<EOF
ServerRoot $dir/etc
StateDir $dir/state
CacheDir $dir/cache
RequestRoot $dir/spool
TempDir $dir/tmp
ErrorLog $dir/log/error_log
AccessLog $dir/log/access_log
PageLog $dir/log/page_log
Printcap $dir/run/printcap
FileDevice Yes
User lp
Group lp
SystemGroup root
EOF

cat >"$dir/etc/cupsd.conf" <<EOF
Listen 127.0.0.1:$port
LogLevel warn
Browsing No
WebInterface No
DefaultAuthType None
MaxJobs 0
PreserveJobHistory Yes
<Location />
  Order allow,deny
  Allow all
</Location>
<Policy default>
  <Limit All>
    Order deny,allow
  </Limit>
</Policy>
EOF

export CUPS_SERVER=127.0.0.1:$port
/usr/sbin/cupsd -f -c "$dir/etc/cupsd.conf" -s "$dir/etc/cups-files.conf" &
cupsd_pid=$!
trap 'kill $cupsd_pid 2>/dev/null; wait $cupsd_pid 2>/dev/null; exit 0' TERM INT

ready=no
for _ in $(seq 1 100); do
    if lpstat -r >/dev/null 2>&1; then ready=yes; break; fi
    kill -0 $cupsd_pid 2>/dev/null || break
    sleep 0.1
done
if [ $ready != yes ]; then
    echo "cupsd did not start" >&2
    cat "$dir/log/error_log" >&2 2>/dev/null
    kill $cupsd_pid 2>/dev/null
    exit 1
fi

# Right after start-up cupsd may still refuse the first admin connection: try a few times.
made=no
for _ in $(seq 1 30); do
    if lpadmin -p PeerPDFFile -E -v "file:$dir/out/PeerPDFFile.pdf" -P "$ppd" 2>"$dir/log/lpadmin"; then
        made=yes; break
    fi
    sleep 0.2
done
if [ $made != yes ]; then
    cat "$dir/log/lpadmin" >&2
    echo "lpadmin failed" >&2
    kill $cupsd_pid 2>/dev/null
    exit 1
fi
echo READY
wait $cupsd_pid
