"""A mail server on loopback for tests: smtp_server.py FOLDER [options].

Prints its port, serves until standard input ends, and keeps in FOLDER what it was told: each message
as N.eml, its envelope as N.json, and the commands of all clients in commands.
"""

import argparse
import asyncio
import json
import logging
import pathlib
import ssl
import sys
import warnings

from aiosmtpd.smtp import SMTP, AuthResult, LoginPassword


class Keeper:
    """Keeps messages, and refuses what the options name."""

    def __init__(self, options):
        self.options = options
        self.count = 0

    async def handle_MAIL(self, server, session, envelope, address, mail_options):
        if address == self.options.refuse_sender:
            return "550 5.7.1 this sender is not welcome"
        envelope.mail_from = address
        envelope.mail_options.extend(mail_options)
        return "250 OK"

    async def handle_RCPT(self, server, session, envelope, address, rcpt_options):
        if address == self.options.refuse_recipient:
            return "550 5.1.1 nobody has this mailbox"
        envelope.rcpt_tos.append(address)
        return "250 OK"

    async def handle_DATA(self, server, session, envelope):
        self.count += 1
        folder = self.options.folder
        (folder / f"{self.count}.eml").write_bytes(envelope.original_content)
        user = session.auth_data.login.decode() if session.auth_data else None
        told = {
            "from": envelope.mail_from,
            "to": envelope.rcpt_tos,
            "options": [each.split("=")[0] for each in envelope.mail_options],
            "encrypted": session.ssl is not None,
            "user": user,
        }
        (folder / f"{self.count}.json").write_text(json.dumps(told))
        return self.options.after_data or "250 OK"


class Recording(SMTP):
    """Writes down the verbs of the commands that it is given."""

    def __init__(self, handler, **arguments):
        super().__init__(handler, **arguments)
        for verb in ("EHLO", "STARTTLS", "AUTH", "NOOP", "MAIL", "RCPT", "DATA", "QUIT"):
            self._smtp_methods[verb] = self._noting(verb, self._smtp_methods[verb])

    async def push(self, status):
        # Without a user to know, nothing is offered; the class always does.
        if isinstance(status, str) and status.startswith("250-AUTH"):
            if not self.event_handler.options.auth:
                return
        await super().push(status)

    def _noting(self, verb, method):
        async def note(argument):
            with open(self.event_handler.options.folder / "commands", "a", encoding="ascii") as file:
                file.write(verb + "\n")
            return await method(argument)

        return note


def authenticator(options):
    login, password = options.auth.encode().split(b":")

    def check(server, session, envelope, mechanism, data):
        good = isinstance(data, LoginPassword) and data == LoginPassword(login, password)
        return AuthResult(success=good, handled=False, auth_data=data if good else None)

    return check


def real_server(options):
    arguments = {"hostname": "test.invalid", "enable_SMTPUTF8": not options.no_utf8}
    if options.certificate:
        context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        context.load_cert_chain(options.certificate + ".pem", options.certificate + ".key")
        arguments["tls_context"] = context
        arguments["require_starttls"] = True
    if options.auth:
        arguments["authenticator"] = authenticator(options)
        arguments["auth_required"] = True
        arguments["auth_require_tls"] = bool(options.certificate)
    handler = Keeper(options)
    return lambda: Recording(handler, **arguments)


async def broken_server(points, is_silent, reader, writer):
    """Speaks as a server does up to a point, with each connection up to the next of the points.
    There it falls silent, or closes the connection."""
    last = points.pop(0)
    answers = {"EHLO": "250 test.invalid", "NOOP": "250 OK", "MAIL": "250 OK", "RCPT": "250 OK",
               "DATA": "354 go on", "QUIT": "221 bye"}

    async def reached(point):
        if point != last:
            return False
        if is_silent:
            await asyncio.Event().wait()
        writer.close()
        return True

    if await reached("GREETING"):
        return
    writer.write(b"220 test.invalid\r\n")
    while line := await reader.readline():
        verb = line.decode("ascii", "replace").split()[0].upper()
        if await reached(verb):
            return
        writer.write((answers.get(verb, "502 no") + "\r\n").encode())
        if verb != "DATA":
            continue
        await reader.read(1000)
        if await reached("MESSAGE"):
            return
        while (await reader.readline()) not in (b".\r\n", b""):
            pass
        if await reached("END"):
            return
        writer.write(b"250 OK\r\n")


async def serve(options):
    loop = asyncio.get_running_loop()
    points = (options.silent_at or options.close_at or "").split()
    if points:
        server = await asyncio.start_server(
            lambda reader, writer: broken_server(points, bool(options.silent_at), reader, writer),
            "127.0.0.1", 0)
    else:
        server = await loop.create_server(real_server(options), "127.0.0.1", 0)
    print(server.sockets[0].getsockname()[1], flush=True)
    await loop.run_in_executor(None, sys.stdin.read)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("folder", type=pathlib.Path)
    parser.add_argument("--certificate", help="path without .pem and .key")
    parser.add_argument("--auth", help="USER:PASSWORD")
    parser.add_argument("--no-utf8", action="store_true")
    parser.add_argument("--refuse-sender")
    parser.add_argument("--refuse-recipient")
    parser.add_argument("--after-data", help="the answer to a message")
    parser.add_argument("--silent-at", help="points: GREETING, a verb, MESSAGE or END")
    parser.add_argument("--close-at")
    logging.disable()  # what clients do wrong here is meant
    warnings.simplefilter("ignore")
    asyncio.run(serve(parser.parse_args()))


main()
