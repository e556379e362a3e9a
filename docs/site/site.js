// Search without a server, and buttons that copy code. Without this file all pages can be read all the same.
"use strict";

const root = document.currentScript.dataset.root;
const mostFound = 12;

// Words of a title, also those of a function's name: TarnGetRadioStats has tarn, get, radio and stats.
function wordsOf(title) {
  return title.replace(/([a-z0-9])([A-Z])/g, "$1 $2").toLowerCase().split(/[^a-z0-9]+/).filter(Boolean);
}

// How well a page fits one word that is looked for; 0 if it does not.
function fit(page, word) {
  if (page.title === word) return 100;
  if (page.title.startsWith(word)) return 60;
  if (page.words.includes(word)) return 45;
  if (page.words.some((each) => each.startsWith(word))) return 35;
  if (page.title.includes(word)) return 20;
  if ((" " + page.text).includes(" " + word)) return 6;
  return page.text.includes(word) || page.kind.includes(word) ? 2 : 0;
}

function prepared([title, address, kind, text]) {
  return { shown: { title, address, kind, text }, title: title.toLowerCase(), words: wordsOf(title),
    kind: kind.toLowerCase(), text: text.toLowerCase() };
}

// The pages that fit every word, the best first; of equals the shorter title.
function find(pages, query) {
  const words = query.toLowerCase().split(/\s+/).filter(Boolean);
  if (!words.length) return [];
  const found = [];
  for (const page of pages) {
    const fits = words.map((word) => fit(page, word));
    if (fits.every((each) => each > 0))
      found.push({ page, score: fits.reduce((sum, each) => sum + each, 0) - page.title.length / 100 });
  }
  return found.sort((one, other) => other.score - one.score).map(({ page }) => page.shown);
}

// The words around the first one that was looked for.
function excerpt(text, query) {
  const word = query.toLowerCase().split(/\s+/).find((each) => each && text.toLowerCase().includes(each));
  const at = word ? text.toLowerCase().indexOf(word) : 0;
  const start = at < 60 ? 0 : text.indexOf(" ", at - 50) + 1;
  return (start > 0 ? "… " : "") + text.slice(start, start + 130) + (text.length > start + 130 ? " …" : "");
}

function element(name, className, text) {
  const made = document.createElement(name);
  made.className = className;
  if (text !== undefined) made.textContent = text;
  return made;
}

function startSearch(form) {
  const input = form.querySelector("input");
  const list = form.querySelector("#found");
  let pages = null;
  let current = -1;

  // The index is some hundred kilobytes: it is read when somebody is about to search.
  function load() {
    if (pages !== null) return;
    pages = [];
    const script = element("script", "");
    script.src = root + "search.js";
    script.onload = () => { pages = window.tarnPages.map(prepared); show(); };
    document.head.append(script);
  }

  function choose(index) {
    const options = list.querySelectorAll("a");
    current = options.length ? (index + options.length) % options.length : -1;
    options.forEach((option, at) => option.setAttribute("aria-selected", String(at === current)));
    if (current >= 0) {
      input.setAttribute("aria-activedescendant", options[current].id);
      options[current].scrollIntoView({ block: "nearest" });
    } else input.removeAttribute("aria-activedescendant");
  }

  function close() {
    list.hidden = true;
    input.setAttribute("aria-expanded", "false");
    choose(-1);
  }

  function show() {
    const query = input.value.trim();
    list.replaceChildren();
    if (!query || !pages.length) return close();
    const found = find(pages, query);
    found.slice(0, mostFound).forEach((page, at) => {
      const option = element("a", "");
      option.id = "found" + at;
      option.href = root + page.address;
      option.tabIndex = -1;
      option.setAttribute("role", "option");
      option.append(element("strong", "", page.title));
      if (page.kind !== page.title) option.append(element("span", "kind", page.kind));
      option.append(element("span", "text", excerpt(page.text, query)));
      list.append(option);
    });
    if (!found.length) list.append(element("p", "", "Nothing has all of these words. The reference lists all functions."));
    if (found.length > mostFound) list.append(element("p", "", found.length - mostFound + " more; another word leaves fewer."));
    list.hidden = false;
    input.setAttribute("aria-expanded", "true");
    choose(found.length ? 0 : -1);
  }

  form.hidden = false;
  input.addEventListener("focus", load);
  input.addEventListener("input", () => { load(); show(); });
  input.addEventListener("keydown", (event) => {
    if (event.key === "ArrowDown" || event.key === "ArrowUp") {
      event.preventDefault();
      if (list.hidden) show();
      else choose(current + (event.key === "ArrowDown" ? 1 : -1));
    } else if (event.key === "Escape") {
      input.value = "";
      close();
    }
  });
  form.addEventListener("submit", (event) => {
    event.preventDefault();
    const option = list.querySelectorAll("a")[current];
    if (option) { close(); location.href = option.href; }
  });
  document.addEventListener("keydown", (event) => {
    const writing = event.target.closest("input, textarea, [contenteditable]");
    if (event.key === "/" && !writing && !event.ctrlKey && !event.metaKey && !event.altKey) {
      event.preventDefault();
      input.focus();
      input.select();
    }
  });
  document.addEventListener("click", (event) => { if (!form.contains(event.target)) close(); });
}

// Of a block with prompts only what was typed, to the end of each line; else all of it.
function toCopy(block) {
  if (!block.querySelector(".gp")) return block.textContent;
  let typed = "";
  let isTyped = false;
  for (const node of block.querySelector("code").childNodes) {
    if (node.nodeType === Node.ELEMENT_NODE && node.classList.contains("gp")) isTyped = true;
    else if (isTyped) {
      typed += node.textContent;
      isTyped = !node.textContent.includes("\n");
    }
  }
  return typed;
}

function addCopyButton(code) {
  const button = element("button", "copy", "Copy");
  button.type = "button";
  button.addEventListener("click", async () => {
    try {
      await navigator.clipboard.writeText(toCopy(code.querySelector("pre")));
      button.textContent = "Copied";
    } catch {
      getSelection().selectAllChildren(code.querySelector("pre"));
      button.textContent = "Selected";
    }
    setTimeout(() => { button.textContent = "Copy"; }, 2000);
  });
  code.append(button);
}

// What is wider than its place can be reached, and then scrolled, from the keyboard.
function reachWhatScrolls() {
  for (const area of document.querySelectorAll("pre, .scroll")) {
    if (area.scrollWidth > area.clientWidth) area.tabIndex = 0;
    else area.removeAttribute("tabindex");
  }
}

// Contents of a page are open where there is room beside the text.
function foldOutline(outline) {
  const wide = matchMedia("(min-width: 80rem)");
  const fold = () => { outline.open = wide.matches; };
  wide.addEventListener("change", fold);
  fold();
}

startSearch(document.querySelector("form.search"));
document.querySelectorAll("div.code").forEach(addCopyButton);
document.querySelectorAll("details.outline").forEach(foldOutline);
reachWhatScrolls();
addEventListener("resize", reachWhatScrolls);
addEventListener("load", reachWhatScrolls); // pictures are there
const currentPage = document.querySelector('nav.pages [aria-current="page"]');
if (currentPage) { // where the list scrolls by itself
  const list = currentPage.closest("nav");
  list.scrollTop = currentPage.offsetTop - list.clientHeight / 2;
}
