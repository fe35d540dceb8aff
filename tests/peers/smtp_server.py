#!/usr/bin/python3
"""SMTP peer for the mail client's tests: records each message it accepts into a folder.

Prints READY once it listens. Options choose the behaviour under test: AUTH LOGIN with
"Username:"/"Password:" prompts, RCPT refused with 550, the connection closed during DATA,
a server that never answers, one that takes --delay seconds to accept each message, one that sends
the last line of its EHLO reply --slow-hello seconds after the others, STARTTLS or implicit TLS with a
given certificate.
"""
import argparse
import asyncio
import json
import logging
import os
import signal
import socket
import ssl
import sys
import threading

from aiosmtpd.controller import Controller
from aiosmtpd.smtp import SMTP, AuthResult


class PeerSMTP(SMTP):
    AuthLoginUsernameChallenge = "Username:"
    AuthLoginPasswordChallenge = "Password:"
    close_in_data = False
    slow_hello = 0

    async def push(self, status):
        # The last line of the EHLO reply is held back until the next reply or --slow-hello seconds:
        # a client that answers the AUTH offer before the reply has ended gets that line and the
        # login prompt in one piece.
        held = getattr(self, "held_line", None)
        if self.slow_hello and status == "250 HELP":
            self.held_line = status
            self.release = asyncio.get_running_loop().call_later(
                self.slow_hello, lambda: asyncio.ensure_future(self.release_held()))
            return
        if held:
            self.release.cancel()
            self.held_line = None
            status = held + "\r\n" + status
        await super().push(status)

    async def release_held(self):
        held, self.held_line = getattr(self, "held_line", None), None
        if held:
            await SMTP.push(self, held)

    async def smtp_AUTH(self, arg):
        # Mechanism names are case-insensitive: the client under test says "AUTH Login".
        words = arg.split(None, 1) if arg else []
        if words:
            words[0] = words[0].upper()
        return await super().smtp_AUTH(" ".join(words))

    smtp_AUTH.__dict__.update(SMTP.smtp_AUTH.__dict__)

    async def smtp_DATA(self, arg):
        if not self.close_in_data or not self.envelope.rcpt_tos:
            return await super().smtp_DATA(arg)
        await self.push("354 End data with <CR><LF>.<CR><LF>")
        await self._reader.readuntil(b"\r\n")
        self.transport.close()


class Transcript(logging.Handler):
    """Collects the command lines of each client, as the server's log reports them."""

    def __init__(self):
        super().__init__(logging.INFO)
        self.lines = {}

    def emit(self, record):
        if record.msg == "%r >> %r":
            peer, line = record.args
            text = line.decode("latin-1") if isinstance(line, bytes) else str(line)
            self.lines.setdefault(peer, []).append(text)


TRANSCRIPT = Transcript()
logging.getLogger("mail.log").setLevel(logging.INFO)
logging.getLogger("mail.log").addHandler(TRANSCRIPT)


class Recorder:
    def __init__(self, folder, refuse_rcpt, delay):
        self.folder = folder
        self.refuse_rcpt = refuse_rcpt
        self.delay = delay
        self.count = 0

    async def handle_RCPT(self, server, session, envelope, address, rcpt_options):
        if self.refuse_rcpt:
            return "550 5.1.1 <%s>: Recipient address rejected" % address
        envelope.rcpt_tos.append(address)
        return "250 OK"

    async def handle_DATA(self, server, session, envelope):
        if self.delay:
            await asyncio.sleep(self.delay)
        self.count += 1
        base = os.path.join(self.folder, "msg%04d" % self.count)
        envelope_info = {
            "mail_from": envelope.mail_from,
            "rcpt_tos": envelope.rcpt_tos,
            "helo": session.host_name,
            "login": login_of(session),
            "commands": TRANSCRIPT.lines.get(session.peer, []),
            "tls": server.transport.get_extra_info("ssl_object") is not None,
        }
        write_atomically(base + ".json", json.dumps(envelope_info).encode())
        write_atomically(base + ".eml", envelope.original_content)
        return "250 Message accepted for delivery"


def login_of(session):
    login = getattr(session.auth_data, "login", None)
    return login.decode() if isinstance(login, bytes) else login


def write_atomically(path, data):
    with open(path + ".part", "wb") as f:
        f.write(data)
    os.rename(path + ".part", path)


class PeerController(Controller):
    def factory(self):
        return PeerSMTP(self.handler, **self.SMTP_kwargs)


def make_context(cert, key):
    context = ssl.create_default_context(ssl.Purpose.CLIENT_AUTH)
    context.load_cert_chain(cert, key)
    return context


def silent_server(port):
    listener = socket.socket(socket.AF_INET, socket.SOCK_STREAM)
    listener.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEADDR, 1)
    listener.bind(("127.0.0.1", port))
    listener.listen(5)
    held = []

    def accept():
        while True:
            connection, _ = listener.accept()
            held.append(connection)

    threading.Thread(target=accept, daemon=True).start()


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--port", type=int, required=True)
    parser.add_argument("--folder", required=True)
    parser.add_argument("--user")
    parser.add_argument("--password")
    parser.add_argument("--refuse-rcpt", action="store_true")
    parser.add_argument("--close-in-data", action="store_true")
    parser.add_argument("--silent", action="store_true")
    parser.add_argument("--delay", type=float, default=0)
    parser.add_argument("--slow-hello", type=float, default=0)
    parser.add_argument("--starttls", nargs=2, metavar=("CERT", "KEY"))
    parser.add_argument("--tls", nargs=2, metavar=("CERT", "KEY"))
    args = parser.parse_args()

    if args.silent:
        silent_server(args.port)
    else:
        def authenticate(server, session, envelope, mechanism, auth_data):
            ok = auth_data.login.decode() == args.user and auth_data.password.decode() == args.password
            return AuthResult(success=ok, handled=False, auth_data=auth_data)

        kwargs = {}
        if args.user is not None:
            kwargs.update(authenticator=authenticate, auth_require_tls=False,
                          auth_exclude_mechanism=["PLAIN"])
        if args.starttls:
            kwargs.update(tls_context=make_context(*args.starttls))
        ssl_context = make_context(*args.tls) if args.tls else None
        PeerSMTP.close_in_data = args.close_in_data
        PeerSMTP.slow_hello = args.slow_hello
        controller = PeerController(Recorder(args.folder, args.refuse_rcpt, args.delay), hostname="127.0.0.1",
                                    port=args.port, ssl_context=ssl_context, **kwargs)
        controller.start()

    print("READY", flush=True)
    stop = threading.Event()
    signal.signal(signal.SIGTERM, lambda *_: stop.set())
    signal.signal(signal.SIGINT, lambda *_: stop.set())
    while not stop.wait(0.2):
        pass
    sys.exit(0)


if __name__ == "__main__":
    main()
