#!/usr/bin/env python3
"""Makes the sample survey: a museum asks its visitors, and some hundred have answered.

    make-sample.py blank.mdb museum-visit.plxs

The survey has every kind of question, and jumps. The respondents are invented, but hang together:
who liked the visit says so in every answer, and nobody answers a question that a jump passed over.
The same file comes out at every run.
"""

import datetime
import os
import random
import shutil
import sqlite3
import sys

OPEN, CHECK, RADIO, MATRIX, INSTRUCTION = range(5)

# An answer scale that blank.mdb brings along.
QUALITY = 4

RESPONDENTS = 320
FIRST_DAY = datetime.date(2024, 5, 4)
DAYS = 44

# name: (kind, text, responses or sub questions, scale, {response: question jumped to}). The summary
# sorts by the number's text, so that nine numbers stand in their order there.
QUESTIONS = {
    "welcome": (
        INSTRUCTION,
        r"{\b Thank you for visiting the museum.} Your answers help us plan the coming year. "
        r"The survey takes about {\ul three minutes}.",
        [], 1, {}),
    "first": (
        RADIO, "Was this your first visit to the museum?",
        ["Yes", "No"], 1, {"Yes": "heard"}),
    "often": (
        RADIO, "How often have you visited the museum in the past 12 months?",
        ["Once", "Two or three times", "Four times or more"], 1, {}),
    "heard": (
        CHECK, "How did you hear about the museum?",
        ["Friends or family", "Website", "Social media", "Poster or newspaper", "Tourist office",
         "School"], 1, {}),
    "came for": (
        RADIO, "What did you mainly come to see?",
        ["The permanent collection", "Ships and harbors", "Light and glass",
         "A guided tour or workshop", "Nothing in particular"], 1, {}),
    "rating": (
        MATRIX, "How would you rate each of the following?",
        ["The exhibits", "The labels and texts", "The staff", "The caf\u00e9", "The shop"],
        QUALITY, {}),
    "company": (
        RADIO, "Who did you come with?",
        ["Alone", "With a partner or friends", "With children", "With a group"], 1,
        {"Alone": "liked"}),
    "people": (
        RADIO, "How many people were you, including yourself?",
        ["2", "3 or 4", "5 or more"], 1, {}),
    "liked": (OPEN, "What did you like most?", [], 1, {}),
    "better": (OPEN, "What could we do better?", [], 1, {}),
    "thanks": (
        INSTRUCTION,
        r"{\b Thank you for your time.} We read every answer.", [], 1, {}),
}

LIKED = {
    "The permanent collection": [
        "The old town model, I could have stood there for an hour.",
        "The rooms upstairs. Quiet, well lit, time to look.",
        "That so much of the collection is from our own region.",
        "The drawers you may open yourself."],
    "Ships and harbors": [
        "The lightship! And the sound of the foghorn.",
        "The models of the ferries, I came over on one of them as a child.",
        "Ships and harbors, especially the film of the launch.",
        "The knots table. My hands are still sore."],
    "Light and glass": [
        "The dark room with the colored glass.",
        "Watching the glassblower at work.",
        "The lamps from the 1920s, beautifully shown.",
        "The light installation in the stairwell."],
    "A guided tour or workshop": [
        "Our guide, who knew everything and made us laugh.",
        "The printing workshop. We took three posters home.",
        "That the children were allowed to touch things.",
        "The tour behind the scenes."],
    "Nothing in particular": [
        "The courtyard.",
        "The building itself.",
        "It was raining, and then it was lovely.",
        "The caf\u00e9 and the view over the river."],
}

BETTER = {
    "The labels and texts": [
        "Larger print on the labels, please.",
        "More texts in English.",
        "Some labels are too low to read when it is crowded."],
    "The caf\u00e9": [
        "The caf\u00e9 closes too early.",
        "The queue in the caf\u00e9 was long, and there was only one till.",
        "More choice for vegetarians in the caf\u00e9."],
    "The shop": [
        "The shop had no postcards of the paintings.",
        "The shop is a bit expensive."],
    "The staff": [
        "We asked three people for the lift and got three answers.",
        "Nobody was at the cloakroom."],
    "The exhibits": [
        "Two of the screens were out of order.",
        "More to see for small children.",
        "A few more benches in the large rooms."],
}

# Said after it by some, so that not all say the same.
LIKED_MORE = ["", "", "", " Thank you!", " We will be back.", " A lovely afternoon.",
              " And the staff were so kind."]
BETTER_MORE = ["", "", "", " Otherwise all was well.", " A small thing, I know.",
               " I said the same last year."]


def rtf(text):
    """A question's text as it is stored: rich text, with what is not ASCII written as codes."""
    coded = "".join(c if ord(c) < 128 else f"\\u{ord(c)}?" for c in text)
    return r"{\rtf1\ansi\ansicpg1252\deff0{\fonttbl{\f0\fnil Arial;}}\f0\fs20 " + coded + "}"


def write_questions(survey):
    """Stores the questions in order. Gives their ids, and the ids of their responses, by name."""
    questions, responses = {}, {}
    number = 0
    for pos, (name, (kind, text, _, _, _)) in enumerate(QUESTIONS.items(), start=1):
        if kind != INSTRUCTION:
            number += 1
        questions[name] = survey.execute(
            "INSERT INTO question (question, questionno, qtype, pos) VALUES (?, ?, ?, ?)",
            (rtf(text), "" if kind == INSTRUCTION else str(number), kind, pos)).lastrowid
    # A jump may point forward, so that responses can only be stored when all questions are.
    for name, (_, _, texts, scale, jumps) in QUESTIONS.items():
        for pos, text in enumerate(texts, start=1):
            jump = questions[jumps[text]] if text in jumps else None
            responses[name, text] = survey.execute(
                "INSERT INTO response (questionid, name, pos, responseMatrixGroupID, "
                "LogicJumpToQuestionID) VALUES (?, ?, ?, ?, ?)",
                (questions[name], text, pos, scale, jump)).lastrowid
    return questions, responses


class Visitor:
    """One invented visitor: what he is like decides what he answers."""

    def __init__(self, chance):
        self.chance = chance
        # 0 is content with everything, 4 with nothing; most are content.
        self.mood = min(4.0, max(0.0, chance.normalvariate(1.0, 0.8)))
        self.age = chance.choices(("young", "grown up", "middle-aged", "old"), (22, 29, 26, 23))[0]
        self.company = self.pick(
            "company", (14, 44, 2, 40) if self.age == "young" else
            (18, 40, 34, 8) if self.age == "grown up" else (26, 52, 8, 14))
        self.first = self.pick("first", (30, 70) if self.age == "old" else (52, 48))
        self.came_for = self.pick(
            "came for", (12, 30, 10, 40, 8) if self.company == "With children" else
            (30, 22, 26, 10, 12))
        self.ratings = {}

    def pick(self, name, weights):
        return self.chance.choices(QUESTIONS[name][2], weights)[0]

    def point(self, shift):
        """A point of a scale from 0, best, to 4, worst."""
        return min(4, max(0, round(self.chance.normalvariate(self.mood + shift, 0.7))))

    def heard(self):
        likely = {
            "Friends or family": 0.42, "Website": 0.31,
            "Social media": 0.5 if self.age == "young" else 0.14,
            "Poster or newspaper": 0.38 if self.age in ("middle-aged", "old") else 0.12,
            "Tourist office": 0.3 if self.first == "Yes" else 0.05,
            "School": 0.4 if self.age == "young" else 0.04}
        return [text for text, share in likely.items() if self.chance.random() < share]

    def people(self):
        return self.pick("people", {
            "With a partner or friends": (70, 26, 4), "With children": (24, 62, 14)
        }.get(self.company, (4, 18, 78)))

    def rating(self):
        """The points of the matrix by sub question; some leave a sub question out."""
        self.ratings = {
            text: self.point(shift)
            for text, shift in zip(QUESTIONS["rating"][2], (-0.5, 0.2, -0.6, 0.7, 0.4))
            if self.chance.random() < 0.97}
        return self.ratings

    def liked(self):
        if self.chance.random() < 0.35 + 0.1 * self.mood:
            return ""
        return self.chance.choice(LIKED[self.came_for]) + self.chance.choice(LIKED_MORE)

    def better(self):
        worst = max((text for text in BETTER if text in self.ratings),
                    key=self.ratings.get, default=None)
        if worst is None or self.chance.random() < 0.75 - 0.18 * self.mood:
            return "" if self.chance.random() < 0.8 else "Nothing, keep it up!"
        return self.chance.choice(BETTER[worst]) + self.chance.choice(BETTER_MORE)

    def answer(self, name):
        """Text, response, list of responses, or points by sub question."""
        return {
            "first": lambda: self.first,
            "often": lambda: self.pick("often", (46, 38, 16)),
            "heard": self.heard,
            "came for": lambda: self.came_for,
            "rating": self.rating,
            "company": lambda: self.company,
            "people": self.people,
            "liked": self.liked,
            "better": self.better,
        }[name]()


def write_answers(survey, respondent, visitor, questions, responses, points):
    """Walks the questions as the program does, from page to page and along the jumps."""
    names = list(QUESTIONS)
    last = len(names) if visitor.chance.random() < 0.95 else visitor.chance.randrange(3, len(names))
    position = 0
    while position < last:
        name = names[position]
        kind, _, _, scale, jumps = QUESTIONS[name]
        position += 1
        if kind == INSTRUCTION:
            continue
        answer = visitor.answer(name)
        if kind == OPEN:
            rows = [(1, answer, None)]
        elif kind == MATRIX:
            rows = [(responses[name, text], "", points[scale][point])
                    for text, point in answer.items()]
        else:
            chosen = answer if kind == CHECK else [answer]
            rows = [(responses[name, text], "", None) for text in chosen]
            if kind == RADIO and answer in jumps:
                position = names.index(jumps[answer])
        survey.executemany(
            "INSERT INTO respondent_responses (RespondentID, QuestionID, ResponseID, "
            "SimpleResponse, ResponseMatrixID) VALUES (?, ?, ?, ?, ?)",
            [(respondent, questions[name], *row) for row in rows])


def submitted(chance):
    """A moment within the survey's weeks; weekends are busier, and nobody answers at night."""
    while True:
        day = FIRST_DAY + datetime.timedelta(days=chance.randrange(DAYS))
        if day.weekday() == 0 or (day.weekday() < 5 and chance.random() < 0.45):
            continue
        second = round(chance.triangular(10, 21, 16.5) * 3600)
        moment = datetime.datetime.combine(day, datetime.time()) + datetime.timedelta(
            seconds=second, milliseconds=chance.randrange(1000))
        return moment.isoformat(" ", "milliseconds")


def main(template, target):
    chance = random.Random(1702)
    unfinished = target + ".new"
    shutil.copyfile(template, unfinished)
    survey = sqlite3.connect(unfinished)
    with survey:
        questions, responses = write_questions(survey)
        points = {}
        for scale, point in survey.execute(
                "SELECT ResponseMatrixGroupID, id FROM responsematrix ORDER BY pos"):
            points.setdefault(scale, []).append(point)
        for moment in sorted(submitted(chance) for _ in range(RESPONDENTS)):
            source = "Web" if chance.random() < 0.7 else "Manual Entry"
            respondent = survey.execute(
                "INSERT INTO respondent (submitteddate, source) VALUES (?, ?)",
                (moment, source)).lastrowid
            write_answers(survey, respondent, Visitor(chance), questions, responses, points)
    survey.close()
    os.replace(unfinished, target)


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__.strip().splitlines()[2].strip())
    main(sys.argv[1], sys.argv[2])
