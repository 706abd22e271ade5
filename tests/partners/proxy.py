#!/usr/bin/python3
"""proxy.py PORT [USER PASSWORD]: a proxy on 127.0.0.1:PORT that speaks SOCKS5 (RFC 1928, 1929) and HTTP CONNECT (RFC
9110) to whoever asks, told apart by the first byte, and really passes the bytes on. With USER it wants to know who is
there. Written for these tests: it refuses port 1 by its rules, and looks names up itself ("far.example" is this host)."""

import asyncio
import base64
import sys

USER = tuple(word.encode() for word in sys.argv[2:4])
HOSTS = {"far.example": "127.0.0.1"}


async def reach(host, port):
    """The other side, or the two protocols' words for what is in the way."""
    if port == 1:
        return None, (2, "403 Forbidden")
    try:
        return await asyncio.open_connection(HOSTS.get(host, host), port), (0, "200 OK")
    except ConnectionRefusedError:
        return None, (5, "502 Bad Gateway")
    except OSError:
        return None, (4, "504 Gateway Timeout")


async def socks(reader, writer):
    methods = await reader.readexactly((await reader.readexactly(1))[0])
    wanted = 2 if USER else 0
    writer.write(bytes([5, wanted if wanted in methods else 255]))
    if wanted not in methods:
        return None
    if USER:
        await reader.readexactly(1)
        name = await reader.readexactly((await reader.readexactly(1))[0])
        word = await reader.readexactly((await reader.readexactly(1))[0])
        writer.write(bytes([1, (name, word) != USER]))
        if (name, word) != USER:
            return None
    kind = (await reader.readexactly(4))[3]
    if kind == 3:
        host = (await reader.readexactly((await reader.readexactly(1))[0])).decode()
    else:
        raw = await reader.readexactly(4 if kind == 1 else 16)
        host = ".".join(map(str, raw)) if kind == 1 else ":".join(raw[i:i + 2].hex() for i in range(0, 16, 2))
    far, (reply, _) = await reach(host, int.from_bytes(await reader.readexactly(2), "big"))
    writer.write(bytes([5, reply, 0, 1, 127, 0, 0, 1, 0, 9]))
    return far


async def connect(reader, writer):
    head = (await reader.readuntil(b"\r\n\r\n")).decode().split("\r\n")
    login = base64.b64encode(b":".join(USER)).decode()
    if USER and f"proxy-authorization: basic {login}".lower() not in [line.lower() for line in head]:
        writer.write(b'HTTP/1.1 407 Proxy Authentication Required\r\nProxy-Authenticate: Basic realm="tests"\r\n'
                     b"Content-Length: 0\r\n\r\n")
        return None
    host, port = head[0].split()[1].rsplit(":", 1)
    far, (_, status) = await reach(host.strip("[]"), int(port))
    writer.write(f"HTTP/1.1 {status}\r\n\r\n".encode())
    return far


async def carry(reader, writer):
    try:
        while piece := await reader.read(65536):
            writer.write(piece)
            await writer.drain()
    except ConnectionError:
        pass
    writer.close()


async def serve(reader, writer):
    try:
        first = await reader.readexactly(1)
        far = await (socks if first == b"\5" else connect)(reader, writer)
        if far:
            await asyncio.gather(carry(reader, far[1]), carry(far[0], writer))
    except (asyncio.IncompleteReadError, ConnectionError):
        pass
    writer.close()


async def main():
    server = await asyncio.start_server(serve, "127.0.0.1", int(sys.argv[1]))
    async with server:
        await server.serve_forever()


asyncio.run(main())
