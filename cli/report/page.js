"use strict";
// What scripts add to a page: search, zoom, keys in the pictures, and the timeline behind each step. Texts of documents
// only get into the page as text, never as HTML.
(() => {
  const rulerHeight = 26; // as in page.css
  const laneHeight = 40;
  const leastWidthForNames = 30; // pixels
  const leastWidthForEdges = 4;
  const widestPicture = 8000000;

  const byId = (id) => document.getElementById(id);
  const all = (selector, from = document) => Array.from(from.querySelectorAll(selector));
  const plural = (count, noun) => `${count.toLocaleString("en")} ${noun}${count === 1 ? "" : "s"}`;
  const clamp = (value, least, most) => Math.min(Math.max(value, least), most);
  const percent = (element, name) => parseFloat(element.getAttribute(name)) || 0;

  const drawing = document.querySelector("svg.patterns").namespaceURI;
  function draw(tag, attributes = {}, ...children) {
    const element = document.createElementNS(drawing, tag);
    for (const [name, value] of Object.entries(attributes)) element.setAttribute(name, value);
    element.append(...children);
    return element;
  }
  function make(tag, style, ...children) {
    const element = document.createElement(tag);
    if (style) element.className = style;
    element.append(...children);
    return element;
  }
  function onNextFrame(work) {
    let isPlanned = false;
    return () => {
      if (isPlanned) return;
      isPlanned = true;
      requestAnimationFrame(() => {
        isPlanned = false;
        work();
      });
    };
  }

  // Times

  const two = (value) => String(value).padStart(2, "0");
  function timeText(milliseconds) {
    const size = Math.abs(milliseconds);
    const hours = Math.floor(size / 3600000);
    const minutes = Math.floor(size / 60000) % 60;
    const start = hours > 0 ? `${hours}:${two(minutes)}` : `${minutes}`;
    const rest = Math.round(size % 1000);
    const fraction = rest ? `.${String(rest).padStart(3, "0")}` : "";
    return `${milliseconds < 0 ? "-" : ""}${start}:${two(Math.floor(size / 1000) % 60)}${fraction}`;
  }
  const steps = [10, 20, 50, 100, 200, 500, 1e3, 2e3, 5e3, 1e4, 15e3, 3e4, 6e4, 12e4, 3e5, 6e5, 9e5, 18e5, 36e5, 72e5,
    144e5, 216e5, 432e5];
  function stepFor(least) {
    let step = steps.find((candidate) => candidate >= least) || 864e5;
    while (step < least) step *= 2;
    return step;
  }

  // Pictures: zoom, ruler, names

  const pictures = new Set();
  let zoom = 1;

  class Picture {
    constructor(svg) {
      this.svg = svg;
      this.scroll = svg.parentElement;
      this.first = Number(svg.dataset.first);
      this.length = Math.max(Number(svg.dataset.last) - this.first, 1);
      this.clips = all("svg.clip", svg);
      this.transitions = svg.querySelectorAll("svg.transition").length;
      this.widths = this.clips.map((clip) => percent(clip, "width") / 100);
      this.measure();
      this.prepareKeys();
      pictures.add(this);
    }

    /// Of the whole picture, in pixels. `seen` is the width of the part that can be seen at once.
    get width() {
      return this.seen * zoom;
    }

    measure() {
      this.seen = this.scroll.clientWidth;
    }

    /// Leaves out what has no space.
    simplify() {
      const width = this.width;
      for (let place = 0; place < this.clips.length; ++place) {
        const classes = this.clips[place].classList;
        classes.toggle("narrow", this.widths[place] * width < leastWidthForNames);
        classes.toggle("thin", this.widths[place] * width < leastWidthForEdges);
      }
      this.svg.classList.toggle("dense", this.transitions * 20 > width);
    }

    /// Only the part that can be seen, and as much on both sides of it.
    drawRuler(scrolled) {
      const ruler = this.svg.querySelector(".ruler");
      if (!ruler || this.seen === 0) return;
      const perPixel = this.length / this.width;
      const step = stepFor(88 * perPixel);
      const left = this.first + scrolled * perPixel;
      const length = this.seen * perPixel;
      const marks = [];
      const start = Math.max(Math.ceil(Math.max(left - length, this.first) / step), 0);
      for (let number = start; number * step <= Math.min(left + 2 * length, this.first + this.length); ++number) {
        const x = `${((number * step - this.first) / this.length) * 100}%`;
        marks.push(draw("line", { x1: x, x2: x, y1: 18, y2: this.svg.getAttribute("height") }));
        marks.push(draw("text", { x, dx: 4, y: 16 }, timeText(number * step)));
      }
      ruler.replaceChildren(...marks);
    }

    // Keys: one element of a picture is in the order of the Tab key, the arrow keys move among them.

    prepareKeys() {
      this.lanes = all("svg.lane", this.svg)
        .map((lane) => Array.from(lane.children).filter((child) => child.tagName === "svg"))
        .map((lane) => lane.sort((a, b) => percent(a, "x") - percent(b, "x")))
        .filter((lane) => lane.length > 0);
      const items = this.lanes.flat();
      if (items.length === 0) return;
      this.svg.setAttribute("role", "listbox");
      this.scroll.removeAttribute("tabindex");
      for (const item of items) {
        item.setAttribute("role", "option");
        item.setAttribute("tabindex", "-1");
      }
      this.current = items[0];
      this.current.setAttribute("tabindex", "0");
      this.svg.addEventListener("focusin", (event) => this.setCurrent(event.target));
      this.svg.addEventListener("keydown", (event) => this.pressed(event));
      this.svg.addEventListener("click", (event) => {
        const item = event.target.closest("svg.clip, svg.transition");
        if (!item || !this.svg.contains(item)) return;
        this.moveTo(item);
        choose(item);
      });
    }

    moveTo(item) {
      item.focus({ preventScroll: true });
      this.show(item);
    }

    setCurrent(item) {
      this.current.setAttribute("tabindex", "-1");
      this.current = item;
      item.setAttribute("tabindex", "0");
    }

    show(item) {
      const start = (percent(item, "x") / 100) * this.width;
      const end = start + Math.max((percent(item, "width") / 100) * this.width, 1);
      const left = this.scroll.scrollLeft;
      const isSeen = start >= left && Math.min(end, start + 80) <= left + this.seen;
      if (!isSeen) this.scroll.scrollLeft = Math.max((start + end - this.seen) / 2, Math.min(start, end - this.seen) - 20);
      const box = this.scroll.getBoundingClientRect();
      if (box.top < 70 || box.bottom > innerHeight) this.scroll.scrollIntoView({ block: "nearest" });
    }

    pressed(event) {
      if (event.ctrlKey || event.altKey || event.metaKey) return;
      const lane = this.lanes.findIndex((items) => items.includes(this.current));
      const place = lane < 0 ? 0 : this.lanes[lane].indexOf(this.current);
      const nearest = (items) => {
        const x = percent(this.current, "x");
        const distance = (item) => Math.abs(percent(item, "x") - x);
        return items && items.reduce((best, item) => (distance(item) < distance(best) ? item : best));
      };
      const moves = {
        ArrowRight: () => this.lanes[lane][place + 1],
        ArrowLeft: () => this.lanes[lane][place - 1],
        ArrowDown: () => nearest(this.lanes[lane + 1]),
        ArrowUp: () => nearest(this.lanes[lane - 1]),
        Home: () => this.lanes[lane][0],
        End: () => this.lanes[lane].at(-1),
      };
      if (moves[event.key]) {
        const item = moves[event.key]();
        if (item) this.moveTo(item);
      } else if (event.key === "Enter" || event.key === " ") {
        choose(this.current);
      } else {
        return;
      }
      event.preventDefault();
    }
  }

  // The browser lays a page out again when a size is read behind a change: all reads come before all changes.

  function drawRulers() {
    const scrolled = Array.from(pictures, (picture) => picture.scroll.scrollLeft);
    Array.from(pictures).forEach((picture, place) => picture.drawRuler(scrolled[place]));
  }

  /// Stretches all pictures; `leftOf` gives how far each is scrolled then.
  function stretch(leftOf) {
    const each = Array.from(pictures);
    for (const picture of each) picture.svg.style.width = `${zoom * 100}%`;
    for (const picture of each) picture.simplify();
    for (const picture of each) picture.scroll.scrollLeft = leftOf(picture);
    drawRulers();
  }

  const pictureOf = (element) => Array.from(pictures).find((picture) => picture.svg.contains(element));

  function zoomTo(factor, picture, fraction, offset) {
    const most = Math.max(1, widestPicture / Math.max(innerWidth, 1));
    const middles = new Map();
    for (const each of pictures) middles.set(each, (each.scroll.scrollLeft + each.seen / 2) / each.width);
    zoom = clamp(factor, 1, most);
    const film = picture && picture.scroll.closest(".film");
    stretch((each) => (film && each.scroll.closest(".film") === film
      ? fraction * each.width - offset
      : middles.get(each) * each.width - each.seen / 2));
    byId("zoomed").textContent = `${Math.round(zoom * 100).toLocaleString("en")} %`;
    byId("zoom-out").disabled = zoom <= 1;
    byId("zoom-fit").disabled = zoom <= 1;
    byId("zoom-in").disabled = zoom >= most;
  }

  function prepareZoom() {
    byId("zoom-in").addEventListener("click", () => zoomTo(zoom * 2));
    byId("zoom-out").addEventListener("click", () => zoomTo(zoom / 2));
    byId("zoom-fit").addEventListener("click", () => zoomTo(1));
    document.addEventListener("keydown", (event) => {
      if (event.ctrlKey || event.altKey || event.metaKey || !event.target.closest(".film")) return;
      const factors = { "+": zoom * 2, "=": zoom * 2, "-": zoom / 2, 0: 1 };
      if (!(event.key in factors)) return;
      const picture = pictureOf(event.target);
      const item = picture && picture.current;
      if (item) {
        const fraction = percent(item, "x") / 100;
        const offset = clamp(fraction * picture.width - picture.scroll.scrollLeft, 0, picture.seen);
        zoomTo(factors[event.key], picture, fraction, offset);
      } else {
        zoomTo(factors[event.key]);
      }
      event.preventDefault();
    });
    document.addEventListener("wheel", (event) => {
      const scroll = event.ctrlKey && event.target.closest(".scroll");
      const picture = scroll && Array.from(pictures).find((each) => each.scroll === scroll);
      if (!picture) return;
      event.preventDefault();
      const offset = event.clientX - scroll.getBoundingClientRect().left;
      zoomTo(zoom * Math.exp(-event.deltaY * 0.003), picture, (scroll.scrollLeft + offset) / picture.width, offset);
    }, { passive: false });
    addEventListener("resize", onNextFrame(() => {
      for (const picture of pictures) picture.measure();
      for (const picture of pictures) picture.simplify();
      drawRulers();
    }));
    const drawRulersSoon = onNextFrame(drawRulers);
    document.addEventListener("scroll", (event) => {
      const film = event.target instanceof Element && event.target.matches(".scroll") && event.target.closest(".film");
      if (!film) return;
      for (const other of all(".scroll", film)) {
        if (Math.abs(other.scrollLeft - event.target.scrollLeft) > 1) other.scrollLeft = event.target.scrollLeft;
      }
      drawRulersSoon();
    }, true);
    zoomTo(1);
  }

  // The clip that was chosen

  const titleOf = (item) => item.querySelector("title").textContent;

  function choose(item) {
    const panel = byId("detail");
    if (!panel) return;
    for (const other of all(".chosen")) {
      other.classList.remove("chosen");
      other.setAttribute("aria-selected", "false");
    }
    item.classList.add("chosen");
    item.setAttribute("aria-selected", "true");
    const row = item.dataset.row === undefined ? null : byId(`clip-${item.dataset.row}`);
    const content = byId("detail-content");
    if (!row) {
      content.replaceChildren(make("p", "", titleOf(item)));
    } else {
      const [name, track, kind, before, after, fate, more] = Array.from(row.cells, (cell) => cell.cloneNode(true));
      const heading = make("h3");
      heading.append(...name.childNodes);
      const when = (word, cell) => (cell.textContent === "\u2013" ? `not there ${word}` : `${word} ${cell.textContent}`);
      const facts = make("p", "", `${kind.textContent}, track ${track.textContent}, ${when("before", before)}, ${when("after", after)}: `);
      facts.append(...fate.childNodes);
      content.replaceChildren(heading, facts, ...more.childNodes);
    }
    panel.hidden = false;
  }

  function prepareDetail() {
    const panel = byId("detail");
    if (!panel) return;
    const close = () => {
      const isInside = panel.contains(document.activeElement);
      panel.hidden = true;
      const item = document.querySelector(".chosen");
      if (item && isInside) item.focus();
    };
    byId("detail-close").addEventListener("click", close);
    document.addEventListener("keydown", (event) => {
      if (event.key === "Escape" && !panel.hidden) close();
    });
  }

  // Search

  function prepareSearch() {
    const field = byId("find");
    const said = byId("found");
    const previous = byId("find-previous");
    const next = byId("find-next");
    let names = null; // of all clips by row
    let items = null; // their elements in the pictures before and after
    let matches = [];
    let place = -1;

    function index() {
      names = all("table.clips tbody tr").map((row) => row.cells[0].textContent.toLowerCase());
      items = names.map(() => []);
      for (const clip of all("article.film svg.clip")) {
        if (clip.dataset.row !== undefined && items[clip.dataset.row]) items[clip.dataset.row].push(clip);
      }
    }

    function goTo(number) {
      for (const item of all(".here")) item.classList.remove("here");
      place = number;
      const found = items[matches[place]];
      if (found.length === 0) return;
      const picture = pictureOf(found[0]);
      const width = percent(found[0], "width") / 100;
      if (width * picture.width < 12)
        zoomTo(60 / (width * picture.seen), picture, percent(found[0], "x") / 100, picture.seen / 2);
      for (const item of found) item.classList.add("here");
      picture.show(found[0]);
      said.textContent = `${place + 1} of ${matches.length.toLocaleString("en")}: ${titleOf(found[0])}`;
    }

    function search() {
      if (!names) index();
      for (const item of all(".hit, .here")) item.classList.remove("hit", "here");
      const wanted = field.value.trim().toLowerCase();
      matches = [];
      place = -1;
      names.forEach((name, row) => {
        if (wanted && name.includes(wanted)) matches.push(row);
      });
      for (const row of matches) {
        for (const item of items[row]) item.classList.add("hit");
      }
      for (const picture of all("article.film .picture")) picture.classList.toggle("searching", wanted !== "");
      previous.disabled = next.disabled = matches.length === 0;
      said.textContent = wanted === "" ? "" : matches.length === 0 ? "no clip found" : `${plural(matches.length, "clip")} found`;
    }

    const step = (by) => {
      if (matches.length > 0) goTo((place + by + matches.length + (place < 0 && by < 0 ? 1 : 0)) % matches.length);
    };
    let timer = 0;
    field.addEventListener("input", () => {
      clearTimeout(timer);
      timer = setTimeout(search, 120);
    });
    field.addEventListener("keydown", (event) => {
      if (event.key !== "Enter") return;
      event.preventDefault();
      clearTimeout(timer);
      if (place < 0) search();
      step(event.shiftKey ? -1 : 1);
    });
    previous.addEventListener("click", () => step(-1));
    next.addEventListener("click", () => step(1));
    previous.disabled = next.disabled = true;
  }

  // The timeline behind each step

  /// A film in the states of the migration. `clips` holds the entries of the state by clip.
  class Film {
    constructor(data, number) {
      this.data = data;
      this.number = number;
      this.changing = data.states.map((state, place) => (state.films[number] ? place : -1)).filter((place) => place > 0);
      this.reset();
    }

    reset() {
      this.place = -1;
      this.lanes = [];
      this.clips = new Map();
      this.transitions = [];
    }

    goTo(place) {
      if (place < this.place) this.reset();
      while (this.place < place) {
        this.marks = new Map();
        this.gone = [];
        const change = this.data.states[++this.place].films[this.number];
        if (!change) continue;
        this.lanes = change.lanes || this.lanes;
        for (const entry of change.put || []) {
          if (this.place > 0) this.marks.set(entry[0], this.clips.has(entry[0]) ? "changed" : "added");
          this.clips.set(entry[0], entry);
        }
        for (const clip of change.del || []) {
          this.gone.push(this.clips.get(clip));
          this.clips.delete(clip);
        }
        this.transitions = change.transitions || this.transitions;
      }
    }

    /// "2 clips removed, 1 clip changed"
    summary() {
      const count = (mark) => Array.from(this.marks.values()).filter((value) => value === mark).length;
      const parts = [[count("added"), "added"], [this.gone.length, "removed"], [count("changed"), "changed"]];
      return parts.filter(([number]) => number > 0).map(([number, word]) => `${plural(number, "clip")} ${word}`).join(", ");
    }

    drawClip(entry, mark) {
      const [clip, name, kind, lane, start, duration, effects, flags] = entry;
      const { first, last } = this.data.films[this.number];
      const length = Math.max(last - first, 1);
      const kindName = this.data.kinds[kind];
      const text = this.data.names[name];
      const marks = [kindName];
      if (effects > 0) marks.push(plural(effects, "effect"));
      if (flags & 2) marks.push("reversed");
      if (flags & 1) marks.push("off");
      if (mark) marks.unshift(`${mark} by this step`);
      const title = `Clip ${text || "without a name"}, track ${this.data.lanes[lane] || "the same"}, ` +
        `${timeText(start)}\u2013${timeText(start + duration)}, ${marks.join(", ")}`;
      const sign = { removed: "\u00d7 ", added: "+ ", changed: "\u2260 " }[mark] || "";
      const svg = draw("svg", {
        class: `clip ${kindName} ${mark === "removed" ? "gone" : mark || ""}${flags & 1 ? " off" : ""}`,
        x: `${((start - first) / length) * 100}%`,
        width: `${Math.max((duration / length) * 100, 0.0001)}%`,
        role: "img",
      }, draw("title", {}, title), draw("rect"));
      if (mark === "removed") svg.append(draw("rect", { class: "hatch" }));
      svg.append(draw("text", { x: 8, y: 16 }, sign + text), draw("text", { class: "more", x: 8, y: 30 }, marks.join(" \u00b7 ")));
      const row = this.data.rows[this.number][clip];
      if (row >= 0) svg.dataset.row = row;
      return svg;
    }

    draw(label) {
      const { first, last } = this.data.films[this.number];
      const length = Math.max(last - first, 1);
      const shown = Array.from(this.lanes);
      for (const entry of this.gone) {
        if (!shown.includes(entry[3])) shown.push(entry[3]);
      }
      const height = rulerHeight + laneHeight * shown.length;
      const picture = draw("svg", {
        class: "picture", height, role: "group", "aria-label": label, "data-first": first, "data-last": last,
      }, draw("g", { class: "ruler", "aria-hidden": "true" }));
      const lanes = new Map(shown.map((lane, place) => [lane, draw("svg",
        { class: "lane", y: rulerHeight + laneHeight * place, height: laneHeight }, draw("rect", { class: "ground" }))]));
      for (const entry of this.clips.values()) lanes.get(entry[3])?.append(this.drawClip(entry, this.marks.get(entry[0])));
      for (const entry of this.gone) lanes.get(entry[3])?.append(this.drawClip(entry, "removed"));
      for (const [lane, name, time, duration] of this.transitions) {
        lanes.get(lane)?.append(draw("svg", { class: "transition", x: `${((time - first) / length) * 100}%`, width: 1, role: "img" },
          draw("title", {}, `Transition ${this.data.names[name]}, ${timeText(duration)} long`),
          draw("path", { d: "M-7 24 7 36V24L-7 36Z" })));
      }
      picture.append(...lanes.values());
      return { picture, labels: shown.map((lane) => this.data.lanes[lane]) };
    }
  }

  function prepareStages() {
    if (!byId("data") || !byId("stage")) return;
    const data = JSON.parse(byId("data").textContent);
    const slider = byId("slider");
    const which = byId("which");
    const films = new Map();
    let last = null;

    const film = () => {
      const number = Number(which.value);
      if (!films.has(number)) films.set(number, new Film(data, number));
      return films.get(number);
    };
    const nameOf = (place) => data.states[place].name || "As it was read";

    function drawTicks() {
      const most = Math.max(data.states.length - 1, 1);
      byId("ticks").replaceChildren(...film().changing.map((place) => {
        const tick = make("i", place === Number(slider.value) ? "now" : "");
        tick.style.left = `calc(${(place / most) * 100}% - ${(place / most) * 4}px)`;
        return tick;
      }));
    }

    function show() {
      const place = Number(slider.value);
      const current = film();
      current.goTo(place);
      const summary = current.summary();
      const position = place === 0 ? "The project as it was read" : `Step ${place} of ${data.states.length - 1}`;
      slider.setAttribute("aria-valuetext", place === 0 ? position :
        `${position}: ${nameOf(place)}, ${summary || "timeline unchanged"}`);
      byId("place").textContent = `${place} of ${data.states.length - 1}`;
      const text = byId("stage-text");
      text.replaceChildren(make("strong", "", place === 0 ? position : nameOf(place)), " ");
      const sentence = byId(`step-${place}`) && byId(`step-${place}`).querySelector(".sentence");
      if (sentence) text.append(sentence.textContent, " ");
      if (place > 0) {
        text.append(make("span", summary ? "mark warn" : "mark", summary || "timeline unchanged"), " ");
        const link = make("a", "", "all that it did");
        link.href = `#step-${place}`;
        text.append(link);
      }
      const drawn = current.draw(`Timeline ${data.films[current.number].name}, ${position}`);
      const scroll = byId("stage-scroll");
      const left = scroll.scrollLeft;
      if (last) pictures.delete(last);
      scroll.replaceChildren(drawn.picture);
      byId("stage-labels").replaceChildren(make("span", "corner"), ...drawn.labels.map((label) => make("span", "", label)));
      last = new Picture(drawn.picture);
      drawn.picture.style.width = `${zoom * 100}%`;
      last.simplify();
      scroll.scrollLeft = left;
      last.drawRuler(left);
      drawTicks();
      const isBefore = (other) => other < place;
      byId("step-back").disabled = place === 0;
      byId("step-on").disabled = current.changing.every((other) => other <= place);
      byId("step-back").dataset.to = current.changing.filter(isBefore).at(-1) || 0;
      byId("step-on").dataset.to = current.changing.find((other) => other > place) || place;
    }

    const showSoon = onNextFrame(show);
    slider.addEventListener("input", showSoon);
    which.addEventListener("change", show);
    for (const id of ["step-back", "step-on"]) {
      byId(id).addEventListener("click", (event) => {
        slider.value = event.currentTarget.dataset.to;
        show();
      });
    }
    byId("stage").hidden = false;
    // Drawn once people come near it: large projects take a moment.
    const observer = new IntersectionObserver((entries) => {
      if (!entries.some((entry) => entry.isIntersecting) || last) return;
      observer.disconnect();
      show();
    }, { rootMargin: "400px" });
    observer.observe(byId("stage"));
  }

  // Details that a link leads to, and paper

  function openTarget() {
    const target = location.hash.length > 1 && byId(decodeURIComponent(location.hash.slice(1)));
    for (let at = target; at; at = at.parentElement) {
      if (at.tagName === "DETAILS") at.open = true;
    }
    if (target) target.scrollIntoView({ block: "nearest" });
  }

  function preparePaper() {
    let closed = [];
    addEventListener("beforeprint", () => {
      closed = all("details:not([open])");
      for (const details of closed) details.open = true;
    });
    addEventListener("afterprint", () => {
      for (const details of closed) details.open = false;
    });
  }

  for (const svg of all("article.film svg.picture")) new Picture(svg);
  document.documentElement.classList.add("ready");
  if (byId("tools")) {
    prepareZoom();
    prepareSearch();
    prepareDetail();
    prepareStages();
    byId("tools").hidden = false;
  }
  addEventListener("hashchange", openTarget);
  openTarget();
  preparePaper();
})();
