#!/usr/bin/python3
"""POP3 peer: dovecot with everything in one folder, one user with a plain password.

Usage: pop3_server.py FOLDER PORT USER PASSWORD. Prints READY once the "+OK" greeting comes,
stops dovecot on SIGTERM.
"""
import grp
import os
import shutil
import signal
import socket
import subprocess
import sys
import time

CONFIG = """base_dir = {folder}/run
state_dir = {folder}/state
log_path = {folder}/dovecot.log
protocols = pop3
listen = 127.0.0.1
ssl = no
disable_plaintext_auth = no
auth_failure_delay = 0
auth_mechanisms = plain
passdb {{
  driver = passwd-file
  args = scheme=PLAIN {folder}/passwd
}}
userdb {{
  driver = static
  args = uid=65534 gid=65534 home={folder}/home/%u
}}
mail_location = maildir:{folder}/home/%u/Maildir
service pop3-login {{
  inet_listener pop3 {{
    address = 127.0.0.1
    port = {port}
  }}
  inet_listener pop3s {{
    port = 0
  }}
}}
service anvil {{
  unix_listener anvil-auth-penalty {{
    mode = 0
  }}
}}
"""


def prepare(folder, port, user, password):
    os.chmod(folder, 0o755)
    shutil.rmtree(os.path.join(folder, "run"), ignore_errors=True)
    for sub in ("run", "state", "home"):
        os.makedirs(os.path.join(folder, sub), exist_ok=True)
    home = os.path.join(folder, "home", user, "Maildir")
    for sub in ("cur", "new", "tmp"):
        os.makedirs(os.path.join(home, sub), exist_ok=True)
    for root, dirs, _ in os.walk(os.path.join(folder, "home")):
        os.chown(root, 65534, 65534)
        for d in dirs:
            os.chown(os.path.join(root, d), 65534, 65534)
    passwd = os.path.join(folder, "passwd")
    with open(passwd, "w") as f:
        f.write("%s:{PLAIN}%s\n" % (user, password))
    os.chown(passwd, 0, grp.getgrnam("dovecot").gr_gid)
    os.chmod(passwd, 0o640)
    config = os.path.join(folder, "dovecot.conf")
    with open(config, "w") as f:
        f.write(CONFIG.format(folder=folder, port=port))
    return config


def greeted(port):
    try:
        with socket.create_connection(("127.0.0.1", port), timeout=0.5) as s:
            return s.recv(64).startswith(b"+OK")
    except OSError:
        return False


def main():
    folder, port, user, password = sys.argv[1], int(sys.argv[2]), sys.argv[3], sys.argv[4]
    config = prepare(os.path.abspath(folder), port, user, password)
    dovecot = subprocess.Popen(["/usr/sbin/dovecot", "-F", "-c", config])
    for _ in range(100):
        if greeted(port):
            break
        if dovecot.poll() is not None:
            sys.exit("dovecot ended with %d" % dovecot.returncode)
        time.sleep(0.1)
    else:
        dovecot.terminate()
        sys.exit("dovecot did not greet")
    print("READY", flush=True)
    signal.signal(signal.SIGTERM, lambda *_: None)
    signal.sigwait({signal.SIGTERM, signal.SIGINT})
    dovecot.terminate()
    try:
        dovecot.wait(5)
    except subprocess.TimeoutExpired:
        dovecot.kill()


if __name__ == "__main__":
    main()
