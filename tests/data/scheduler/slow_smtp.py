#!/usr/bin/python3
"""SMTP peer that takes its time over each message: it waits --delay seconds before it answers
the end of DATA, then records the message as msgNNNN.eml in --folder. Prints READY once it listens."""
import argparse
import asyncio
import os
import signal
import threading

from aiosmtpd.controller import Controller


class SlowRecorder:
    def __init__(self, folder, delay):
        self.folder = folder
        self.delay = delay
        self.count = 0

    async def handle_DATA(self, server, session, envelope):
        await asyncio.sleep(self.delay)
        self.count += 1
        path = os.path.join(self.folder, "msg%04d.eml" % self.count)
        with open(path + ".part", "wb") as out:
            out.write(envelope.original_content or b"")
        os.rename(path + ".part", path)
        return "250 OK"


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--port", type=int, required=True)
    parser.add_argument("--folder", required=True)
    parser.add_argument("--delay", type=float, default=0)
    args = parser.parse_args()
    controller = Controller(SlowRecorder(args.folder, args.delay), hostname="127.0.0.1", port=args.port)
    controller.start()
    print("READY", flush=True)
    stop = threading.Event()
    signal.signal(signal.SIGTERM, lambda *_: stop.set())
    signal.signal(signal.SIGINT, lambda *_: stop.set())
    stop.wait()
    controller.stop()


if __name__ == "__main__":
    main()
