"""Measures the survey server; see scripts/benchmark-server.sh."""

import asyncio
import os
import random
import re
import resource
import subprocess
import sys
import tempfile
import time

from running import Server, answers, token_hash

QUESTIONS = 20
ROUNDS_OF_KILLS = 200
ROUNDS_OF_EQUALS = 1000
rows = []


def tell(what, measured):
    rows.append((what, measured))
    print(f"{what}: {measured}", flush=True)


def wrk(server, path, seconds, script=None):
    """Gives requests a second, p99 in ms, and how many were answered with what isn't 2xx."""
    command = ["wrk", "-t2", "-c64", f"-d{seconds}", "--latency"]
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


async def crowd(server, path):
    """2,000 slow, 2,000 idle connections, 100 slow bodies, and one client who wants something."""
    starts = [b"GET /s/x HTTP/1.1\r\nHos"] * 2000 + [b""] * 2000 + [
        f"POST {path} HTTP/1.1\r\nHost: x\r\nContent-Length: 1000\r\n\r\nv=".encode()] * 100
    open_ones = []
    for start in starts:
        reader, writer = await asyncio.open_connection("127.0.0.1", server.port)
        writer.write(start)
        open_ones.append((reader, writer))
    began = time.perf_counter()
    closed = [0]

    async def drip(reader, writer, slowly):
        end = asyncio.ensure_future(reader.read())
        while slowly and not end.done():
            await asyncio.wait([end], timeout=2)
            if not end.done():
                writer.write(b"x")
        try:
            await end
        except OSError:
            pass
        closed[0] += 1
        writer.close()

    drips = [asyncio.ensure_future(drip(*one, bool(start)))
             for one, start in zip(open_ones, starts)]
    worst = 0
    for _ in range(50):
        asked = time.perf_counter()
        reader, writer = await asyncio.open_connection("127.0.0.1", server.port)
        writer.write(f"GET {path} HTTP/1.1\r\nHost: x\r\n\r\n".encode())
        await reply_on(reader)
        worst = max(worst, time.perf_counter() - asked)
        writer.close()
        await asyncio.sleep(0.1)
    memory = server.memory()[1]
    await asyncio.wait(drips, timeout=60)
    tell("2,000 slow, 2,000 idle connections, 100 slow bodies",
         f"another client waited {worst * 1000:.0f} ms at most; {closed[0]} of {len(starts)} closed"
         f" within {time.perf_counter() - began:.0f} s; at most {memory:.0f} MB")


async def idle(server):
    held = [await asyncio.open_connection("127.0.0.1", server.port) for _ in range(1000)]
    tell("memory with 1,000 idle connections", f"{server.memory()[0]:.0f} MB")
    for _, writer in held:
        writer.close()


async def equals(server, path):
    """One form, posted 20 times at once, over and over with another token."""
    before = len(server.stored())
    held = [await asyncio.open_connection("127.0.0.1", server.port) for _ in range(20)]
    for turn in range(ROUNDS_OF_EQUALS):
        body = answers(QUESTIONS) + f"&t=equal{turn:017d}"
        for _, writer in held:
            writer.write(head(path, body))
        statuses = await asyncio.gather(*(reply_on(reader) for reader, _ in held))
        assert set(statuses) == {200}, statuses
    for _, writer in held:
        writer.close()
    tell(f"the same form 20 times at once, {ROUNDS_OF_EQUALS} rounds",
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


def kills(server, path):
    acknowledged = []
    before = len(server.stored())
    chance = random.Random(7)

    async def kill_soon():
        await asyncio.sleep(chance.uniform(0.05, 0.3))
        server.kill()

    for turn in range(ROUNDS_OF_KILLS):
        asyncio.run(post_until_it_ends(server, path, acknowledged, f"{turn:03d}", kill_soon))
        server.start()
    faults = server.command("check").strip()
    tell(f"{ROUNDS_OF_KILLS} rounds of kill -9 under load",
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
    program, seconds = sys.argv[1], int(sys.argv[2])
    server = Server(program)
    starts = []
    for _ in range(5):
        server.stop()
        starts.append(server.start())
    tell("cold start", f"{sorted(starts)[2] * 1000:.0f} ms (median of 5)")
    tell("memory idle", f"{server.memory()[0]:.0f} MB")
    path = server.publish(QUESTIONS)
    asyncio.run(idle(server))
    load(server, path, seconds)
    asyncio.run(crowd(server, path))
    asyncio.run(equals(server, path))
    kills(server, path)
    server.remove()
    full_disk(program)
    print(f"\nLoad of the machine when it ended: {os.getloadavg()[0]:.1f} on {os.cpu_count()} cores\n")
    print("| What | Measured |\n|---|---|")
    for row in rows:
        print("| {} | {} |".format(*row))


main()
