#!/usr/bin/python3
"""Takes a mail apart with Python's own reader, so that a test compares what a mail program would show.

unpack_mail.py MAIL FOLDER writes into FOLDER: one file for each field of the head, decoded and named
in lower case ("subject"); "text" and "text-type"; "attachment", "attachment-name" and "attachment-type";
"defects", empty for a mail without faults.
"""
import email
import email.policy
import pathlib
import sys

mail = email.message_from_bytes(pathlib.Path(sys.argv[1]).read_bytes(), policy=email.policy.SMTP)
folder = pathlib.Path(sys.argv[2])


def write(name, content):
    (folder / name).write_bytes(content if isinstance(content, bytes) else content.encode("utf-8", "surrogateescape"))


defects = list(mail.defects)
for name, value in mail.items():
    write(name.lower(), str(value))
    defects += getattr(value, "defects", [])
for part in mail.walk():
    defects += part.defects
    if part.is_attachment():
        write("attachment", part.get_payload(decode=True))
        write("attachment-name", part.get_filename())
        write("attachment-type", part.get_content_type())
    elif not part.is_multipart():
        write("text", part.get_payload(decode=True))
        write("text-type", f"{part.get_content_type()}; {part.get_content_charset()}")
write("defects", "\n".join(map(repr, defects)))
