// The page's own dialogs: messages, questions, prompts, the file picker and
// the text viewer. Each returns a promise of the user's answer.

import { get, Json, post, token } from "./api";

const modal = () => document.getElementById("modal") as HTMLDivElement;
const dialog = () => document.getElementById("dialog") as HTMLDivElement;

export function isOpen(): boolean {
  return !modal().hidden;
}

function open(title: string, body: (d: HTMLDivElement) => void): void {
  const d = dialog();
  d.replaceChildren();
  const h = document.createElement("h3");
  h.textContent = title;
  d.appendChild(h);
  body(d);
  modal().hidden = false;
}

function close(): void {
  modal().hidden = true;
  dialog().replaceChildren();
}

function buttons(d: HTMLElement, labels: string[], done: (i: number) => void, escIndex: number): void {
  const row = document.createElement("div");
  row.className = "buttons";
  labels.forEach((label, i) => {
    const b = document.createElement("button");
    b.textContent = label;
    b.dataset.answer = label;
    b.addEventListener("click", () => {
      close();
      done(i);
    });
    row.appendChild(b);
  });
  d.appendChild(row);
  (row.firstElementChild as HTMLButtonElement | null)?.focus();
  d.onkeydown = (e: KeyboardEvent) => {
    if (e.key === "Escape") {
      e.preventDefault();
      close();
      done(escIndex);
    }
  };
}

function textBlock(d: HTMLElement, text: string): void {
  const p = document.createElement("div");
  p.className = "text";
  p.textContent = text.replace(/\r\n/g, "\n");
  d.appendChild(p);
}

export function message(text: string): Promise<void> {
  return new Promise((resolve) =>
    open("VELM - Hydraulics", (d) => {
      d.dataset.kind = "message";
      textBlock(d, text);
      buttons(d, ["OK"], () => resolve(), 0);
    }));
}

export function question(text: string, choices: string[]): Promise<number> {
  return new Promise((resolve) =>
    open("VELM - Hydraulics", (d) => {
      d.dataset.kind = "question";
      textBlock(d, text);
      buttons(d, choices, resolve, choices.length - 1);
    }));
}

export function prompt(title: string): Promise<string | null> {
  return new Promise((resolve) =>
    open(title, (d) => {
      const input = document.createElement("input");
      input.type = "text";
      d.appendChild(input);
      buttons(d, ["OK", "Cancel"], (i) => resolve(i === 0 ? input.value : null), 1);
      input.focus();
      input.onkeydown = (e) => {
        if (e.key === "Enter") (d.querySelector(".buttons button") as HTMLButtonElement).click();
      };
    }));
}

// A file on the server's file system: folders to walk, a name to type for a save.
export function pickFile(mode: "open" | "save", filter: string, start: string): Promise<string | null> {
  const patterns = filter.split("|").filter((_, i) => i % 2 === 1);
  const first = patterns[0]?.replace("*", "") ?? "";
  return new Promise((resolve) => {
    let dir = start;
    open(mode === "open" ? "Open" : "Save As", (d) => {
      d.dataset.kind = "picker";
      const where = document.createElement("div");
      const list = document.createElement("ul");
      list.className = "files";
      const name = document.createElement("input");
      name.type = "text";
      name.placeholder = "File name";
      d.append(where, list, name);
      const show = async (path: string) => {
        const r: Json = await get(`/api/files?dir=${encodeURIComponent(path)}&token=${token}`);
        dir = r.dir;
        where.textContent = r.dir + (r.error ? ` (${r.error})` : "");
        list.replaceChildren();
        const up = document.createElement("li");
        up.textContent = "..";
        up.onclick = () => show(r.parent);
        list.appendChild(up);
        for (const e of r.entries) {
          if (!e.dir && first.startsWith(".") && !e.name.endsWith(first) && mode === "open" && !filter.includes("*.*")) continue;
          const li = document.createElement("li");
          li.textContent = e.dir ? e.name + "/" : e.name;
          li.onclick = () => (e.dir ? show(dir + "/" + e.name) : (name.value = e.name));
          li.ondblclick = () => {
            if (!e.dir) {
              close();
              resolve(dir + "/" + e.name);
            }
          };
          list.appendChild(li);
        }
      };
      void show(dir);
      buttons(d, [mode === "open" ? "Open" : "Save", "Cancel"], (i) => {
        if (i !== 0 || !name.value) return resolve(null);
        let file = name.value.startsWith("/") ? name.value : dir + "/" + name.value;
        if (mode === "save" && !/\.[A-Za-z0-9]+$/.test(file) && first.startsWith(".")) file += first;
        resolve(file);
      }, 1);
    });
  });
}

// A report or the run log, readable, with its download.
export function viewText(name: string, text: string, title?: string): Promise<void> {
  return new Promise((resolve) =>
    open(title ?? name, (d) => {
      d.dataset.kind = "viewer";
      const pre = document.createElement("pre");
      pre.className = "report";
      pre.textContent = text;
      const a = document.createElement("a");
      a.href = `/api/download/${name}?token=${token}`;
      a.textContent = "Download " + name;
      a.setAttribute("download", name);
      d.append(pre, a);
      buttons(d, ["Close"], () => resolve(), 0);
    }));
}

// The import dialog: simulator, file and the three choices, with the prompts
// the server gives; resolves with the command's arguments, or null.
export function importDialog(spec: Json, start: string): Promise<Json | null> {
  return new Promise((resolve) =>
    open("Import", (d) => {
      d.dataset.kind = "import";
      const sim = document.createElement("select");
      sim.name = "simulator";
      for (const s of spec.simulators) sim.add(new Option(s === "Project" ? "Project file (records)" : s, s, s === "File", s === "File"));
      const file = document.createElement("input");
      file.type = "text";
      file.name = "file";
      file.title = spec.prompts.file;
      file.placeholder = spec.prompts.file;
      const browse = document.createElement("button");
      browse.textContent = "Browse...";
      const checks: Record<string, HTMLInputElement> = {};
      const rows: HTMLElement[] = [sim, file, browse];
      for (const key of ["inlet", "outlet", "props"]) {
        const label = document.createElement("label");
        label.className = "check";
        const box = document.createElement("input");
        box.type = "checkbox";
        box.name = key;
        box.checked = true;
        checks[key] = box;
        label.append(box, " " + spec.prompts[key]);
        rows.push(label);
      }
      for (const r of rows) {
        const div = document.createElement("div");
        div.appendChild(r);
        d.appendChild(div);
      }
      browse.addEventListener("click", async () => {
        modal().hidden = true;
        const saved = [...d.childNodes];
        const keys = d.onkeydown;
        const picked = await pickFile("open", spec.filter, start);
        d.replaceChildren(...saved);
        d.onkeydown = keys;
        d.dataset.kind = "import";
        modal().hidden = false;
        if (picked) file.value = picked;
      });
      buttons(d, ["OK", "Cancel"], (i) =>
        resolve(i === 0 ? { simulator: sim.value, file: file.value, inlet: checks.inlet.checked,
          outlet: checks.outlet.checked, props: checks.props.checked } : null), 1);
    }));
}

// Options > Pipe data: each material's sizes and schedules with their bores
// (mm), edited cell by cell; the server judges each entry.
export function pipeTable(data: Json, start: string): Promise<void> {
  return new Promise((resolve) =>
    open("Pipe data", (d) => {
      d.dataset.kind = "pipes";
      const help = document.createElement("div");
      help.className = "help";
      const sel = document.createElement("select");
      sel.name = "material";
      for (const m of data.materials) sel.add(new Option(m.mat, m.mat));
      const wrap = document.createElement("div");
      wrap.className = "pipes";
      const send = async (args: Json) => {
        const r: Json = await post("/api/command/mnuOptionsPData", { args, answers: [] });
        help.textContent = (r.messages ?? []).join(" ");
        help.classList.toggle("refused", !!r.messages?.length && !args.file);
        if (r.pipes) data = r.pipes;
      };
      const table = () => {
        const m = data.materials.find((x: Json) => x.mat === sel.value);
        const cols = m.schedules.map((s: string, j: number) => [s, j]).filter(([s]: [string]) => s !== "");
        const t = document.createElement("table");
        const head = t.insertRow();
        for (const h of ["Size", "OD mm", ...cols.map(([s]: [string]) => s)]) head.insertCell().textContent = h;
        for (const size of m.sizes) {
          const row = t.insertRow();
          row.insertCell().textContent = size.name;
          row.insertCell().textContent = size.od.toFixed(2);
          for (const [s, j] of cols) {
            const input = document.createElement("input");
            input.type = "text";
            input.dataset.size = size.name;
            input.dataset.schedule = s;
            input.value = size.ids[j] > 0 ? String(Number(size.ids[j].toFixed(3))) : "";
            input.addEventListener("change", () =>
              void send({ mat: m.mat, size: size.name, schedule: s, id: input.value }));
            row.insertCell().appendChild(input);
          }
        }
        wrap.replaceChildren(t);
      };
      sel.addEventListener("change", table);
      table();
      const save = document.createElement("button");
      save.textContent = "Save table as...";
      save.addEventListener("click", async () => {
        modal().hidden = true;
        const saved = [...d.childNodes];
        const keys = d.onkeydown;
        const file = await pickFile("save", "Library Files (*.lib)|*.lib|Other Files (*.*)|*.*", start);
        d.replaceChildren(...saved);
        d.onkeydown = keys;
        d.dataset.kind = "pipes";
        modal().hidden = false;
        if (file) await send({ file });
      });
      d.append(sel, wrap, save, help);
      buttons(d, ["Close"], () => resolve(), 0);
    }));
}
