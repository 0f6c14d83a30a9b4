#!/usr/bin/env python3
"""Checks the topics of the help, and lays them out with their project file for the help compiler.

    make-help.py data/help build/help src

A topic is one HTML page. Its head says its <title>, the entries of the index (<meta name="keywords">,
parted by ";") and the numbers, screens and dialogs it is the topic of (<meta name="topic">, parted by
blanks). Either may end in "@place" to lead to <a name="place"> within the page. contents.txt names the
pages in the order of the contents; a page indented below another belongs to it.

Ends with 1, and says where, when a topic links nowhere, a picture is missing or unused, a page is not
in the contents, an entry, name or place is there twice, a screen or dialog is not in the sources of the
program, or a page is not well formed.
"""

import pathlib
import re
import shutil
import sys
from html.parser import HTMLParser
from urllib.parse import urlsplit
from xml.sax.saxutils import quoteattr

NAMESPACE = "example.pollarix.help"
VOID = {"br", "hr", "img", "meta"}
# What the help window draws; anything else would silently look wrong.
ALLOWED = VOID | {"html", "head", "title", "body", "h1", "h2", "h3", "p", "a", "b", "i", "u", "kbd",
                  "code", "pre", "ul", "ol", "li", "table", "tr", "th", "td", "dl", "dt", "dd", "div"}


class Page(HTMLParser):
    def __init__(self, path):
        super().__init__(convert_charrefs=True)
        self.name = path.name
        self.problems = []
        self.title = self.heading = ""
        self.keywords, self.topics = [], []
        self.places, self.links, self.pictures = set(), [], []
        self.open_tags = []
        self.feed(path.read_text(encoding="utf-8"))
        self.close()
        for tag in self.open_tags:
            self.problems.append(f"<{tag}> is never closed")
        if not self.title or self.title != self.heading:
            self.problems.append(f"title {self.title!r} and heading {self.heading!r} differ")
        if not self.keywords:
            self.problems.append("no keywords: the index does not lead here")

    def handle_starttag(self, tag, attributes):
        values = dict(attributes)
        if tag not in ALLOWED:
            self.problems.append(f"<{tag}> is not among the tags in use")
        if tag not in VOID:
            self.open_tags.append(tag)
        if tag == "meta" and values.get("name") == "keywords":
            self.keywords = [word.strip() for word in values["content"].split(";") if word.strip()]
        elif tag == "meta" and values.get("name") == "topic":
            self.topics = values["content"].split()
        elif tag == "a":
            if "name" in values:
                if values["name"] in self.places:
                    self.problems.append(f"the place {values['name']} is there twice")
                self.places.add(values["name"])
            if "href" in values:
                self.links.append(values["href"])
        elif tag == "img":
            self.pictures.append(values.get("src", ""))
            if not values.get("alt"):
                self.problems.append(f"picture {values.get('src')} has no text in its place")

    def handle_endtag(self, tag):
        if not self.open_tags or self.open_tags.pop() != tag:
            self.problems.append(f"</{tag}> closes what is not open")
            self.open_tags.clear()

    def handle_data(self, data):
        if "title" in self.open_tags:
            self.title += data
        elif "h1" in self.open_tags:
            self.heading += data


def read_contents(path):
    """The pages by depth and name, in their order."""
    entries = []
    for line in path.read_text(encoding="utf-8").splitlines():
        if line.strip():
            entries.append(((len(line) - len(line.lstrip())) // 2, line.strip()))
    return entries


def target_of(pages, page, link):
    """Why a link leads nowhere, or None."""
    parts = urlsplit(link)
    if parts.scheme or parts.netloc:
        return "leads out of the help"
    name = parts.path or page.name
    if name not in pages:
        return "leads to no page"
    if parts.fragment and parts.fragment not in pages[name].places:
        return "leads to no place in the page"
    return None


def check(directory, pages, contents, sources):
    problems = [f"{page.name}: {problem}" for page in pages.values() for problem in page.problems]
    named = [name for _, name in contents]
    for name in sorted(set(named) ^ set(pages)):
        problems.append(f"contents.txt: {name} " + ("is no page" if name in named else "is missing"))
    for name in sorted({name for name in named if named.count(name) > 1}):
        problems.append(f"contents.txt: {name} stands there twice")
    depth_before = -1
    for depth, name in contents:
        if depth > depth_before + 1:
            problems.append(f"contents.txt: {name} belongs to nothing")
        depth_before = depth

    used = set()
    for page in pages.values():
        for link in page.links:
            if why := target_of(pages, page, link):
                problems.append(f"{page.name}: the link {link} {why}")
        for picture in page.pictures:
            used.add(picture)
            if not (directory / picture).is_file():
                problems.append(f"{page.name}: there is no picture {picture}")
    for picture in sorted((directory / "images").glob("*")):
        if f"images/{picture.name}" not in used:
            problems.append(f"images/{picture.name}: no page shows it")

    for kind in ("keywords", "topics"):
        owners = {}
        for page in pages.values():
            for entry in getattr(page, kind):
                word, _, place = entry.partition("@")
                if place and place not in page.places:
                    problems.append(f"{page.name}: {entry} leads to no place in the page")
                if word.lower() in owners:
                    problems.append(f"{page.name}: {owners[word.lower()]} has {word!r} already")
                owners[word.lower()] = page.name
                if kind == "topics" and not word.isdecimal() and f'"{word}"' not in sources:
                    problems.append(f"{page.name}: the program has no {word}")
    return problems, sorted(used)


def project(pages, contents, pictures):
    def reference(page, entry):
        word, _, place = entry.partition("@")
        return word, page.name + (f"#{place}" if place else "")

    lines = ['<?xml version="1.0" encoding="UTF-8"?>', '<QtHelpProject version="1.0">',
             f"<namespace>{NAMESPACE}</namespace>", "<virtualFolder>help</virtualFolder>",
             "<filterSection>", "<toc>"]
    depth_before = -1
    for depth, name in contents:
        lines += ["</section>"] * (depth_before - depth + 1)
        lines.append(f"<section title={quoteattr(pages[name].title)} ref={quoteattr(name)}>")
        depth_before = depth
    lines += ["</section>"] * (depth_before + 1) + ["</toc>", "<keywords>"]
    for page in pages.values():
        for entry in page.keywords:
            word, ref = reference(page, entry)
            lines.append(f"<keyword name={quoteattr(word)} ref={quoteattr(ref)}/>")
        for entry in page.topics:
            word, ref = reference(page, entry)
            identity = f"topic.{word}" if re.fullmatch(r"\d+", word) else word
            lines.append(f"<keyword id={quoteattr(identity)} ref={quoteattr(ref)}/>")
    lines += ["</keywords>", "<files>"]
    lines += [f"<file>{name}</file>" for name in [*pages, *pictures]]
    lines += ["</files>", "</filterSection>", "</QtHelpProject>", ""]
    return "\n".join(lines)


def main(source, target, program):
    directory = pathlib.Path(source)
    pages = {path.name: Page(path) for path in sorted(directory.glob("*.html"))}
    contents = read_contents(directory / "contents.txt")
    sources = "".join(path.read_text(encoding="utf-8") for path in pathlib.Path(program).rglob("*.cpp"))
    problems, pictures = check(directory, pages, contents, sources)
    for problem in problems:
        print(f"{directory}/{problem}", file=sys.stderr)
    if problems:
        return 1
    shutil.rmtree(target, ignore_errors=True)
    laid_out = pathlib.Path(target)
    for name in [*pages, *pictures]:
        (laid_out / name).parent.mkdir(parents=True, exist_ok=True)
        shutil.copyfile(directory / name, laid_out / name)
    (laid_out / "bhelp.qhp").write_text(project(pages, contents, pictures), encoding="utf-8")
    return 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
