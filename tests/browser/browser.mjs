// Debian's Chromium, and what every page has to keep in every state.
import assert from "node:assert/strict";
import { mkdirSync } from "node:fs";
import { join } from "node:path";

import axe from "axe-core";
import { chromium } from "playwright-core";

export const widths = [320, 768, 1280];

const pictures = process.env.POLLARIX_PICTURES;

export function startBrowser() {
  return chromium.launch({
    executablePath: process.env.CHROMIUM ?? "/usr/bin/chromium",
    args: ["--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
      "--disable-background-networking", "--disable-component-update", "--disable-sync"],
  });
}

// Presses what leads to another page, and waits for that.
export async function turn(page, control) {
  const turned = page.waitForEvent("load");
  await control.click();
  await turned;
}

// A visitor who notes what no page may do: ask others than its own server, and break its own rules.
// Without script the page gets none of ours; the checks need one of their own.
export async function openVisitor(browser, server, { hasScript = true, ...options } = {}) {
  const context = await browser.newContext({ viewport: { width: 1280, height: 800 }, ...options });
  if (!hasScript)
    await context.route("**/*.js", (route) => route.fulfill({ body: "" }));
  context.setDefaultTimeout(20000);
  const page = await context.newPage();
  const faults = [];
  context.on("request", (request) => {
    if (!request.url().startsWith(server.url)) faults.push("asked for " + request.url());
  });
  page.on("console", (message) => {
    // What a test does on purpose: no line, and a status of 4xx.
    if (message.type() === "error" && !/Failed to load resource/.test(message.text()))
      faults.push(message.text());
  });
  page.on("pageerror", (error) => faults.push(String(error)));
  return { context, page, faults };
}

// No violation that axe knows, nothing beside the screen, not heavier than a page may be.
export async function checkPage(page, name, width) {
  await page.evaluate(axe.source);
  const result = await page.evaluate(() => axe.run({
    runOnly: ["wcag2a", "wcag2aa", "wcag21a", "wcag21aa", "wcag22aa", "best-practice"],
  }));
  const told = result.violations.map(
    (violation) => violation.id + ": " + violation.nodes.map((node) => node.html).join(" | "));
  assert.deepEqual(told, [], `${name} at ${width}`);
  assert.ok(result.passes.length > 5, `${name}: axe has looked at nothing`);
  const sizes = await page.evaluate(() => ({
    content: document.documentElement.scrollWidth,
    screen: innerWidth,
    bytes: new Blob([document.documentElement.outerHTML]).size,
  }));
  assert.ok(sizes.content <= sizes.screen, `${name} at ${width} is ${sizes.content} wide`);
  assert.ok(sizes.bytes < 30000, `${name} has ${sizes.bytes} bytes`);
  if (pictures) {
    mkdirSync(pictures, { recursive: true });
    await page.screenshot({ path: join(pictures, `${name}-${width}.png`), fullPage: true });
  }
}
