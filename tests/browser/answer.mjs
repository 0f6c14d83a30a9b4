// Answers a form in the browser at three widths, with and without script, each time otherwise, and
// writes what was clicked and typed as JSON: "question|words of the response|text|words of the point".
//   node answer.mjs ADDRESS
import assert from "node:assert/strict";

import { checkPage, openVisitor, startBrowser, turn, widths } from "./browser.mjs";

const form = process.argv[2];
const server = { url: new URL("/", form).href };

// The page's fields, in their order.
function fieldsOf(page) {
  return page.evaluate(() => [...document.querySelectorAll(
    "input[type=radio], input[type=checkbox], textarea")].map((field) => ({
    name: field.name,
    type: field.type,
    value: field.value,
    words: field.closest("label")?.querySelector(".words").textContent ?? "",
    row: field.closest(".row")?.querySelector(":scope > .words").textContent ?? "",
  })));
}

// Which of a question's boxes this respondent ticks.
function isTicked(field, place, count, turnOf) {
  return field.type === "checkbox" ? (place + turnOf) % 2 === 0 : place === turnOf % count;
}

async function fill(page, turnOf) {
  const given = [];
  const fields = await fieldsOf(page);
  for (const field of fields) {
    const question = /^q(\d+)/.exec(field.name)[1];
    if (field.type === "textarea") {
      const text = `No. ${turnOf}: "5 \u20ac" & caf\u00e9 <b>\nand more`;
      await page.locator(`textarea[name="${field.name}"]`).fill(text);
      given.push(`${question}||${text}|`);
      continue;
    }
    const together = fields.filter((other) => other.name === field.name);
    if (!isTicked(field, together.indexOf(field), together.length, turnOf + Number(question))) continue;
    await page.locator(`input[name="${field.name}"][value="${field.value}"]`).check();
    given.push(field.row === "" ? `${question}|${field.words}||`
      : `${question}|${field.row}||${field.words}`);
  }
  return given;
}

const browser = await startBrowser();
const all = [];
for (const width of widths)
  for (const hasScript of [true, false]) {
    const { context, page, faults } = await openVisitor(browser, server,
      { hasScript, viewport: { width, height: 700 } });
    await page.goto(form);
    const given = [];
    for (let place = 0; await page.locator("form").count() > 0; ++place) {
      assert.ok(place < 50, "the form has no end");
      given.push(...await fill(page, all.length));
      await checkPage(page, `museum-${place}`, width);
      await turn(page, page.locator("button.main"));
    }
    await page.getByRole("heading", { name: "Thank you" }).waitFor();
    assert.deepEqual(faults, []);
    all.push(given);
    await context.close();
  }
await browser.close();
process.stdout.write(JSON.stringify(all));
