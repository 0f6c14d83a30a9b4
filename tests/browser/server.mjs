// A survey server of its own, and what the program does with one: its calls, and its upload.
import { spawn, spawnSync } from "node:child_process";
import { mkdtempSync, rmSync, writeFileSync } from "node:fs";
import http from "node:http";
import net from "node:net";
import { tmpdir } from "node:os";
import { join } from "node:path";

const program = process.env.POLLARIX_SERVER ?? "build/dev/bin/pollarix-server";

export const password = "Sesame-93";

export async function startServer() {
  const directory = mkdtempSync(join(tmpdir(), "pollarix-browser-"));
  const settings = join(directory, "settings");
  writeFileSync(settings, "http = 127.0.0.1:0\nftp = 127.0.0.1:0\nsubmissions-per-minute = 10000\nnew-accounts-per-day = 100\n");
  const options = ["--data", join(directory, "data"), "--config", settings];
  const added = spawnSync(program, [...options, "user", "add", "ann"], { input: password + "\n" });
  if (added.status !== 0) throw new Error(String(added.stderr));
  const child = spawn(program, [...options, "serve"], { stdio: ["ignore", "pipe", "ignore"] });
  process.on("exit", () => child.kill("SIGTERM"));
  const words = await new Promise((resolve, reject) => {
    let text = "";
    child.stdout.on("data", (bytes) => {
      text += bytes;
      if (text.includes("Ready.\n")) resolve(text);
    });
    child.on("exit", () => reject(new Error("The server ended: " + text)));
  });
  const url = /Survey server: (\S+)/.exec(words)[1];
  const ftpPort = Number(/uploads: \S+:(\d+)/.exec(words)[1]);
  return {
    url,
    // The command doesn't know on which port this one came to serve.
    invite: () => url + /CreateAccount\S+/.exec(String(
      spawnSync(program, [...options, "user", "invite"]).stdout))[0],
    call: (name, ...values) => call(url, name, values),
    publish: (name, document, isPublic = true) => publish(url, ftpPort, name, document, isPublic),
    stop: () => new Promise((resolve) => {
      child.removeAllListeners("exit").on("exit", () => {
        rmSync(directory, { recursive: true });
        resolve();
      });
      child.kill("SIGTERM");
    }),
  };
}

// The value of a reply, or all of it when it has none.
async function call(url, name, values) {
  const { hostname, port } = new URL(url);
  const query = values.map((value, i) => `&param${i + 1}=${value}`).join("");
  const body = await new Promise((resolve, reject) => {
    const target = `/ws/CallFunc.php?func=${name}${query}&refreshme=1`;
    // As the program sends it: only what can't stand in the line of a request is encoded.
    const path = Buffer.from(target).toString("latin1").replace(/[^\x21-\x7e]/g,
      (byte) => "%" + byte.charCodeAt(0).toString(16).padStart(2, "0"));
    http.get({ hostname, port, path }, (reply) => {
      const chunks = [];
      reply.on("data", (chunk) => chunks.push(chunk));
      reply.on("end", () => resolve(Buffer.concat(chunks).toString("latin1")));
    }).on("error", reject);
  });
  return /^Success<br>(.*)<br>/s.exec(body)?.[1] ?? body;
}

// The user, the survey, and the address of its form.
async function publish(url, ftpPort, name, document, isPublic) {
  const user = await call(url, "GetWebUserID", ["ann", password]);
  let survey = await call(url, "GetSurveyID", [name, user]);
  if (!/^\d+$/.test(survey)) survey = await call(url, "CreateSurvey", [user, name]);
  await upload(ftpPort, `${user}-${survey}.xml`, document);
  const form = await call(url, "MoveNewSurvey",
    [`${user}-${survey}.xml`, survey, isPublic ? "True" : "False", user]);
  if (!form.startsWith("http")) throw new Error(form);
  return { user, survey, form };
}

async function upload(port, name, document) {
  const control = net.connect(port, "127.0.0.1");
  let pending = "";
  let wake = () => {};
  control.on("data", (bytes) => { pending += bytes; wake(); });
  const reply = async () => {
    let end;
    while ((end = pending.indexOf("\r\n")) < 0) await new Promise((resolve) => { wake = resolve; });
    const line = pending.slice(0, end);
    pending = pending.slice(end + 2);
    return line;
  };
  const ask = async (command, wanted) => {
    control.write(command + "\r\n");
    const line = await reply();
    if (!line.startsWith(wanted)) throw new Error(`${command}: ${line}`);
    return line;
  };
  await reply();
  await ask("USER anonymous", "331");
  await ask("PASS someone", "230");
  await ask("CWD incoming", "250");
  await ask("TYPE I", "200");
  const parts = /\((.*)\)/.exec(await ask("PASV", "227"))[1].split(",");
  const data = net.connect(Number(parts[4]) * 256 + Number(parts[5]), "127.0.0.1");
  await ask("STOR " + name, "1");
  data.end(document);
  const done = await reply();
  control.end();
  if (!done.startsWith("226")) throw new Error(done);
}
