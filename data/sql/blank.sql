-- The template of a new survey: every table of a survey file, its format version and the answer
-- scales each survey starts with. It holds no questions.
--
-- Tables are STRICT, so that text in a number column is refused instead of stored. Every id is
-- AUTOINCREMENT: an id is never used again, since the answers to a deleted question stay in the
-- file and must not attach themselves to a new one.

PRAGMA application_id = 0x504C5853; -- "PLXS": lets a file manager tell a survey from other databases

BEGIN;

-- One row. The format version is read from the first column, whatever its name.
CREATE TABLE version (
    version REAL NOT NULL
) STRICT;

CREATE TABLE question (
    id         INTEGER PRIMARY KEY AUTOINCREMENT,
    question   TEXT,                        -- rich text, or plain text
    questionno TEXT COLLATE NOCASE,         -- the number shown; '' or Null for none
    qtype      INTEGER NOT NULL DEFAULT 0,  -- 0 open ended, 1 check, 2 radio, 3 matrix, 4 instruction
    pos        INTEGER NOT NULL DEFAULT 0,  -- place in the survey, from 1
    Deleteme   INTEGER NOT NULL DEFAULT 0   -- mark of a save under way
) STRICT;

CREATE TABLE response (
    id                    INTEGER PRIMARY KEY AUTOINCREMENT,
    questionid            INTEGER NOT NULL,           -- question.id
    name                  TEXT,
    pos                   INTEGER NOT NULL DEFAULT 0, -- place in the question, from 1
    responseMatrixGroupID INTEGER,                    -- responsematrixgroup.id
    LogicJumpToQuestionID INTEGER,                    -- question.id; Null for no jump
    Deleteme              INTEGER NOT NULL DEFAULT 0
) STRICT;

CREATE TABLE responsematrixgroup (
    id   INTEGER PRIMARY KEY AUTOINCREMENT,
    name TEXT
) STRICT;

CREATE TABLE responsematrix (
    id                    INTEGER PRIMARY KEY AUTOINCREMENT,
    name                  TEXT,
    ResponseMatrixGroupID INTEGER NOT NULL,          -- responsematrixgroup.id
    pos                   INTEGER NOT NULL DEFAULT 0 -- place in the scale, from 0
) STRICT;

CREATE TABLE respondent (
    id            INTEGER PRIMARY KEY AUTOINCREMENT,
    submitteddate TEXT NOT NULL DEFAULT (strftime('%Y-%m-%d %H:%M:%f', 'now', 'localtime')),
    source        TEXT COLLATE NOCASE
) STRICT;

-- One row an answer: the chosen response, the typed text, or for a matrix the point of the scale
-- (ResponseMatrixID) that was chosen for the sub question (ResponseID).
CREATE TABLE respondent_responses (
    id               INTEGER PRIMARY KEY AUTOINCREMENT,
    RespondentID     INTEGER NOT NULL, -- respondent.id
    QuestionID       INTEGER NOT NULL, -- question.id
    ResponseID       INTEGER,          -- response.id; the constant 1 for a typed answer
    SimpleResponse   TEXT,
    ResponseMatrixID INTEGER           -- responsematrix.id; Null but for a matrix
) STRICT;

CREATE INDEX question_by_pos ON question (pos);
CREATE INDEX response_by_question ON response (questionid, pos);
CREATE INDEX responsematrix_by_group ON responsematrix (ResponseMatrixGroupID, pos);
CREATE INDEX respondent_by_date ON respondent (submitteddate);
CREATE INDEX respondent_by_source ON respondent (source);

-- Two indexes serve every statement on the answers. The first finds one respondent's answers, and
-- gives those to one question in the order they were stored; new respondents append to its end,
-- which keeps an import cheap. The second counts answers without touching the table. Its column
-- order suits both counts (of a response within its question, and of a response at a point of its
-- scale) and keeps it from being mistaken for the better way to one respondent's answers.
CREATE INDEX answers_by_respondent ON respondent_responses (RespondentID, QuestionID);
CREATE INDEX answers_by_response
    ON respondent_responses (ResponseID, ResponseMatrixID, QuestionID);

INSERT INTO version (version) VALUES (1.7);

-- Scale 1 is never offered: it is what a question has that was read without responses, and so what a
-- matrix stays with that got its rows after a save. Its points are those of scale 2, which a question
-- changed to a matrix starts with. They stand last: the ids of all others stay what they were.
INSERT INTO responsematrixgroup (id, name) VALUES
    (1, 'Reserved'),
    (2, 'Agreement'),
    (3, 'Satisfaction'),
    (4, 'Quality'),
    (5, 'Frequency'),
    (6, 'Importance'),
    (7, 'Likelihood'),
    (8, 'Ease'),
    (9, 'Familiarity'),
    (10, 'Change'),
    (11, 'Yes or no'),
    (12, 'Rating from 1 to 5');

-- A scale is shown as its points joined with "/", so no point holds a slash.
INSERT INTO responsematrix (ResponseMatrixGroupID, pos, name) VALUES
    (2, 0, 'Strongly agree'),
    (2, 1, 'Agree'),
    (2, 2, 'Neither agree nor disagree'),
    (2, 3, 'Disagree'),
    (2, 4, 'Strongly disagree'),

    (3, 0, 'Very satisfied'),
    (3, 1, 'Satisfied'),
    (3, 2, 'Neither satisfied nor dissatisfied'),
    (3, 3, 'Dissatisfied'),
    (3, 4, 'Very dissatisfied'),

    (4, 0, 'Excellent'),
    (4, 1, 'Good'),
    (4, 2, 'Average'),
    (4, 3, 'Poor'),
    (4, 4, 'Very poor'),

    (5, 0, 'Always'),
    (5, 1, 'Often'),
    (5, 2, 'Sometimes'),
    (5, 3, 'Rarely'),
    (5, 4, 'Never'),

    (6, 0, 'Extremely important'),
    (6, 1, 'Very important'),
    (6, 2, 'Moderately important'),
    (6, 3, 'Slightly important'),
    (6, 4, 'Not at all important'),

    (7, 0, 'Very likely'),
    (7, 1, 'Likely'),
    (7, 2, 'Neither likely nor unlikely'),
    (7, 3, 'Unlikely'),
    (7, 4, 'Very unlikely'),

    (8, 0, 'Very easy'),
    (8, 1, 'Easy'),
    (8, 2, 'Neither easy nor difficult'),
    (8, 3, 'Difficult'),
    (8, 4, 'Very difficult'),

    (9, 0, 'Extremely familiar'),
    (9, 1, 'Very familiar'),
    (9, 2, 'Moderately familiar'),
    (9, 3, 'Slightly familiar'),
    (9, 4, 'Not at all familiar'),

    (10, 0, 'Much better'),
    (10, 1, 'Somewhat better'),
    (10, 2, 'About the same'),
    (10, 3, 'Somewhat worse'),
    (10, 4, 'Much worse'),

    (11, 0, 'Yes'),
    (11, 1, 'No'),
    (11, 2, 'Not sure'),

    (12, 0, '5 (highest)'),
    (12, 1, '4'),
    (12, 2, '3'),
    (12, 3, '2'),
    (12, 4, '1 (lowest)'),

    (1, 0, 'Strongly agree'),
    (1, 1, 'Agree'),
    (1, 2, 'Neither agree nor disagree'),
    (1, 3, 'Disagree'),
    (1, 4, 'Strongly disagree');

COMMIT;
