// Writes a survey document as the program publishes it, from a short description of its questions.

const kinds = { open: 0, check: 1, radio: 2, matrix: 3, text: 4 };

export function surveyDocument(questions) {
  const lines = ["<app>Pollarix</app>", "<user></user>", "<key></key>", "<version>1.4</version>"];
  let id = 0;
  let number = 0;
  for (const question of questions) {
    const questionId = ++id;
    const responses = question.responses ?? [];
    lines.push("<q>", `\t<DatabaseID>${questionId}</DatabaseID>`,
      `\t<Question>${question.text}</Question>`,
      `\t<QuestionNo>${question.kind === "text" ? "" : ++number}</QuestionNo>`,
      `\t<QType>${kinds[question.kind]}</QType>`,
      `\t<OpenEnded_NoOfRows>${question.rows ?? 0}</OpenEnded_NoOfRows>`, "\t<r>");
    if (["check", "radio", "matrix"].includes(question.kind)) {
      lines.push(`\t<ResponsesCount>${responses.length}</ResponsesCount>`, "\t\t<Response>");
      responses.forEach((text, place) => {
        if (question.kind === "matrix") {
          lines.push(`\t\t\t<ReponseMatrixCount>${question.scale.length}</ReponseMatrixCount>`);
          question.scale.forEach((point, i) => lines.push(
            `\t\t\t\t<ResponseMatrixID>${1000 + i}</ResponseMatrixID>`,
            `\t\t\t\t<ResponseMatrixName>${point}</ResponseMatrixName>`));
        }
        lines.push(`\t\t\t<QuestionID>${questionId}</QuestionID>`, `\t\t\t<Name>${text}</Name>`,
          `\t\t\t<DatabaseID>${++id}</DatabaseID>`, `\t\t\t<Pos>${place + 1}</Pos>`,
          "\t\t\t<ResponseMatrixGroupID>1</ResponseMatrixGroupID>");
      });
      lines.push("\t\t</Response>");
    }
    lines.push("\t</r>", "</q>");
  }
  return Buffer.from(lines.join("\n").replace(/\n/g, "\r\n") + "\r\n", "latin1");
}

export const visit = [
  { kind: "text", text: "Thank you for coming to our museum.\nIt takes three minutes; every question may be left out.\n\n    Your answers are anonymous." },
  { kind: "open", text: "What brought you here <today> & why?", rows: 3 },
  { kind: "radio", text: "How often do you come?", responses: ["This was the first time", "About once a year", "More often, for I live around the corner and can't get enough of the dinosaurs in the great hall"] },
  { kind: "check", text: "Which rooms did you see?", responses: ["Dinosaurs", "Minerals", "The caf\u00e9", "Supercalifragilisticexpialidociousnesses_without_any_blank_at_all_in_it"] },
  { kind: "matrix", text: "How did you like ...", responses: ["the exhibition", "the guides, their patience and their answers to the children", "the price"], scale: ["Very much", "Rather", "So-so", "Not much", "Not at all"] },
  { kind: "matrix", text: "From 1 to 10", responses: ["Light"], scale: ["1", "2", "3", "4", "5", "6", "7", "8", "9", "10"] },
  { kind: "open", text: "" },
];
