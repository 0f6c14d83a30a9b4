// One page for each question, turned as in manual entry: an answer with a jump leads on to its
// target, and where that is gone, to the same page again.
"use strict";
const pages = [...document.querySelectorAll("section.page")];
const end = document.getElementById("end");
const previous = document.getElementById("previous");
const next = document.getElementById("next");
const save = document.getElementById("save");
const place = document.getElementById("place");
const told = document.getElementById("told");
const inputs = [...document.querySelectorAll("[data-key]")];
const hex = (bytes) =>
  [...crypto.getRandomValues(new Uint8Array(bytes))].map((b) => b.toString(16).padStart(2, "0")).join("");
const respondent = hex(16);
let at = 0;
let unsaved = false;

function show(to) {
  at = Math.max(0, Math.min(to, pages.length));
  pages.forEach((page, i) => { page.hidden = i !== at; });
  const finished = at === pages.length;
  end.hidden = !finished;
  next.hidden = finished;
  save.hidden = !finished;
  previous.disabled = at === 0;
  place.textContent = finished ? "Survey completed" : `Page ${at + 1} of ${pages.length}`;
  const heading = (finished ? end : pages[at]).querySelector("h2");
  heading.focus({ preventScroll: true });
  window.scrollTo(0, 0);
}

function answers() {
  const given = {};
  for (const input of inputs) {
    if (input.matches("textarea")) {
      if (input.value !== "") given[input.dataset.key] = input.value.replace(/\r?\n/g, "\r\n");
    } else if (input.checked) {
      given[input.dataset.key] = input.value;
    }
  }
  return given;
}

function now() {
  const date = new Date();
  const two = (number) => String(number).padStart(2, "0");
  return {
    day: `${date.getFullYear()}-${two(date.getMonth() + 1)}-${two(date.getDate())}`,
    time: `${two(date.getHours())}:${two(date.getMinutes())}:${two(date.getSeconds())}`,
  };
}

next.addEventListener("click", () => {
  const chosen = pages[at].querySelector("input[data-jump]:checked");
  if (!chosen) return show(at + 1);
  const target = Number(chosen.dataset.jump);
  show(target < 0 ? at : target);
});
previous.addEventListener("click", () => show(at - 1));
save.addEventListener("click", () => {
  const { day, time } = now();
  const text = JSON.stringify({
    format: "pollarix-answers", version: 1, respondent, submitted: `${day} ${time}`, answers: answers(),
  }, null, 1);
  const link = document.createElement("a");
  link.download = `answers-${day}-${time.replaceAll(":", "")}-${respondent.slice(0, 6)}.json`;
  link.href = URL.createObjectURL(new Blob([text], { type: "application/json" }));
  document.body.append(link);
  link.click();
  link.remove();
  setTimeout(() => URL.revokeObjectURL(link.href), 60000);
  unsaved = false;
  told.textContent = `Saved as ${link.download}. Please give this file to whoever gave you this page.`;
});
document.addEventListener("input", () => { unsaved = true; told.textContent = ""; });
window.addEventListener("beforeunload", (event) => { if (unsaved) event.preventDefault(); });
document.getElementById("turn").hidden = false;
document.getElementById("place").hidden = false;
show(0);
