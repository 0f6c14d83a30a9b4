// Comfort only; the form does all it has to without this. Nothing typed is lost to a bad line, a
// page half filled in isn't left by accident, and a second press doesn't send twice.
"use strict";
(() => {
  const form = document.getElementById("form");
  const line = document.getElementById("line");
  const much = document.getElementById("much");
  let isTouched = false;
  let isLeaving = false;
  let isAsking = false;

  form.addEventListener("input", () => { isTouched = true; });
  addEventListener("beforeunload", (event) => {
    if (isTouched && !isLeaving) event.preventDefault();
  });
  addEventListener("pageshow", () => { isLeaving = isAsking = false; });

  // Asks whether the server is there before the page is given up.
  form.addEventListener("submit", async (event) => {
    event.preventDefault();
    if (isAsking) return;
    isAsking = true;
    line.hidden = much.hidden = true;
    const button = event.submitter ?? form.querySelector("button[name=go]");
    if (String(new URLSearchParams(new FormData(form))).length + 100 > Number(form.dataset.most)) {
      isAsking = false;
      much.hidden = false;
      return;
    }
    try {
      const reply = await fetch(form.action, { method: "HEAD", cache: "no-store", signal: AbortSignal.timeout(10000) });
      if (reply.status >= 500) throw reply.status; // it can't do anything just now
    } catch {
      isAsking = false;
      line.hidden = false;
      return;
    }
    const pressed = document.createElement("input");
    pressed.type = "hidden";
    pressed.name = button.name;
    pressed.value = button.value;
    form.append(pressed);
    isLeaving = true;
    form.submit();
    pressed.remove();
  });
})();
