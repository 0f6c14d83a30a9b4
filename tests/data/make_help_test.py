"""Makes a small help that is right, spoils it in each way that make-help.py has to refuse, and looks
whether it does.

    make_help_test.py scripts/make-help.py
"""

import contextlib
import io
import pathlib
import runpy
import sys
import tempfile
import unittest

PAGE = """<html><head><title>{title}</title>
<meta name="topic" content="{topic}">
<meta name="keywords" content="{keywords}">
</head><body><h1>{title}</h1>
<p><a name="top"></a><a href="{link}">On</a> <img src="images/a.png" alt="A window"></p>
</body></html>
"""

# What is wrong, which file, what in it becomes what, and what is said. A text of None takes the file away.
FAULTS = [
    ("a link to no page", "one.html", "two.html", "three.html", "three.html#top leads to no page"),
    ("a link to no place", "one.html", "two.html#top", "two.html#end", "leads to no place"),
    ("a link outward", "one.html", "two.html#top", "https://pollarix.example/", "leads out of the help"),
    ("no picture", "images/a.png", None, None, "there is no picture images/a.png"),
    ("no text for a picture", "one.html", ' alt="A window"', "", "no text in its place"),
    ("an unknown dialog", "one.html", "frmOne", "frmOnr", "the program has no frmOnr"),
    ("a dialog twice", "one.html", "frmOne", "frmTwo", "has 'frmTwo' already"),
    ("a number twice", "two.html", "frmTwo", "frmTwo 1", "has '1' already"),
    ("a keyword of two pages", "two.html", "Second", "first", "has 'first' already"),
    ("a keyword twice in a page", "two.html", "Second", "Second; Second", "has 'Second' already"),
    ("a keyword for no place", "two.html", "Second", "Second@end", "Second@end leads to no place"),
    ("a place twice", "two.html", "</p>", '<a name="top"></a></p>', "the place top is there twice"),
    ("no keywords", "two.html", "Second", "", "no keywords"),
    ("another heading", "two.html", "<h1>Two", "<h1>Three", "differ"),
    ("an open tag", "two.html", "</p>", "", "closes what is not open"),
    ("a tag out of use", "two.html", "<p>", "<p><font></font>", "<font> is not among"),
    ("not in the contents", "contents.txt", "  two.html\n", "", "two.html is missing"),
    ("twice in the contents", "contents.txt", "one.html\n", "one.html\none.html\n", "stands there twice"),
    ("belongs to nothing", "contents.txt", "  two", "    two", "two.html belongs to nothing"),
]


class MakeHelp(unittest.TestCase):
    def make(self, spoil=lambda directory: None):
        """The exit code of the script, what it said, and the project file it wrote."""
        with tempfile.TemporaryDirectory() as name:
            directory = pathlib.Path(name)
            (directory / "help/images").mkdir(parents=True)
            (directory / "src").mkdir()
            (directory / "src/a.cpp").write_text('"frmOne" "frmTwo"')
            (directory / "help/images/a.png").touch()
            (directory / "help/contents.txt").write_text("one.html\n  two.html\n")
            for file, values in {
                "one.html": ("One", "1 frmOne@top", "First; Of all@top", "two.html#top"),
                "two.html": ("Two", "frmTwo", "Second", "#top"),
            }.items():
                text = PAGE.format(**dict(zip(("title", "topic", "keywords", "link"), values)))
                (directory / "help" / file).write_text(text)
            spoil(directory / "help")
            with contextlib.redirect_stderr(io.StringIO()) as said:
                code = MAIN(directory / "help", directory / "out", directory / "src")
            project = directory / "out/bhelp.qhp"
            return code, said.getvalue(), project.read_text() if project.exists() else ""

    def test_writes_the_project_of_a_help_that_is_right(self):
        code, said, project = self.make()
        self.assertEqual((code, said), (0, ""))
        for line in ('<keyword id="topic.1" ref="one.html"/>', '<keyword id="frmOne" ref="one.html#top"/>',
                     '<keyword name="Second" ref="two.html"/>', "<file>images/a.png</file>"):
            self.assertIn(line, project)

    def test_refuses_each_fault_and_says_where(self):
        for what, file, old, new, message in FAULTS:
            def spoil(directory):
                if old is None:
                    (directory / file).unlink()
                    return
                text = (directory / file).read_text()
                self.assertIn(old, text)
                (directory / file).write_text(text.replace(old, new, 1))
            with self.subTest(what):
                code, said, project = self.make(spoil)
                self.assertEqual((code, project), (1, ""), said)
                self.assertIn(message, said)

    def test_refuses_a_picture_that_no_page_shows(self):
        code, said, _ = self.make(lambda directory: (directory / "images/b.png").touch())
        self.assertEqual(code, 1)
        self.assertIn("images/b.png: no page shows it", said)


if __name__ == "__main__":
    MAIN = runpy.run_path(sys.argv.pop(1))["main"]
    unittest.main()
