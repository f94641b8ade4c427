// One form renderer for every equipment dialog: the server describes the
// fields (name, label, unit, hint, tab, text on show, value in force) and
// judges OK; the page lays them out and sends the texts back.

import { get, Json, post, put } from "./api";
import * as ui from "./ui";
import { machinePlot, profilePlot } from "./plot";

const modal = () => document.getElementById("modal") as HTMLDivElement;
const dialogBox = () => document.getElementById("dialog") as HTMLDivElement;

// A value in force with six significant figures at most.
function readable(text: string): string {
  const v = Number(text);
  return text !== "" && Number.isFinite(v) && text.length > 8 ? String(Number(v.toPrecision(6))) : text;
}

// The dialog's unit boxes, one per quantity: a change converts the texts on
// show of that quantity, and OK sends the texts with the units they are in.
function unitBoxes(d: Json, inputs: Map<string, HTMLInputElement | HTMLSelectElement>, chosen: Record<string, string>,
                   unitLabels: Map<string, HTMLElement[]>): HTMLElement {
  const bar = document.createElement("div");
  bar.className = "units";
  for (const [cls, box] of Object.entries<Json>(d.units ?? {})) {
    if (!box.choices?.length) continue;
    chosen[cls] = box.unit;
    const label = document.createElement("label");
    label.textContent = cls.replace(/_/g, " ") + " ";
    const sel = document.createElement("select");
    sel.dataset.units = cls;
    for (const u of box.choices) sel.add(new Option(u, u, u === box.unit, u === box.unit));
    if (!box.choices.includes(box.unit)) sel.add(new Option(box.unit, box.unit, true, true));
    sel.addEventListener("change", async () => {
      const names = d.fields.filter((f: Json) => f.unit_class === cls).map((f: Json) => f.name);
      const texts: Record<string, string> = {};
      for (const n of names) texts[n] = inputs.get(n)?.value ?? "";
      const r: Json = await post("/api/convert", { class: cls, from: chosen[cls], to: sel.value, texts });
      for (const n of names) {
        const input = inputs.get(n);
        if (input && r.texts?.[n] !== undefined) input.value = r.texts[n];
      }
      for (const span of unitLabels.get(cls) ?? []) span.textContent = sel.value;
      chosen[cls] = sel.value;
    });
    label.appendChild(sel);
    bar.appendChild(label);
  }
  return bar;
}

// The entries of a case string one case at a time, in the help line; Apply
// writes them back as one string (entry n for case number n).
function caseEditor(input: HTMLInputElement, cases: number[], help: HTMLElement): void {
  const entries = input.value.split(";");
  const boxes = new Map<number, HTMLInputElement>();
  help.replaceChildren();
  help.dataset.cases = "true";
  for (const n of cases) {
    const label = document.createElement("label");
    label.textContent = ` Case ${n} `;
    const box = document.createElement("input");
    box.type = "text";
    box.size = 8;
    box.dataset.case = String(n);
    box.value = entries.length === 1 ? entries[0] : entries[n - 1] ?? "";
    boxes.set(n, box);
    label.appendChild(box);
    help.appendChild(label);
  }
  const apply = document.createElement("button");
  apply.textContent = "Apply";
  apply.dataset.answer = "Apply";
  apply.addEventListener("click", () => {
    const last = Math.max(...cases);
    const out: string[] = [];
    for (let n = 1; n <= last; n++) out.push(boxes.get(n)?.value.trim() ?? "");
    input.value = out.join(";");
    help.replaceChildren();
    delete help.dataset.cases;
  });
  help.appendChild(apply);
}

interface CaseInfo {
  cases: number[];
  caseDialog: boolean;
}

function fieldRow(f: Json, help: HTMLElement, inputs: Map<string, HTMLInputElement | HTMLSelectElement>,
                  cases: CaseInfo = { cases: [], caseDialog: false }): HTMLElement {
  const row = document.createElement("label");
  row.className = "field";
  const name = document.createElement("span");
  name.className = "name";
  name.textContent = f.label || f.name;
  let input: HTMLInputElement | HTMLSelectElement;
  if (f.readonly) {
    // A calculated value: shown, not typed; OK never writes it.
    const t = document.createElement("input");
    t.type = "text";
    t.readOnly = true;
    t.className = "result";
    t.value = readable(f.text ?? "");
    input = t;
  } else if (f.choices && f.choices.length) {
    const sel = document.createElement("select");
    for (const c of f.choices) sel.add(new Option(c, c, false, c === f.text));
    if (!f.choices.includes(f.text)) sel.add(new Option(f.text, f.text, true, true));
    input = sel;
  } else {
    const t = document.createElement("input");
    t.type = "text";
    t.value = f.text ?? "";
    input = t;
  }
  input.name = f.name;
  input.dataset.field = f.name;
  const helpFree = () => !help.dataset.cases && !help.dataset.asking;
  input.addEventListener("focus", () => {
    if (helpFree()) help.textContent = f.hint ?? "";
  });
  input.addEventListener("blur", () => {
    if (helpFree()) help.textContent = "";
  });
  inputs.set(f.name, input);
  const unit = document.createElement("span");
  unit.className = "unit";
  unit.textContent = f.unit ?? "";
  const calc = document.createElement("span");
  calc.className = "calc";
  calc.textContent = readable(f.calculated ?? "");
  calc.title = "Value in force (calculated or specified)";
  if (f.pair && f.calculated !== undefined) {
    // A double click on the entry opens its case dialog where the project asks
    // for one, and otherwise copies the value in force into it.
    input.addEventListener("dblclick", () => {
      if (!(input instanceof HTMLInputElement)) return;
      if (cases.caseDialog && cases.cases.length > 1) caseEditor(input, cases.cases, help);
      else input.value = f.calculated;
    });
  }
  row.append(name, input, unit, calc);
  return row;
}

// Asks the program's question in the help line; the answer's index goes to `answer`.
// While it stands, an entry's focus does not take the help line.
function askInHelp(help: HTMLElement, question: Json, answer: (i: number) => void): void {
  help.replaceChildren(question.text + " ");
  help.dataset.asking = "true";
  question.choices.forEach((c: string, i: number) => {
    const b = document.createElement("button");
    b.textContent = c;
    b.dataset.answer = c;
    b.addEventListener("click", () => {
      delete help.dataset.asking;
      help.replaceChildren();
      answer(i);
    });
    help.appendChild(b);
  });
}

// Fills the curve with the project's typical curve through the present point,
// after the program's question, asked inside the dialog; the texts on show follow.
function typicalCurveButton(url: string, inputs: Map<string, HTMLInputElement | HTMLSelectElement>,
                            help: HTMLElement): HTMLButtonElement {
  const b = document.createElement("button");
  b.textContent = "Typical curve";
  b.dataset.answer = "Typical curve";
  const send = async (answers: number[]) => {
    const r: Json = await post(`${url}/typical-curve`, { answers });
    if (r.question) {
      askInHelp(help, r.question, (i) => void send([i]));
      return;
    }
    help.textContent = r.message ?? "";
    for (const f of r.fields ?? []) {
      const input = inputs.get(f.name);
      if (input) input.value = f.text;
    }
  };
  b.addEventListener("click", () => void send([]));
  return b;
}

// Flashes the line's fluid as typed with the project's engine: the entries
// take what the flash found (OK keeps them), and the flash's trace shows
// under the buttons; a refusal or a failed flash shows in the help line.
function flashButton(url: string, inputs: Map<string, HTMLInputElement | HTMLSelectElement>,
                     chosen: Record<string, string>, help: HTMLElement, log: HTMLPreElement): HTMLButtonElement {
  const b = document.createElement("button");
  b.textContent = "Flash";
  b.dataset.answer = "Flash";
  b.addEventListener("click", async () => {
    const fields: Record<string, string> = {};
    for (const [name, input] of inputs) fields[name] = input.value;
    const r: Json = await post(`${url}/flash`, { fields, units: chosen });
    log.textContent = (r.log ?? "").replace(/^\r\n/, "");
    log.hidden = !log.textContent;
    help.textContent = r.message ?? "";
    help.classList.toggle("refused", !!r.message);
    for (const f of r.fields ?? []) {
      const input = inputs.get(f.name);
      if (input) input.value = f.readonly ? readable(f.text) : f.text;
    }
  });
  return b;
}

// How a dialog hands a menu command to the page (set by the page at start).
let runCommand: (name: string, args: Json) => Promise<void> = async () => {};
export function setCommandRunner(run: (name: string, args: Json) => Promise<void>): void {
  runCommand = run;
}

// The pseudo component dialog's own commands: which one is on show, a new
// one, and deleting the one on show; each closes this dialog first.
function pseudoControls(d: Json, close: (changed: boolean) => void, help: HTMLElement): HTMLElement {
  const bar = document.createElement("div");
  bar.className = "pseudos";
  const pick = document.createElement("select");
  pick.name = "pseudo";
  (d.pseudos ?? []).forEach((name: string, i: number) => pick.add(new Option(name, String(i + 1), false, i + 1 === d.index)));
  pick.addEventListener("change", () => {
    close(false);
    void runCommand("mnuProcessPseudo", { index: Number(pick.value) });
  });
  const add = document.createElement("button");
  add.textContent = "New";
  add.dataset.answer = "New";
  add.addEventListener("click", () => {
    close(false);
    void runCommand("mnuProcessPseudo", { add: true });
  });
  const del = document.createElement("button");
  del.textContent = "Delete";
  del.dataset.answer = "Delete";
  del.addEventListener("click", () => {
    help.textContent = "";
    close(false);
    void runCommand("mnuProcessPseudo", { delete: d.index });
  });
  bar.append(pick, add, del);
  return bar;
}

// Opens the dialog of an item; resolves true when OK changed the project.
export function editItem(kind: string, index: number): Promise<boolean> {
  return editDialog(`/api/dialog/${kind}/${index}`, `/api/plot/${kind}/${index}`);
}

// Opens the dialog of an Options menu command.
export function editOptions(name: string): Promise<boolean> {
  return editDialog(`/api/options/${name}`, "");
}

async function editDialog(url: string, plotUrl: string): Promise<boolean> {
  const d: Json = await get(url);
  if (!d.fields) {
    await ui.message(d.message ?? "No dialog.");
    return false;
  }
  const plot: Json = plotUrl ? await get(plotUrl) : null;
  return new Promise((resolve) => {
    const box = dialogBox();
    box.replaceChildren();
    box.dataset.kind = "form";
    box.dataset.form = d.form;
    const title = document.createElement("h3");
    title.textContent = ["Options", "Library", "Icon"].includes(d.kind) ? d.form : `${d.form} - ${d.kind} ${d.index}`;
    const help = document.createElement("div");
    help.className = "help";
    const inputs = new Map<string, HTMLInputElement | HTMLSelectElement>();
    const tabs = new Map<string, HTMLElement>();
    const tabBar = document.createElement("div");
    tabBar.className = "tabs";
    const pages = document.createElement("div");
    const show = (tab: string) => {
      for (const [name, p] of tabs) p.hidden = name !== tab;
      for (const x of tabBar.children) x.classList.toggle("on", (x as HTMLElement).dataset.tab === tab);
    };
    const pageOf = (tab: string): HTMLElement => {
      let page = tabs.get(tab);
      if (page) return page;
      page = document.createElement("div");
      page.className = "page";
      page.dataset.tab = tab;
      page.hidden = tabs.size > 0;
      tabs.set(tab, page);
      pages.appendChild(page);
      const b = document.createElement("button");
      b.textContent = tab;
      b.dataset.tab = tab;
      b.className = tabs.size === 1 ? "on" : "";
      b.addEventListener("click", () => show(tab));
      tabBar.appendChild(b);
      return page;
    };
    const unitLabels = new Map<string, HTMLElement[]>();
    for (const f of d.fields) {
      const row = pageOf(f.tab || "General").appendChild(
        fieldRow(f, help, inputs, { cases: d.cases ?? [], caseDialog: !!d.caseDialog }));
      if (f.unit_class) unitLabels.set(f.unit_class, [...(unitLabels.get(f.unit_class) ?? []), row.querySelector(".unit") as HTMLElement]);
    }
    const chosen: Record<string, string> = {};
    const bar = url.startsWith("/api/dialog/") ? unitBoxes(d, inputs, chosen, unitLabels) : null;
    if (plot && (plot.cases?.length || plot.lines?.length))
      pageOf("Plot").appendChild(plot.cases ? machinePlot(plot) : profilePlot(plot));
    const buttons = document.createElement("div");
    buttons.className = "buttons";
    if (/^\/api\/dialog\/(Pump|Comp)\//.test(url)) buttons.appendChild(typicalCurveButton(url, inputs, help));
    const log = document.createElement("pre");
    log.className = "flash-log";
    log.hidden = true;
    if (d.form === "frmPhase") buttons.appendChild(flashButton(url, inputs, chosen, help, log));
    const ok = document.createElement("button");
    ok.textContent = "OK";
    ok.dataset.answer = "OK";
    const cancel = document.createElement("button");
    cancel.textContent = "Cancel";
    cancel.dataset.answer = "Cancel";
    buttons.append(ok, cancel);
    box.append(title, ...(bar && bar.childElementCount ? [bar] : []), ...(tabs.size > 1 ? [tabBar] : []), pages, help, log, buttons);
    if (d.kind === "Pseudo") title.after(pseudoControls(d, (changed) => close(changed), help));
    if (d.note) {
      const note = document.createElement("div");
      note.className = "note";
      note.textContent = d.note;
      title.after(note);
    }
    // Another record of the library: the dialog of that one.
    inputs.get("COMPONENT")?.addEventListener("change", (e) => {
      close(false);
      void runCommand("mnuOptionsProp", { number: parseInt((e.target as HTMLSelectElement).value, 10) });
    });
    modal().hidden = false;
    (inputs.values().next().value as HTMLElement | undefined)?.focus();

    const close = (changed: boolean) => {
      modal().hidden = true;
      box.replaceChildren();
      box.onkeydown = null;
      resolve(changed);
    };
    const submit = async (answers: number[]) => {
      const fields: Record<string, string> = {};
      for (const [name, input] of inputs) fields[name] = input.value;
      const r: Json = await put(url, { fields, units: chosen, answers });
      if (r.question) {
        askInHelp(help, r.question, (i) => void submit([i]));
        return;
      }
      if (r.message) {
        help.textContent = r.message;
        help.classList.add("refused");
        box.dataset.refused = r.message;
        return;
      }
      close(true);
    };
    ok.addEventListener("click", () => void submit([]));
    cancel.addEventListener("click", () => close(false));
    box.onkeydown = (e: KeyboardEvent) => {
      if (e.key === "Escape") {
        e.preventDefault();
        close(false);
      } else if (e.key === "Enter" && (e.target as HTMLElement).tagName !== "BUTTON") {
        e.preventDefault();
        ok.click();
      }
    };
  });
}
