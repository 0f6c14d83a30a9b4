// The pages of those who hold surveys.
import assert from "node:assert/strict";
import { after, before, test } from "node:test";

import { checkPage, openVisitor, startBrowser, turn, widths } from "./browser.mjs";
import { surveyDocument, visit } from "./document.mjs";
import { password, startServer } from "./server.mjs";

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

for (const width of widths)
  for (const hasScript of [true, false])
    test(`a survey is looked after, ${width} px, script ${hasScript}`, async () => {
      const name = `Museum<${width}>${hasScript}`;
      const published = await server.publish(name, surveyDocument(visit));
      const { context, page, faults } = await openVisitor(browser, server,
        { hasScript, viewport: { width, height: 700 } });
      const button = (words) => page.getByRole("button", { name: words, exact: true });

      await page.goto(server.url + "surveys"); // leads to the login
      await checkPage(page, "login", width);
      await page.getByLabel("User name").fill("ann");
      await page.getByLabel("Password").fill("wrong");
      await turn(page, button("Log in"));
      await page.getByText("The user name or the password is wrong.").waitFor();
      await checkPage(page, "login-wrong", width);
      await page.getByLabel("Password").fill(password);
      await turn(page, button("Log in"));
      await page.getByRole("heading", { name: "Your surveys" }).waitFor();
      await checkPage(page, "surveys", width);

      await turn(page, page.getByRole("link", { name }));
      assert.equal(await page.getByLabel("For respondents").inputValue(), published.form);
      assert.ok(await page.getByAltText("QR code", { exact: false }).evaluate((img) => img.naturalWidth > 0));
      await checkPage(page, "survey", width);
      await page.getByLabel("All questions on one page").check();
      await page.getByLabel("Until (UTC)").fill("2001-01-01T00:00");
      await turn(page, button("Save"));
      await page.getByText("Closed since 2001-01-01").first().waitFor();
      await page.goto(published.form);
      await page.getByRole("heading", { name: "This survey is closed" }).waitFor();
      await checkPage(page, "closed", width);
      await page.goBack();
      await page.getByLabel("Until (UTC)").fill("");
      await turn(page, button("Save"));
      await page.getByText("The settings have been saved.").waitFor();
      await checkPage(page, "saved", width);

      await turn(page, page.getByRole("link", { name: "Open the form" }));
      await checkPage(page, "one-page", width);
      await page.getByRole("textbox").first().fill("=1+1 \u0416");
      await turn(page, button("Send"));
      await page.getByRole("heading", { name: "Thank you" }).waitFor();
      await page.goto(`${server.url}surveys/${published.survey}`);
      await page.getByText("can't show: 1").waitFor();
      await checkPage(page, "survey-answered", width);
      const download = page.waitForEvent("download");
      await page.getByRole("link", { name: "CSV" }).click();
      assert.equal((await download).suggestedFilename(), `survey-${published.survey}.csv`);

      await turn(page, button("Delete"));
      await page.getByText("Please tick the box").waitFor();
      await checkPage(page, "not-deleted", width);
      await page.getByLabel("Yes, delete this survey").check();
      await turn(page, button("Delete"));
      await button("Have it back").waitFor();
      await checkPage(page, "deleted", width);
      await turn(page, button("Have it back"));
      await page.getByText("The survey is back.").waitFor();

      await turn(page, page.getByRole("link", { name: "Account" }));
      await checkPage(page, "account", width);
      await turn(page, button("Log out"));
      await page.getByRole("heading", { name: "Log in" }).waitFor();
      await page.goto(server.url + "CreateAccount.php");
      await checkPage(page, "invitation-only", width);
      await page.goto(server.invite());
      await page.getByLabel("User name").fill("ann");
      await page.getByLabel("Password, 8 characters or more").fill("long enough");
      await turn(page, button("Create the account"));
      await page.getByText("There is an account of this name already.").waitFor();
      await checkPage(page, "new-account", width);
      await page.getByLabel("User name").fill(`bob ${width} ${hasScript}`);
      await page.getByLabel("Password, 8 characters or more").fill("long enough");
      await turn(page, button("Create the account"));
      await page.getByText("There are none yet.").waitFor();
      await checkPage(page, "no-surveys", width);
      assert.deepEqual(faults, []);
      await context.close();
    });
