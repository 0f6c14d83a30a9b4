"""Measures the survey server; see scripts/benchmark-server.sh."""

import argparse
import asyncio
import multiprocessing
import os
import random
import re
import resource
import socket
import subprocess
import tempfile
import time
import urllib.request

from running import Server, answers, token_hash

QUESTIONS = 20
rows = []


def tell(what, measured):
    rows.append((what, measured))
    print(f"{what}: {measured}", flush=True)


def wrk(server, path, seconds, script=None):
    """Gives requests a second, p99 in ms, and how many were answered with what isn't 2xx. One thread of
    load leaves the server more of the two cores than two would."""
    command = ["wrk", "-t1", "-c64", f"-d{seconds}", "--latency"]
    with tempfile.NamedTemporaryFile("w", suffix=".lua") as file:
        if script:
            file.write(script)
            file.flush()
            command += ["-s", file.name]
        output = subprocess.run([*command, server.url.rstrip("/") + path], check=True, text=True,
                                capture_output=True).stdout
    rate = float(re.search(r"Requests/sec:\s*([\d.]+)", output)[1])
    number, unit = re.search(r"99%\s*([\d.]+)(us|ms|s)", output).groups()
    bad = re.search(r"Non-2xx or 3xx responses: (\d+)", output)
    cut = re.search(r"Socket errors: (.*)", output)
    p99 = float(number) * {"us": 0.001, "ms": 1, "s": 1000}[unit]
    note = (f", {bad[1]} refused" if bad else "") + (f", {cut[1]}" if cut else "")
    count = int(re.search(r"(\d+) requests in", output)[1])
    return f"{rate:,.0f}/s, p99 {p99:.1f} ms{note}", count


POSTS = """
local count = 0
local thread = 0
function setup(t) t:set("id", thread); thread = thread + 1 end
function request()
  count = count + 1
  local token = string.format("%s%01d%012d", "wwwwwwwww", id, count)
  return wrk.format("POST", nil, {["Content-Type"] = "application/x-www-form-urlencoded"},
                    "BODY&t=" .. token)
end
"""


def head(path, body):
    return (f"POST {path} HTTP/1.1\r\nHost: x\r\n"
            "Content-Type: application/x-www-form-urlencoded\r\n"
            f"Content-Length: {len(body)}\r\n\r\n{body}").encode()


async def reply_on(reader):
    """The status of the next reply, which is read whole."""
    top = await reader.readuntil(b"\r\n\r\n")
    length = int(re.search(rb"Content-Length: (\d+)", top)[1])
    await reader.readexactly(length)
    return int(top.split(b" ", 2)[1])


def load(server, path, seconds):
    wrk(server, path, 2) # the first seconds are those of an empty cache
    tell("page of the form, 64 clients", wrk(server, path, seconds)[0])
    measured, count = wrk(server, path, seconds, POSTS.replace("BODY", answers(QUESTIONS)))
    stored = server.stored()
    tell(f"durable submissions of {QUESTIONS} answers, 64 clients",
         f"{measured}; {count} acknowledged, {len(stored)} stored, {len(set(stored))} of them"
         " different")
    tell("memory after that", f"{server.memory()[0]:.0f} MB, at most {server.memory()[1]:.0f} MB")
    began = time.perf_counter()
    size = len(server.call("GetSurveyResults", f"{server.user}-{server.survey}.txt"))
    took = time.perf_counter() - began
    tell(f"results of 10,000 respondents with {QUESTIONS} answers",
         f"{took * 10000 / len(stored):.2f} s ({len(stored)} in {took:.2f} s,"
         f" {size / 1e6:.0f} MB, streamed)")


def hold_crowd(port, path, pipe):
    """A process of its own, so that its own work is not taken for the server's: holds 2,000 slow, 2,000
    idle connections and 100 slow bodies, and tells how many were closed, and the longest that one lasted."""
    async def hold(start, at):
        reader, writer = await asyncio.open_connection("127.0.0.1", port)
        began = time.perf_counter()
        writer.write(start)
        end = asyncio.ensure_future(reader.read())
        await asyncio.wait([end], timeout=at if start else 60)
        while start and not end.done() and time.perf_counter() - began < 60:
            writer.write(b"x")
            await asyncio.wait([end], timeout=2)
        writer.close()
        try:
            return time.perf_counter() - began if end.done() and end.result() is not None else None
        except OSError:
            return time.perf_counter() - began

    async def all_of_them():
        starts = [b"GET /s/x HTTP/1.1\r\nHos"] * 2000 + [b""] * 2000 + [
            f"POST {path} HTTP/1.1\r\nHost: x\r\nContent-Length: 1000\r\n\r\nv=".encode()] * 100
        held = []
        for place, start in enumerate(starts):
            held.append(asyncio.ensure_future(hold(start, place % 200 / 100)))
            if place % 50 == 49:
                await asyncio.sleep(0.01)
        await asyncio.sleep(0.5)
        pipe.send("there")
        lasted = await asyncio.gather(*held, return_exceptions=True)
        ended = [one for one in lasted if isinstance(one, float)]
        pipe.send((len(ended), len(starts), max(ended, default=0)))

    asyncio.run(all_of_them())


def crowd(server, path):
    """What one client waits for who wants something, while all the others are there."""
    here, there = multiprocessing.Pipe()
    holder = multiprocessing.Process(target=hold_crowd, args=(server.port, path, there))
    holder.start()
    here.recv()
    waits = []
    for _ in range(100):
        asked = time.perf_counter()
        with urllib.request.urlopen(server.url.rstrip("/") + path) as reply:
            reply.read()
        waits.append((time.perf_counter() - asked) * 1000)
        time.sleep(0.05)
    memory = server.memory()[1]
    closed, count, longest = here.recv()
    holder.join()
    waits.sort()
    tell("2,000 slow, 2,000 idle connections, 100 slow bodies",
         f"another client waited {waits[-1]:.0f} ms at most, half of the times {waits[50]:.0f};"
         f" {closed} of {count} closed, within {longest:.0f} s; at most {memory:.0f} MB")


MALFORMED = {
    "two lengths": b"POST / HTTP/1.1\r\nHost: x\r\nContent-Length: 3\r\nContent-Length: 4\r\n\r\nabcd",
    "length and chunks": b"POST / HTTP/1.1\r\nHost: x\r\nContent-Length: 3\r\n"
                         b"Transfer-Encoding: chunked\r\n\r\n0\r\n\r\n",
    "Host :": b"GET / HTTP/1.1\r\nHost : x\r\n\r\n",
    "NUL": b"GET / HTTP/1.1\r\nHost: x\0y\r\n\r\n",
    "50 MB in chunks": b"POST / HTTP/1.1\r\nHost: x\r\nTransfer-Encoding: chunked\r\n\r\n"
                       + (b"100000\r\n" + b"x" * 0x100000 + b"\r\n") * 50,
    "a cut request": b"POST / HTTP/1.1\r\nHost: x\r\nContent-Length: 30\r\n\r\nabc",
}


def malformed(server):
    """What is answered, or that nothing is; and that the server goes on."""
    told = []
    for what, request in MALFORMED.items():
        with socket.create_connection(("127.0.0.1", server.port), timeout=20) as client:
            try:
                client.sendall(request)
                if what == "a cut request":
                    client.shutdown(socket.SHUT_WR)
            except OSError:
                pass # it has refused that much
            try:
                reply = client.recv(4096).split(b" ", 2)
            except OSError:
                reply = [b""]
        told.append(f"{what} {reply[1].decode() if len(reply) > 1 else 'closed'}")
    alive = server.process.poll() is None
    tell("malformed requests", ", ".join(told) + ("" if alive else "; THE SERVER HAS GONE"))


async def idle(server):
    held = [await asyncio.open_connection("127.0.0.1", server.port) for _ in range(1000)]
    tell("memory with 1,000 idle connections", f"{server.memory()[0]:.0f} MB")
    for _, writer in held:
        writer.close()


async def equals(server, path, rounds):
    """One form, posted 20 times at once, over and over with another token."""
    before = len(server.stored())
    held = [await asyncio.open_connection("127.0.0.1", server.port) for _ in range(20)]
    for turn in range(rounds):
        body = answers(QUESTIONS) + f"&t=equal{turn:017d}"
        for _, writer in held:
            writer.write(head(path, body))
        statuses = await asyncio.gather(*(reply_on(reader) for reader, _ in held))
        assert set(statuses) == {200}, statuses
    for _, writer in held:
        writer.close()
    tell(f"the same form 20 times at once, {rounds:,} rounds",
         f"{len(server.stored()) - before} rows")


async def post_until_it_ends(server, path, acknowledged, prefix, wait):
    """16 clients, who note what was acknowledged, until the server has gone."""
    async def client(number):
        try:
            reader, writer = await asyncio.open_connection("127.0.0.1", server.port)
            for turn in range(10 ** 6):
                token = f"{prefix}-{number:02d}-{turn:06d}".rjust(22, "k")
                writer.write(head(path, answers(QUESTIONS) + "&t=" + token))
                if await reply_on(reader) != 200:
                    return
                acknowledged.append(token)
        except (OSError, asyncio.IncompleteReadError):
            pass

    clients = [asyncio.ensure_future(client(number)) for number in range(16)]
    await wait()
    await asyncio.wait(clients, timeout=30)


def judge(server, before, acknowledged):
    stored = server.stored()[before:]
    lost = len({token_hash(token) for token in acknowledged} - set(stored))
    return f"{len(acknowledged)} acknowledged, {lost} lost, {len(stored) - len(set(stored))} doubled"


def kills(server, path, rounds):
    acknowledged = []
    before = len(server.stored())
    chance = random.Random(7)

    async def kill_soon():
        await asyncio.sleep(chance.uniform(0.05, 0.3))
        server.kill()

    for turn in range(rounds):
        asyncio.run(post_until_it_ends(server, path, acknowledged, f"{turn:03d}", kill_soon))
        server.start()
    faults = server.command("check").strip()
    tell(f"{rounds} rounds of kill -9 under load",
         judge(server, before, acknowledged) + f"; {faults}")


def full_disk(program):
    """On a file system of its own where that can be had, else under a limit on the size of files."""
    with tempfile.TemporaryDirectory(prefix="pollarix-full-") as directory:
        mounted = subprocess.run(["mount", "-t", "tmpfs", "-o", "size=16m", "tmpfs", directory],
                                 capture_output=True).returncode == 0
        try:
            server = Server(program, directory)
            path = server.publish(QUESTIONS)
            if not mounted:
                resource.prlimit(server.process.pid, resource.RLIMIT_FSIZE,
                                 (16 << 20, resource.RLIM_INFINITY))
            acknowledged = []

            async def nothing():
                pass

            asyncio.run(post_until_it_ends(server, path, acknowledged, "full", nothing))
            alive = server.process.poll() is None
            readable = len(server.call("GetSurveyListForUser", server.user)) > 0
            told = judge(server, 0, acknowledged)
            server.stop()
        finally:
            if mounted:
                subprocess.run(["umount", directory], check=True)
    tell("a disk that fills" if mounted else "files that can't grow any more",
         f"{told}; the server {'goes on' if alive and readable else 'has gone'}")


def main():
    options = argparse.ArgumentParser()
    options.add_argument("program")
    options.add_argument("--seconds", type=int, default=10)
    options.add_argument("--kills", type=int, default=200)
    options.add_argument("--equals", type=int, default=1000)
    given = options.parse_args()
    busy = os.getloadavg()[0]
    if busy > 1:
        print(f"The machine is not left alone (a load of {busy:.1f}): times are worse than its own.")
    server = Server(given.program)
    starts = []
    for _ in range(5):
        server.stop()
        starts.append(server.start())
    tell("cold start", f"{sorted(starts)[2] * 1000:.0f} ms (median of 5)")
    tell("memory idle", f"{server.memory()[0]:.0f} MB")
    path = server.publish(QUESTIONS)
    asyncio.run(idle(server))
    load(server, path, given.seconds)
    crowd(server, path)
    malformed(server)
    asyncio.run(equals(server, path, given.equals))
    tell("memory at most until here", f"{server.memory()[1]:.0f} MB")
    kills(server, path, given.kills)
    server.remove()
    full_disk(given.program)
    print(f"\nLoad of the machine when it began {busy:.1f}, when it ended {os.getloadavg()[0]:.1f}, on"
          f" {os.cpu_count()} cores\n")
    print("| What | Measured |\n|---|---|")
    for row in rows:
        print("| {} | {} |".format(*row))


main()
