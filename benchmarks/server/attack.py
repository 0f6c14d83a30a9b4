"""Attacks the survey server with tools made by others; see scripts/check-server.sh."""

import csv
import json
import os
import re
import subprocess
import sys
import tempfile
import time

from running import Server, answers

QUESTIONS = 4
found = []
# Headers that wapiti misses: the pages' policy says who may frame them, the filter that the second one is
# for is gone from browsers, and the third one belongs to the proxy that encrypts.
UNNEEDED = ("X-Frame-Options", "X-XSS-Protection", "Strict-Transport-Security")


def run(*command, seconds):
    """Gives what the tool said; one that doesn't come to its end is no finding of its own."""
    try:
        return subprocess.run(["timeout", str(seconds), *command], text=True, input="",
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT).stdout
    except OSError as failure:
        sys.exit(f"{command[0]} is not there: {failure}")


def tell(what, findings, words):
    print(f"{what}: {words}", flush=True)
    found.extend(f"{what}: {finding}" for finding in findings)


def slow(server, path, directory):
    """While 1,000 slow clients are there, another one is answered, and after 20 s the server has let go
    of all of them; what a client sees of its end comes later when it doesn't read."""
    kinds = {"slow heads": ["-H"], "slow bodies": ["-B", "-t", "POST", "-s", "8192"],
             "slow readers": ["-X", "-w", "1", "-y", "1", "-n", "5", "-z", "32", "-k", "3"]}
    for kind, options in kinds.items():
        report = os.path.join(directory, kind.replace(" ", "-"))
        tool = subprocess.Popen(
            ["slowhttptest", "-c", "1000", "-r", "500", "-i", "3", "-x", "24", "-p", "3", "-l", "30",
             "-g", "-o", report, "-u", server.url.rstrip("/") + path, *options],
            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        time.sleep(24)
        held = len(os.listdir(f"/proc/{server.process.pid}/fd"))
        tool.wait(60)
        with open(report + ".csv") as file:
            rows = list(csv.DictReader(file))
        away = [row["Seconds"] for row in rows if row["Service Available"].strip() == "0"]
        findings = ["nobody else was answered after " + ", ".join(away) + " s"] if away else []
        if held > 100:
            findings.append(f"{held} descriptors after 24 s")
        tell(kind, findings, f"another client came {len(rows)} times and was not answered"
             f" {len(away)} times, {held} descriptors after 24 s, memory at most"
             f" {server.memory()[1]:.0f} MB")


def pages(server, path, directory):
    report = os.path.join(directory, "wapiti.json")
    for url in (server.url, server.url.rstrip("/") + path):
        run("wapiti", "-u", url, "-s", server.url.rstrip("/") + path, "-f", "json", "-o", report,
            "--flush-session", "--max-scan-time", "90", "-v", "0", seconds=150)
        if not os.path.exists(report):
            tell("wapiti", ["made no report"], "made no report")
            continue
        with open(report) as file:
            told = json.load(file)
        findings = [f"{kind}: {one['info']} {one['path']}"
                    for part in ("vulnerabilities", "anomalies")
                    for kind, ones in told[part].items() for one in ones
                    if not one["info"].startswith(UNNEEDED)]
        tell("wapiti", findings, f"{len(findings)} findings")
        os.remove(report)


def sql(server, path, directory):
    targets = {
        "a form": ["-u", server.url.rstrip("/") + path, "--data",
                   answers(QUESTIONS) + "&t=" + "s" * 22],
        "a login": ["-u", server.url + "ws/CallFunc.php?func=GetWebUserID&param1=a*&param2=b*"],
        "a survey's address": ["-u", server.url.rstrip("/") + path + "*"],
    }
    for what, target in targets.items():
        said = run("sqlmap", *target, "--batch", "--dbms", "sqlite", "--level", "1", "--threads",
                   "4", "--timeout", "10", "--output-dir", directory, "--flush-session",
                   seconds=180)
        points = re.findall(r"Parameter: .*", said)
        ended = "do not appear to be injectable" in said
        words = "nothing found" if ended else "did not come to its end" if not points else points[0]
        tell("sqlmap on " + what, points, words)


def main():
    server = Server(sys.argv[1])
    path = server.publish(QUESTIONS)
    with tempfile.TemporaryDirectory() as directory:
        slow(server, path, directory)
        pages(server, path, directory)
        sql(server, path, directory)
    if server.process.poll() is not None:
        found.append("the server has gone")
    faults = server.command("check").strip()
    if faults != "The database is whole.":
        found.append(faults)
    server.remove()
    print("\n".join(["", "Found:", *found]) if found else "\nNothing was found.")
    sys.exit(1 if found else 0)


main()
