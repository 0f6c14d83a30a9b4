// A survey is published, answered in the browser in every way that people have, and collected.
import assert from "node:assert/strict";
import { after, before, test } from "node:test";

import { checkPage, openVisitor, startBrowser, turn, widths } from "./browser.mjs";
import { surveyDocument, visit } from "./document.mjs";
import { startServer } from "./server.mjs";

let server;
let browser;
before(async () => {
  server = await startServer();
  browser = await startBrowser();
});
after(async () => {
  await browser?.close();
  await server?.stop();
});

// The records of the results file that waits, as lists of "question kind values".
async function collect({ user, survey }) {
  const file = await server.call("GetSurveyResults", `${user}-${survey}.txt`);
  return file.split("<userresponse>").slice(1).map((block) => block.split("<r>").slice(1).map(
    (record) => {
      const values = [...record.matchAll(/<(Response|text)>(.*?)<\/\1>/gs)].map((match) => match[2]);
      return [/<QuestionNo>(\d+)</.exec(record)[1], /<QType>(\d)</.exec(record)[1], ...values].join(" ");
    }));
}

const answered = ["1 4", "2 0 It's <b>raining</b>\n&amp; \xe9 ?", "3 2 5", "7 1 8 10",
  "12 3 1001,13 1004,15", "16 3 1009,17", "18 0 "];

const button = (page, name) => page.getByRole("button", { name, exact: true });

async function answerPage(page, place) {
  if (place === 1) await page.getByRole("textbox").fill("It's <b>raining</b>\n&amp; \u00e9 \u0416");
  if (place === 2) await page.getByLabel("About once a year").check();
  if (place === 3) {
    await page.getByLabel("Dinosaurs").check();
    await page.getByLabel("The caf\u00e9").check();
  }
  if (place === 4) {
    await page.getByRole("radiogroup", { name: "the exhibition" }).getByLabel("Rather").check();
    await page.getByRole("radiogroup", { name: "the price" }).getByLabel("Not at all").check();
  }
  if (place === 5) await page.getByRole("radiogroup", { name: "Light" }).getByLabel("10").check();
}

for (const width of widths) {
  for (const hasScript of [true, false]) {
    const how = `${width} px ${hasScript ? "with" : "without"} script`;
    test(`one question a page, ${how}`, async () => {
      const published = await server.publish(how, surveyDocument(visit));
      const { context, page, faults } = await openVisitor(browser, server,
        { hasScript, viewport: { width, height: 700 } });
      await page.goto(published.form);
      for (let place = 0; place < visit.length; ++place) {
        assert.match(await page.title(), new RegExp(`^Page ${place + 1} of 7`));
        await answerPage(page, place);
        await checkPage(page, `form-${place}`, width);
        if (place === 4) { // the answers of a page that is left backwards stay, too
          await turn(page, button(page, "Back"));
          assert.ok(await page.getByLabel("Dinosaurs").isChecked());
          await turn(page, button(page, "Next"));
          assert.ok(await page.getByRole("radiogroup", { name: "the price" })
            .getByLabel("Not at all").isChecked());
        }
        if (place === 5) { // goes on elsewhere, by the link
          await turn(page, button(page, "Save and go on later"));
          await checkPage(page, "later", width);
          const link = await page.getByLabel("Your link").inputValue();
          await page.goto(link);
          assert.match(await page.title(), /^Page 6 of 7/);
          assert.ok(await page.getByLabel("10", { exact: true }).isChecked());
        }
        await turn(page, button(page, place + 1 < visit.length ? "Next" : "Send"));
      }
      await page.getByRole("heading", { name: "Thank you" }).waitFor();
      await checkPage(page, "thanks", width);
      assert.deepEqual(await collect(published), [answered]);
      // Again by F5, and by Back and Send.
      await page.reload();
      await page.getByRole("heading", { name: "Thank you" }).waitFor();
      await page.goBack();
      await turn(page, button(page, "Send"));
      await page.getByRole("heading", { name: "Thank you" }).waitFor();
      assert.deepEqual(await collect(published), [answered]);
      assert.deepEqual(await context.cookies(), []);
      assert.deepEqual(faults, []);
      await context.close();
    });
  }
}

test("a browser that runs no script at all", async () => {
  const published = await server.publish("plain", surveyDocument(visit));
  const context = await browser.newContext({ javaScriptEnabled: false });
  const page = await context.newPage();
  await page.goto(published.form);
  for (let place = 0; place < visit.length; ++place) {
    await answerPage(page, place);
    await turn(page, page.locator("button.main"));
  }
  await page.getByRole("heading", { name: "Thank you" }).waitFor();
  assert.deepEqual(await collect(published), [answered]);
  await context.close();
});

test("keys alone answer and send", async () => {
  const published = await server.publish("keys", surveyDocument(visit.slice(2, 4)));
  const { context, page } = await openVisitor(browser, server);
  await page.goto(published.form);
  await page.keyboard.press("Tab");
  await page.keyboard.press("ArrowDown");
  const turned = page.waitForEvent("load");
  await page.keyboard.press("Enter");
  await turned;
  await page.getByLabel("Minerals").focus();
  await page.keyboard.press("Space");
  await page.keyboard.press("Enter");
  await page.getByRole("heading", { name: "Thank you" }).waitFor();
  assert.deepEqual(await collect(published), [["1 2 3", "5 1 7"]]);
  await context.close();
});

test("a bad line and a hasty hand lose nothing", async () => {
  const published = await server.publish("line", surveyDocument(visit.slice(1, 2)));
  const { context, page } = await openVisitor(browser, server);
  await page.goto(published.form);
  await page.getByRole("textbox").fill("kept");
  await context.setOffline(true);
  await button(page, "Send").click();
  await page.getByText("The server cannot be reached.").waitFor();
  await checkPage(page, "no-line", 1280);
  assert.equal(await page.getByRole("textbox").inputValue(), "kept");
  const warned = new Promise((resolve) => page.once("dialog", (dialog) => {
    dialog.dismiss();
    resolve(dialog.type());
  }));
  await page.close({ runBeforeUnload: true });
  assert.equal(await warned, "beforeunload");
  await context.setOffline(false);
  await page.locator("button[value=send]").evaluate((send) => { send.click(); send.click(); });
  await page.getByRole("heading", { name: "Thank you" }).waitFor();
  assert.deepEqual(await collect(published), [["1 0 kept"]]);
  await context.close();
});

test("more than can be sent stays where it was typed", async () => {
  const published = await server.publish("much", surveyDocument(visit.slice(1, 2)));
  for (const hasScript of [true, false]) {
    const { context, page, faults } = await openVisitor(browser, server, { hasScript });
    await page.goto(published.form);
    await page.getByRole("textbox").evaluate((area) => {
      area.removeAttribute("maxlength");
      area.value = "\u0639".repeat(200000); // six bytes each, as they are sent
    });
    if (hasScript) {
      await button(page, "Send").click();
    } else {
      await turn(page, button(page, "Send"));
      await checkPage(page, "too-much", 1280);
    }
    await page.getByText("too long to be sent").waitFor();
    if (!hasScript) await page.goBack();
    assert.equal((await page.getByRole("textbox").inputValue()).length, 200000);
    assert.deepEqual(faults, []);
    await context.close();
  }
});

test("other languages, the dark, and faults", async () => {
  const published = await server.publish("A & B", surveyDocument(visit), false);
  for (const width of widths)
    for (const [locale, colorScheme] of [["ar", "dark"], ["de", "light"]]) {
      const { context, page, faults } = await openVisitor(browser, server,
        { locale, colorScheme, viewport: { width, height: 700 } });
      await page.goto(published.form);
      assert.equal(await page.evaluate(() => getComputedStyle(document.body).direction),
        locale === "ar" ? "rtl" : "ltr");
      await checkPage(page, "form-" + locale, width);
      await turn(page, page.locator("button[value=next]"));
      // Longer than the box lets anybody type.
      await page.locator("textarea").evaluate((area) => {
        area.removeAttribute("maxlength");
        area.value = "\u0639".repeat(10001);
      });
      await turn(page, page.locator("button[value=next]"));
      await page.getByRole("alert").first().waitFor();
      assert.ok(await page.getByRole("alert").first().evaluate((alert) => alert === document.activeElement));
      await checkPageOfMuchText(page, "too-long-" + locale, width);
      for (const path of ["", "s/elsewhere", "nothing"]) {
        await page.goto(server.url + path);
        await checkPage(page, `page-${path.replace("/", "-")}-${locale}`, width);
        assert.equal(await page.getByText("A & B").count(), 0); // private
      }
      assert.deepEqual(faults, []);
      await context.close();
    }
});

// What was typed makes this one heavy.
async function checkPageOfMuchText(page, name, width) {
  await page.locator("textarea").evaluate((area) => { area.textContent = "\u0639".repeat(5000); });
  await checkPage(page, name, width);
}
