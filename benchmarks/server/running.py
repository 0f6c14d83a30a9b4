"""A server under measurement: the real program in a directory of its own, published to and answered
through its own doors."""

import ftplib
import hashlib
import io
import os
import shutil
import signal
import sqlite3
import subprocess
import tempfile
import time
import urllib.parse
import urllib.request

PASSWORD = "long enough"
SETTINGS = """http = 127.0.0.1:0
ftp = 127.0.0.1:0
connections = 10000
connections-per-address = 10000
submissions-per-minute = 100000000
wrong-logins = 1000000
"""


class Server:
    def __init__(self, program, directory=None):
        self.program = os.path.abspath(program)
        self.directory = directory or tempfile.mkdtemp(prefix="pollarix-server-")
        self.data = os.path.join(self.directory, "data")
        self.settings = os.path.join(self.directory, "settings")
        with open(self.settings, "w") as file:
            file.write(SETTINGS)
        self.start()

    def start(self):
        """Gives the seconds until it says that it is ready."""
        began = time.perf_counter()
        self.process = subprocess.Popen(
            [self.program, "--data", self.data, "--config", self.settings, "serve"],
            stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
        for line in self.process.stdout:
            if line.startswith("Survey server: "):
                self.url = line.split(": ")[1].strip()
                self.port = int(self.url.rstrip("/").rsplit(":", 1)[1])
            if line.startswith("FTP server"):
                self.ftp_port = int(line.strip().rsplit(":", 1)[1])
            if line.startswith("Ready."):
                return time.perf_counter() - began
        raise RuntimeError("the server did not start")

    def stop(self):
        self.process.send_signal(signal.SIGTERM)
        self.process.wait()

    def kill(self):
        self.process.kill()
        self.process.wait()

    def remove(self):
        self.stop()
        shutil.rmtree(self.directory)

    def memory(self):
        """Megabytes that are in use, and the most that ever were."""
        with open(f"/proc/{self.process.pid}/status") as file:
            lines = dict(line.split(":", 1) for line in file)
        return tuple(int(lines[name].split()[0]) / 1024 for name in ("VmRSS", "VmHWM"))

    def command(self, *words, given=""):
        return subprocess.run([self.program, "--data", self.data, *words], input=given, text=True,
                              check=True, capture_output=True).stdout

    def call(self, function, *values):
        query = "".join(f"&param{i}={value}" for i, value in enumerate(values, 1))
        url = self.url + "ws/CallFunc.php?func=" + function + query + "&refreshme=now"
        with urllib.request.urlopen(url.replace(" ", "%20")) as reply:
            return reply.read()

    def value(self, function, *values):
        reply = self.call(function, *values).decode()
        if not reply.startswith("Success<br>"):
            raise RuntimeError(f"{function}: {reply}")
        return reply.split("<br>")[1]

    def publish(self, questions):
        """Publishes a survey of so many questions, and gives its path."""
        self.command("user", "add", "anna", given=PASSWORD + "\n")
        self.user = self.value("GetWebUserID", "anna", PASSWORD)
        self.survey = self.value("CreateSurvey", self.user, "Measured")
        name = f"{self.user}-{self.survey}.xml"
        ftp = ftplib.FTP()
        ftp.connect("127.0.0.1", self.ftp_port)
        ftp.login("x", "y")
        ftp.cwd("incoming")
        ftp.storbinary("STOR " + name, io.BytesIO(document(questions)))
        ftp.quit()
        url = self.value("MoveNewSurvey", name, self.survey, "True", self.user)
        return urllib.parse.urlparse(url).path

    def stored(self):
        """The hashes of the tokens of all forms that are stored, in their order."""
        database = sqlite3.connect(os.path.join(self.data, "pollarix-server.db"))
        try:
            return [row[0] for row in database.execute(
                "SELECT token_hash FROM submission ORDER BY id")]
        finally:
            database.close()


def token_hash(token):
    return hashlib.blake2b(token.encode(), digest_size=32).digest()


def document(questions):
    """Every second question has a single response out of four, the others are open ended."""
    lines = ["<app>Pollarix</app>", "<user></user>", "<key></key>", "<version>1.4</version>"]
    for number in range(1, questions + 1):
        radio = number % 2 == 1
        lines += ["<q>", f"\t<DatabaseID>{number}</DatabaseID>",
                  f"\t<Question>What do you think of thing number {number}?</Question>",
                  f"\t<QuestionNo>{number}</QuestionNo>", f"\t<QType>{2 if radio else 0}</QType>",
                  "\t<OpenEnded_NoOfRows>2</OpenEnded_NoOfRows>", "\t<r>"]
        if radio:
            lines += ["\t<ResponsesCount>4</ResponsesCount>", "\t\t<Response>"]
            for place in range(1, 5):
                lines += [f"\t\t\t<QuestionID>{number}</QuestionID>",
                          f"\t\t\t<Name>Response {place}</Name>",
                          f"\t\t\t<DatabaseID>{number * 10 + place}</DatabaseID>",
                          f"\t\t\t<Pos>{place}</Pos>",
                          "\t\t\t<ResponseMatrixGroupID>1</ResponseMatrixGroupID>"]
            lines += ["\t\t</Response>"]
        lines += ["\t</r>", "</q>"]
    return "".join(line + "\r\n" for line in lines).encode("cp1252")


def answers(questions):
    """The fields of the form, all on one page, without its token."""
    fields = {"v": "1", "go": "send"}
    for number in range(1, questions + 1):
        fields[f"q{number}"] = str(number * 10 + 2) if number % 2 == 1 else f"I like {number} & more"
    return urllib.parse.urlencode(fields)
