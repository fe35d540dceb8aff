#!/usr/bin/python3
"""Reads a recorded message with Python's email package and prints what it found as JSON:
the header names in order, the decoded addresses and subject, and every leaf part decoded."""
import email
import email.policy
import hashlib
import json
import sys


def addresses(message, name):
    header = message[name]
    if header is None:
        return None
    return [{"name": a.display_name, "address": a.addr_spec} for a in header.addresses]


def part_info(part):
    payload = part.get_payload(decode=True) or b""
    info = {
        "content_type": part.get_content_type(),
        "charset": part.get_content_charset(),
        "transfer_encoding": part.get("Content-Transfer-Encoding"),
        "filename": part.get_filename(),
        "content_id": part.get("Content-ID"),
        "size": len(payload),
        "sha256": hashlib.sha256(payload).hexdigest(),
        "defects": [type(d).__name__ for d in part.defects],
    }
    if part.get_content_maintype() == "text":
        try:
            info["text"] = payload.decode(part.get_content_charset() or "ascii")
        except (LookupError, UnicodeDecodeError) as error:
            info["text"] = payload.decode("latin-1")
            info["defects"].append(type(error).__name__)
    return info


def main():
    with open(sys.argv[1], "rb") as f:
        message = email.message_from_binary_file(f, policy=email.policy.default)
    result = {
        "header_names": list(message.keys()),
        "from": addresses(message, "From"),
        "to": addresses(message, "To"),
        "cc": addresses(message, "Cc"),
        "subject": str(message["Subject"]),
        "content_type": message.get_content_type(),
        "boundary": message.get_boundary(),
        "defects": [type(d).__name__ for d in message.defects],
        "parts": [part_info(p) for p in message.walk() if not p.is_multipart()],
    }
    json.dump(result, sys.stdout)


if __name__ == "__main__":
    main()
