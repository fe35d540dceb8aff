#!/usr/bin/python3
"""Sends COUNT messages with a body of SIZE bytes to 127.0.0.1:PORT with smtplib, one connection
each, and prints the messages per second."""
import smtplib
import sys
import time


def main():
    port, count, size = int(sys.argv[1]), int(sys.argv[2]), int(sys.argv[3])
    line = "0123456789" * 7 + "abcdef"
    body = "\r\n".join([line] * (size // (len(line) + 2)))
    message = ("From: \"reports@example.com\" <reports@example.com>\r\nTo: \"boss@example.com\" <boss@example.com>\r\n"
               "Subject: Benchmark\r\nMIME-Version: 1.0\r\nContent-Type: text/plain;\r\n\tcharset=\"iso-8859-1\"\r\n"
               "Content-Transfer-Encoding: 7bit\r\n\r\n" + body + "\r\n")
    start = time.monotonic()
    for _ in range(count):
        with smtplib.SMTP("127.0.0.1", port, local_hostname="example.com") as client:
            client.sendmail("reports@example.com", ["boss@example.com"], message)
    elapsed = time.monotonic() - start
    print("%.3f" % (count / elapsed))


if __name__ == "__main__":
    main()
