"""The bus's wire protocol, as far as tests need it that send very much, or what no library sends."""

import collections
import os
import socket
import struct

from support import NAME, PATH, PATIENCE, REQUESTS

CALL, RETURN, ERROR, SIGNAL = 1, 2, 3, 4
FIELDS = {"path": b"\1\1o\0", "interface": b"\2\1s\0", "member": b"\3\1s\0", "error": b"\4\1s\0",
          "reply_serial": b"\5\1u\0", "destination": b"\6\1s\0", "signature": b"\x08\1g\0"}
BUS = {"destination": "org.freedesktop.DBus", "path": "/org/freedesktop/DBus", "interface": "org.freedesktop.DBus"}
HELPER_OBJECT = {"destination": NAME, "path": PATH}

Reply = collections.namedtuple("Reply", "serial error body")


def text(characters):
    return struct.pack("<I", len(characters)) + characters.encode() + b"\0"


def named_number(key, number):
    """The arguments of a simulation method, "sd"."""
    packed = text(key)
    return packed + bytes(-len(packed) % 8) + struct.pack("<d", number)


def message(kind, body=b"", flags=0, **fields):
    """A message without its serial."""
    packed = b""
    for name, value in fields.items():
        packed += bytes(-len(packed) % 8) + FIELDS[name]
        if name == "signature":
            packed += bytes([len(value)]) + value.encode() + b"\0"
        else:
            packed += struct.pack("<I", value) if name == "reply_serial" else text(value)
    header = struct.pack("<cBBBIII", b"l", kind, flags, 1, len(body), 0, len(packed)) + packed
    return header + bytes(-len(header) % 8) + body


def request(member):
    return message(CALL, **HELPER_OBJECT, interface=REQUESTS, member=member)


THERMAL, BLUETOOTH = request("getModelDatawithReply"), request("getBTDataWithReply")


class Content:
    """Reads the body of a reply to a request."""

    def __init__(self, body):
        self.body, self.at = body, 0

    def number(self, kind, size):
        self.at += -self.at % size + size
        return struct.unpack_from("<" + kind, self.body, self.at - size)[0]

    def text(self):
        size = self.number("I", 4)
        self.at += size + 1
        return self.body[self.at - size - 1:self.at - 1].decode()

    def variant(self):
        self.at += 3
        kind = chr(self.body[self.at - 2])
        return self.text() if kind == "s" else self.number({"d": "d", "x": "q"}[kind], 8)

    def dictionary(self, read_value):
        size = self.number("I", 4)
        self.at += -self.at % 8
        end, result = self.at + size, {}
        while self.at < end:
            self.at += -self.at % 8
            key = self.text()
            result[key] = read_value()
        return result


def readings(body):
    content = Content(body)
    return content.dictionary(lambda: content.dictionary(content.variant))


class Client:
    """A connection to the session bus."""

    def __init__(self, address, receive_buffer=None):
        self.socket = socket.socket(socket.AF_UNIX)
        self.socket.settimeout(PATIENCE)
        if receive_buffer:
            self.socket.setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, receive_buffer)
        kind, _, place = address.partition(",")[0].partition("=")
        self.socket.connect("\0" + place if kind == "unix:abstract" else place)
        self.socket.sendall(b"\0AUTH EXTERNAL " + str(os.geteuid()).encode().hex().encode() + b"\r\n")
        self.socket.recv(4096)
        self.socket.sendall(b"BEGIN\r\n")
        self.received = bytearray()
        self.serial = 0
        self.ask(message(CALL, **BUS, member="Hello"))

    def send(self, *messages):
        """Returns the serials."""
        packed = bytearray()
        for each in messages:
            self.serial += 1
            packed += each
            struct.pack_into("<I", packed, len(packed) - len(each) + 8, self.serial)
        self.socket.sendall(packed)
        return range(self.serial - len(messages) + 1, self.serial + 1)

    def receive(self):
        """The replies that have arrived; waits for the first bytes."""
        arrived = self.socket.recv(1 << 20)
        if not arrived:
            raise ConnectionError("the bus has hung up")
        self.received += arrived
        start, replies = 0, []
        while len(self.received) - start >= 16:
            body_size, _, fields_size = struct.unpack_from("<III", self.received, start + 4)
            body = 16 + fields_size + -fields_size % 8
            if len(self.received) - start < body + body_size:
                break
            packed = bytes(self.received[start:start + body + body_size])
            start += len(packed)
            if packed[1] in (RETURN, ERROR):
                replies.append(self.reply(packed, 16 + fields_size, packed[body:]))
        del self.received[:start]
        return replies

    def reply(self, packed, end, body):
        at, serial, error = 16, None, None
        while at < end:
            code, kind = packed[at], packed[at + 2:at + 3]
            at += 4
            if kind == b"g":
                at += packed[at] + 2
            else:
                number, = struct.unpack_from("<I", packed, at)
                at += 4
                if code == 5:
                    serial = number
                if code == 4:
                    error = packed[at:at + number].decode()
                at += number + 1 if kind != b"u" else 0
            at += -at % 8
        return Reply(serial, error, body)

    def replies(self, serials):
        """In the order of the calls, all of which must get one."""
        found = {}
        while len(found) < len(serials):
            found |= {reply.serial: reply for reply in self.receive()}
        return [found[serial] for serial in serials]

    def ask(self, *messages):
        return self.replies(self.send(*messages))

    def fileno(self):
        return self.socket.fileno()

    def close(self):
        self.socket.close()
