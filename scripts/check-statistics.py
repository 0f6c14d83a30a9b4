#!/usr/bin/env python3
"""Holds the figures of tools/statistics against those of R and PSPP, to six digits, and what it wrote as a
workbook against the same answers.

  scripts/check-statistics.py DIRECTORY

The directory holds figures.tsv and answers.csv of the tool and R.tsv of check-statistics.R. PSPP is run
here. What it prints is rounded; its output file holds the full numbers, one member a table, so a figure
agrees when the tables of its command hold that number. PSPP reads the answers from labelled.sav.
"""

import csv
import pathlib
import re
import shutil
import struct
import subprocess
import sys
import xml.etree.ElementTree as xml
import zipfile

ITEMS = ["q5_1", "q5_2", "q5_3", "q5_4"]

# Each command of PSPP with our figures that its tables have to hold. The level of a variable, and the
# signs of z and t, are compared without regard to what the other program calls them.
COMMANDS = [
    ("FREQUENCIES q1.", ["freq.q1."]),
    ("FREQUENCIES q3 /FORMAT=NOTABLE /STATISTICS=ALL.",
     ["describe.q3.mean", "describe.q3.sd", "describe.q3.se", "describe.q3.median",
      "describe.q3.min", "describe.q3.max"]),
    ("DESCRIPTIVES q5_1 /STATISTICS=ALL.",
     ["describe.q5_1.n", "describe.q5_1.mean", "describe.q5_1.sd", "describe.q5_1.se"]),
    ("CROSSTABS /TABLES=q1 BY q2 /STATISTICS=CHISQ PHI /CELLS=COUNT ASRESIDUAL.",
     ["cross.q1.q2."]),
    ("CROSSTABS /TABLES=q2 BY q4_1 /STATISTICS=CHISQ PHI.",
     ["cross.q2.q4_1.chi2", "cross.q2.q4_1.lr", "cross.q2.q4_1.v", "cross.q2.q4_1.fisher"]),
    ("CROSSTABS /TABLES=q6 BY q5_1 /STATISTICS=CHISQ PHI GAMMA BTAU /CELLS=COUNT ASRESIDUAL.",
     ["cross.q6.q5_1."]),
    ("CROSSTABS /TABLES=q5_1 BY q5_2 /STATISTICS=CHISQ PHI GAMMA BTAU.",
     ["cross.q5_1.q5_2.chi2", "cross.q5_1.q5_2.gamma", "cross.q5_1.q5_2.taub"]),
    ("T-TEST /GROUPS=q2(1,2) /VARIABLES=q3.", ["compare.q3.q2.t"]),
    ("ONEWAY q3 BY q1 /STATISTICS=DESCRIPTIVES.", ["compare.q3.q1.f", "compare.q3.q1.within"]),
    ("RELIABILITY /VARIABLES=" + " ".join(ITEMS) + " /SUMMARY=TOTAL.", ["alpha"]),
    ("NPAR TESTS /MANN-WHITNEY=q3 BY q2(1,2).", ["compare.q3.q2.mwp"]),
    ("NPAR TESTS /KRUSKAL-WALLIS=q3 BY q1(1,3).", ["compare.q3.q1.h"]),
]


def read(path):
    rows = (line.split("\t") for line in path.read_text().splitlines())
    return {name: float(value) for name, value in rows}


def agree(ours, theirs):
    # What should be 0 is what rounding leaves of it.
    return abs(ours - theirs) <= max(1e-6 * abs(theirs), 1e-12)


def numbers_of_pspp(directory):
    """A list of the numbers in the tables of each command."""
    syntax = [f"GET FILE='{directory}/labelled.sav'."]
    syntax += [command for command, _ in COMMANDS]
    (directory / "peers.sps").write_text("\n".join(syntax) + "\n")
    subprocess.run(["pspp", "-O", "format=spv", "-o", directory / "peers.spv",
                    directory / "peers.sps"], check=True, stdout=subprocess.DEVNULL)
    archive = zipfile.ZipFile(directory / "peers.spv")
    numbers = []
    for heading in archive.namelist():
        if not heading.endswith("_heading.xml"):
            continue
        tables = re.findall(r"\d+_lightTableData\.bin", archive.read(heading).decode())
        found = []
        for table in tables:
            content = archive.read(table)
            found += [struct.unpack_from("<d", content, i)[0] for i in range(len(content) - 7)]
        numbers.append(found)
    return numbers[len(numbers) - len(COMMANDS):]


MAIN = "{http://schemas.openxmlformats.org/spreadsheetml/2006/main}"


def rows_of_sheet(archive, number):
    """The cells of each row that have a value, by the letters of their column."""
    sheet = xml.fromstring(archive.read(f"xl/worksheets/sheet{number}.xml"))
    if next(sheet.iter(f"{MAIN}f"), None) is not None:
        raise ValueError(f"sheet {number} holds a formula")
    for row in sheet.iter(f"{MAIN}row"):
        yield {re.match("[A-Z]+", cell.get("r"))[0]:
               float(cell.find(f"{MAIN}v").text) if cell.get("t") is None
               else "".join(cell.itertext()) for cell in row}


def faults_of_workbook(directory):
    """What differs between the sheet of numbers and answers.csv, which has the same order."""
    answers = list(csv.DictReader(open(directory / "answers.csv", encoding="utf-8")))
    archive = zipfile.ZipFile(directory / "labelled.xlsx")
    sheets = [list(rows_of_sheet(archive, number)) for number in (1, 2, 3, 4)]
    names = sheets[1][0]
    faults = []
    if any(len(sheet) != len(answers) + 1 for sheet in sheets[:2]):
        faults.append(f"labelled.xlsx has {len(sheets[1])} rows")
    for row, answer in zip(sheets[1][1:], answers):
        for column, name in names.items():
            if not re.match("q[1-6]", name):
                continue
            value = row.get(column, -1)
            if value != float(answer[name]) if answer[name] else value not in (-1, -2):
                faults.append(f"labelled.xlsx, {name}: {value} is not {answer[name]}")
    frequencies = {(row["A"], row["C"]): row["D"] for row in sheets[3][1:]}
    north = sum(answer["q1"] == "1" for answer in answers)
    if frequencies[("q1", "North")] != north:
        faults.append("labelled.xlsx has wrong frequencies")
    if shutil.which("soffice"):
        subprocess.run(["soffice", f"-env:UserInstallation=file://{directory}/office", "--headless",
                        "--convert-to", "csv:Text - txt - csv (StarCalc):44,34,76,1,,0,false,true,"
                        "false,false,false,2", "--outdir", directory, directory / "labelled.xlsx"],
                       check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        opened = list(csv.DictReader(open(directory / "labelled-Codes.csv", encoding="utf-8")))
        same = all(not answer[name] or float(line[name]) == float(answer[name])
                   for line, answer in zip(opened, answers) for name in ("q1", "q3", "q5_4"))
        if len(opened) != len(answers) or not same:
            faults.append("LibreOffice reads other answers from labelled.xlsx")
    return faults


def main():
    directory = pathlib.Path(sys.argv[1])
    ours = read(directory / "figures.tsv")
    faults = []
    compared = 0
    for name, theirs in read(directory / "R.tsv").items():
        compared += 1
        if name not in ours or not agree(ours[name], theirs):
            faults.append(f"{name}: R says {theirs!r}, we say {ours.get(name)!r}")
    for (command, names), numbers in zip(COMMANDS, numbers_of_pspp(directory)):
        for name in [known for known in ours if known.startswith(tuple(names))]:
            value = ours[name]
            if value != value or (value == 0 and name.endswith(".residual")):
                continue
            compared += 1
            if not any(agree(abs(value), abs(number)) for number in numbers):
                faults.append(f"{name}: we say {value!r}, which {command} does not")
    faults += faults_of_workbook(directory)
    print(f"  {compared} figures compared, {len(faults)} differ")
    print("".join(f"  {fault}\n" for fault in faults), end="")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
