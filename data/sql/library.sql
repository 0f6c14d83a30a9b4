-- The question library: ready-made question texts, sorted into categories. It gives text only; the
-- author chooses the kind of question and its answers. Each text asks about one thing, in neutral
-- words, and reads the same whether it is answered in free text, by a choice or on a scale.

BEGIN;

CREATE TABLE category (
    id   INTEGER PRIMARY KEY AUTOINCREMENT,
    name TEXT COLLATE NOCASE
) STRICT;

CREATE TABLE question (
    id         INTEGER PRIMARY KEY AUTOINCREMENT,
    name       TEXT COLLATE NOCASE,
    categoryid INTEGER NOT NULL -- category.id
) STRICT;

CREATE INDEX question_by_category ON question (categoryid, name);

INSERT INTO category (id, name) VALUES
    (1, 'Customer satisfaction'),
    (2, 'Employees'),
    (3, 'Events'),
    (4, 'Products'),
    (5, 'Health visits'),
    (6, 'Courses and training'),
    (7, 'About the respondent'),
    (8, 'Websites');

INSERT INTO question (categoryid, name) VALUES
    -- Customer satisfaction
    (1, 'Overall, how satisfied or dissatisfied are you with our service?'),
    (1, 'How long have you been a customer of ours?'),
    (1, 'How often do you use our service?'),
    (1, 'What was the main reason for your most recent contact with us?'),
    (1, 'How easy or difficult was it to reach the right person?'),
    (1, 'How long did you wait before someone helped you?'),
    (1, 'How well did we understand what you needed?'),
    (1, 'Was your request settled by the end of the contact?'),
    (1, 'How would you rate the politeness of the person who helped you?'),
    (1, 'How did our service compare with what you expected?'),
    (1, 'How likely or unlikely are you to use our service again?'),
    (1, 'How likely or unlikely are you to recommend us to a friend or colleague?'),
    (1, 'What is the one thing we could do better?'),
    (1, 'What did we do well?'),

    -- Employees
    (2, 'Overall, how satisfied or dissatisfied are you with your job?'),
    (2, 'How clear are you about what is expected of you at work?'),
    (2, 'How often do you receive useful feedback on your work?'),
    (2, 'How manageable is your usual workload?'),
    (2, 'How well do the members of your team work together?'),
    (2, 'How comfortable do you feel raising a concern with your manager?'),
    (2, 'How would you rate the tools and equipment you work with?'),
    (2, 'How well does your job make use of your skills?'),
    (2, 'How satisfied or dissatisfied are you with your opportunities to learn?'),
    (2, 'How well informed are you about decisions that affect your work?'),
    (2, 'How well can you balance your work with your private life?'),
    (2, 'How likely or unlikely are you to be working here in two years?'),
    (2, 'What would you change first about the way we work?'),

    -- Events
    (3, 'How did you hear about this event?'),
    (3, 'What was your main reason for attending?'),
    (3, 'Overall, how would you rate the event?'),
    (3, 'How easy or difficult was it to register?'),
    (3, 'How suitable was the venue?'),
    (3, 'How would you rate the choice of speakers?'),
    (3, 'Which session was most useful to you?'),
    (3, 'Which session was least useful to you?'),
    (3, 'How would you rate the length of the event?'),
    (3, 'How would you rate the food and drink?'),
    (3, 'How many new contacts did you make?'),
    (3, 'How likely or unlikely are you to attend our next event?'),
    (3, 'Which topics would you like to see at a future event?'),

    -- Products
    (4, 'How often do you use this product?'),
    (4, 'How long have you owned this product?'),
    (4, 'What do you mainly use this product for?'),
    (4, 'Overall, how satisfied or dissatisfied are you with this product?'),
    (4, 'How would you rate the quality of this product?'),
    (4, 'How would you rate the value for money of this product?'),
    (4, 'How easy or difficult was it to set up this product?'),
    (4, 'How easy or difficult is this product to use?'),
    (4, 'How clear are the instructions that came with this product?'),
    (4, 'Which feature do you use most?'),
    (4, 'Which feature is missing?'),
    (4, 'Which other products did you consider before you bought this one?'),
    (4, 'How likely or unlikely are you to buy this product again?'),

    -- Health visits
    (5, 'What was the main reason for your visit?'),
    (5, 'How easy or difficult was it to get an appointment?'),
    (5, 'How many days did you wait for your appointment?'),
    (5, 'How long did you wait after your appointed time?'),
    (5, 'How clean was the waiting area?'),
    (5, 'How would you rate the helpfulness of the reception staff?'),
    (5, 'How well did the staff listen to you?'),
    (5, 'How clearly was your treatment explained to you?'),
    (5, 'How much were you involved in decisions about your care?'),
    (5, 'How satisfied or dissatisfied were you with the privacy during your visit?'),
    (5, 'Were you told whom to contact if you had questions after your visit?'),
    (5, 'Overall, how would you rate the care you received?'),

    -- Courses and training
    (6, 'Why did you choose this course?'),
    (6, 'How much did you know about the subject before the course?'),
    (6, 'How clear were the aims of the course?'),
    (6, 'How well was the course organized?'),
    (6, 'How would you rate the pace of the course?'),
    (6, 'How would you rate the difficulty of the course?'),
    (6, 'How well did the instructor explain the subject?'),
    (6, 'How useful were the course materials?'),
    (6, 'How much opportunity did you have to ask questions?'),
    (6, 'How useful will what you learned be in your work?'),
    (6, 'Which part of the course was most valuable to you?'),
    (6, 'Which part of the course would you change?'),
    (6, 'How likely or unlikely are you to recommend this course to others?'),

    -- About the respondent
    (7, 'What is your age group?'),
    (7, 'What is your gender?'),
    (7, 'In which country do you live?'),
    (7, 'What is your postal code?'),
    (7, 'What is the highest level of education you have completed?'),
    (7, 'What is your current employment status?'),
    (7, 'In which industry do you work?'),
    (7, 'How many people work for your organization?'),
    (7, 'How many people live in your household, including yourself?'),
    (7, 'How many children under 18 live in your household?'),
    (7, 'Which language do you mainly speak at home?'),
    (7, 'Which of these ranges includes your yearly household income before tax?'),

    -- Websites
    (8, 'How did you find our website?'),
    (8, 'How often do you visit our website?'),
    (8, 'What was the main purpose of your visit today?'),
    (8, 'Were you able to complete what you came to do?'),
    (8, 'How easy or difficult was it to find what you were looking for?'),
    (8, 'How would you rate the look of our website?'),
    (8, 'How quickly did the pages load for you?'),
    (8, 'How clear is the information on our website?'),
    (8, 'Which device did you use to visit our website?'),
    (8, 'How much do you trust the information on our website?'),
    (8, 'What would you add to our website?'),
    (8, 'How likely or unlikely are you to visit our website again?');

COMMIT;
