// The pages of `adaptors report` and `adaptors batch --report` in a real browser.
//
//   ADAPTORS_PROGRAM   the program that is tested
//   CHROMIUM           the browser [/usr/bin/chromium]
//   SCREENSHOTS        a folder for pictures of the pages; none are taken without it

import assert from "node:assert/strict";
import { execFileSync, spawnSync } from "node:child_process";
import { mkdirSync, mkdtempSync, readdirSync, readFileSync, rmSync, statSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { basename, join } from "node:path";
import { after, before, test } from "node:test";
import { fileURLToPath, pathToFileURL } from "node:url";
import { chromium } from "playwright-core";
import * as projects from "./projects.mjs";

const root = fileURLToPath(new URL("../..", import.meta.url));
const program = process.env.ADAPTORS_PROGRAM ?? join(root, "build/dev/cli/adaptors");
const folder = mkdtempSync(join(tmpdir(), "adaptors-pages-"));
const samples = ["holiday-v3.xml", "holiday-v12.xml", "holiday-v20-bundle/holiday.xml", "holiday-v21.xml", "holiday-v27.xml",
  "holiday-v34.xml", "holiday-v45.xml", "holiday-v55.xml", "holiday-v60.json", "holiday-v62.xml", "holiday-v63.json",
  "holiday-v70.json", "holiday-v76.json"];
const largeCount = 10000;

let browser;

before(async () => {
  // Fails where there is no browser; nothing is left out then.
  browser = await chromium.launch({
    executablePath: process.env.CHROMIUM ?? "/usr/bin/chromium",
    headless: true,
    args: ["--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run", "--disable-background-networking",
      "--disable-component-update", "--disable-sync"],
  });
});

after(async () => {
  await browser?.close();
  rmSync(folder, { recursive: true, force: true });
});

/// Writes a project and its page. Gives the page's file; the exit code must be that one.
function pageOf(name, content, exitCode = 0) {
  const project = join(folder, name);
  writeFileSync(project, content);
  return pageOfFile(project, exitCode);
}

function pageOfFile(project, exitCode = 0) {
  const page = join(folder, `${project.replace(/[^A-Za-z0-9]+/g, "-")}.html`);
  const run = spawnSync(program, ["report", project, "-o", page, "--force"], { encoding: "utf8" });
  assert.equal(run.status, exitCode, run.stderr);
  return page;
}

/// Opens a page, does the work, and checks that nothing was loaded, nothing failed and no dialog came up.
async function inPage(file, options, work) {
  const context = await browser.newContext({ viewport: { width: 1280, height: 900 }, reducedMotion: "reduce", ...options });
  const troubles = [];
  try {
    const page = await context.newPage();
    page.setDefaultTimeout(60000);
    page.on("console", (message) => troubles.push(`${message.type()}: ${message.text()}`));
    page.on("pageerror", (error) => troubles.push(String(error)));
    page.on("dialog", (dialog) => {
      troubles.push(`dialog: ${dialog.message()}`);
      dialog.dismiss();
    });
    page.on("request", (request) => {
      if (!/^(file|data):/.test(request.url())) troubles.push(`request: ${request.url()}`);
    });
    let documents = 0;
    page.on("request", (request) => {
      if (request.url().startsWith("file:") && ++documents > 1 && !request.isNavigationRequest()) troubles.push(`request: ${request.url()}`);
    });
    await page.goto(pathToFileURL(file).href);
    await work(page, troubles);
    assert.deepEqual(troubles, []);
  } finally {
    await context.close();
  }
}

async function screenshot(page, name, options = {}) {
  if (!process.env.SCREENSHOTS) return;
  mkdirSync(process.env.SCREENSHOTS, { recursive: true });
  await page.screenshot({ path: join(process.env.SCREENSHOTS, `${name}.png`), ...options });
}

/// What `info` says of the clips of a project as it was read, without those of unused timelines.
function timelinesOf(project) {
  return JSON.parse(execFileSync(program, ["info", project, "--json"], { encoding: "utf8", maxBuffer: 1 << 28 })).timelines;
}

const film = (page, number = 0) => page.locator(`article.film[data-film="${number}"]`);
const sideOf = (page, side, number = 0) => film(page, number).locator(`figure.${side} svg.picture`);

const startsWith = (name) => new RegExp(`^Clip ${name.replace(/[.*+?^${}()|[\]\\]/g, "\\$&")}, track `);

for (const sample of samples) {
  test(`finds every clip of ${sample} by its accessible name`, async () => {
    const project = join(root, "samples", sample);
    const timelines = timelinesOf(project).filter((timeline) => timeline.role !== "unused" || timeline.clips.length > 0);
    await inPage(pageOfFile(project), {}, async (page) => {
      assert.equal(await page.locator("article.film").count() >= timelines.length, true);
      for (const [number, timeline] of timelines.entries()) {
        const picture = sideOf(page, "before", number);
        assert.equal(await picture.locator("svg.clip").count(), timeline.clips.length);
        for (const clip of timeline.clips) {
          const found = picture.getByRole("option", { name: startsWith(clip.name || "without a name") });
          assert.notEqual(await found.count(), 0, clip.name);
        }
      }
      assert.match(await page.getByRole("main").textContent(), /About this page/);
    });
  });
}

test("shows all without scripts, and nothing that needs them", async () => {
  await inPage(pageOf("quiz-plain.xml", projects.projectWithQuiz()), { javaScriptEnabled: false }, async (page) => {
    for (const name of ["Beach", "Question", "Harbour", "Song"])
      assert.equal(await sideOf(page, "before").getByRole("img", { name: startsWith(name) }).count(), 1, name);
    assert.equal(await sideOf(page, "after").getByRole("img", { name: startsWith("Question") }).count(), 0);
    for (const id of ["tools", "stage", "detail"]) assert.equal(await page.locator(`#${id}`).isVisible(), false, id);
    assert.equal(await page.getByText("Pictures of each step need scripts").isVisible(), true);
    const step = page.locator("details.step", { hasText: "V69_RemoveQuizzesAdaptor" });
    await step.locator("summary").click();
    assert.match(await step.textContent(), /removed clip Question/);
    assert.equal(await step.getByText("Question").first().isVisible(), true);
    await page.locator("#all-clips summary").click();
    assert.equal(await page.getByRole("rowheader", { name: "Harbour" }).isVisible(), true);
    await screenshot(page, "plain-1280", { fullPage: true });
  });
});

test("marks what is removed, with its reason", async () => {
  await inPage(pageOf("quiz.xml", projects.projectWithQuiz()), {}, async (page) => {
    const gone = sideOf(page, "before").getByRole("option", { name: startsWith("Question") });
    assert.match(await gone.locator("title").textContent(), /removed by V69: projects have no quizzes any more$/);
    assert.equal(await gone.locator(".hatch").count(), 1);
    assert.match(await page.locator("#missing").textContent(), /removed clip Question/);
    assert.equal(await page.getByText("Nothing is lost.").isVisible(), true);
  });
});

test("the slider shows the timeline behind each step", async () => {
  const file = pageOf("quiz-slider.xml", projects.projectWithQuiz());
  await inPage(file, {}, async (page) => {
    const slider = page.getByRole("slider", { name: "Step" });
    const stage = page.locator("#stage-scroll");
    await page.locator("#stage").scrollIntoViewIfNeeded();
    await stage.locator("svg.clip").first().waitFor();
    const names = () => stage.locator("svg.clip:not(.gone) title").allTextContents();
    assert.equal((await names()).some((name) => name.startsWith("Clip Question,")), false);

    await slider.focus();
    await page.keyboard.press("Home");
    await page.waitForFunction(() => document.getElementById("slider").getAttribute("aria-valuetext").includes("as it was read"));
    assert.deepEqual((await names()).map((name) => name.split(",")[0]).sort(),
      ["Clip Beach", "Clip Harbour", "Clip Question", "Clip Song"]);

    const most = Number(await slider.getAttribute("max"));
    const seen = [];
    for (let place = 1; place <= most; ++place) {
      await page.keyboard.press("ArrowRight");
      await page.waitForFunction((value) => document.getElementById("slider").getAttribute("aria-valuetext")?.startsWith(`Step ${value} of `), place);
      const text = await slider.getAttribute("aria-valuetext");
      seen.push(text);
      if (text.includes("V69_RemoveQuizzesAdaptor")) {
        assert.match(text, /1 clip removed/);
        const gone = stage.locator("svg.clip.gone title");
        assert.match(await gone.textContent(), /^Clip Question, .*removed by this step/);
      }
    }
    assert.equal(seen.filter((text) => text.includes("V69_RemoveQuizzesAdaptor")).length, 1);
    const last = await names();
    assert.equal(last.length, await sideOf(page, "after").locator("svg.clip").count());

    // The buttons go from one change of the timeline to the next one.
    await page.getByRole("button", { name: "Previous step that changed" }).click();
    assert.doesNotMatch(await slider.getAttribute("aria-valuetext"), /unchanged/);
    await page.getByRole("link", { name: "all that it did" }).click();
    const place = await slider.inputValue();
    assert.equal(await page.locator(`#step-${place}`).evaluate((details) => details.tagName !== "DETAILS" || details.open), true);
  });
});

test("searches clips by name and says what it found", async () => {
  await inPage(pageOfFile(join(root, "samples/holiday-v45.xml")), {}, async (page) => {
    const field = page.getByRole("searchbox", { name: "Find a clip" });
    const said = page.locator("#found");
    await field.fill("BOA");
    await page.waitForFunction(() => /found$/.test(document.getElementById("found").textContent));
    assert.equal(await said.textContent(), "2 clips found"); // "Boat" and "Where was the boat?"
    assert.equal(await said.getAttribute("aria-live"), "polite");
    assert.equal(await sideOf(page, "before").locator("svg.clip.hit").count(), 2);
    await page.keyboard.press("Enter");
    assert.match(await said.textContent(), /^1 of 2: Clip .*[Bb]oat/);
    assert.equal(await sideOf(page, "before").locator("svg.clip.here").count(), 1);
    await page.keyboard.press("Enter");
    assert.match(await said.textContent(), /^2 of 2: Clip .*[Bb]oat/);
    await page.keyboard.press("Enter");
    assert.match(await said.textContent(), /^1 of 2: /);
    await page.getByRole("button", { name: "Previous match" }).click();
    assert.match(await said.textContent(), /^2 of 2: /);
    await field.fill("nowhere to be found");
    await page.waitForFunction(() => document.getElementById("found").textContent === "no clip found");
    assert.equal(await page.locator("svg.clip.hit").count(), 0);
    await field.fill("");
    await page.waitForFunction(() => document.getElementById("found").textContent === "");
    assert.equal(await page.locator("svg.searching").count(), 0);
  });
});

test("zooms with buttons, keys and the wheel, both pictures alike", async () => {
  await inPage(pageOfFile(join(root, "samples/holiday-v45.xml")), {}, async (page) => {
    const widths = async () => [await sideOf(page, "before").evaluate((svg) => svg.getBoundingClientRect().width),
      await sideOf(page, "after").evaluate((svg) => svg.getBoundingClientRect().width)];
    const [fit] = await widths();
    await page.getByRole("button", { name: "Zoom in" }).click();
    for (const width of await widths()) assert.ok(Math.abs(width - 2 * fit) < 2, `${width} of ${fit}`);
    assert.equal(await page.locator("#zoomed").textContent(), "200 %");
    const first = sideOf(page, "before").locator("svg.clip").first();
    await first.focus();
    await page.keyboard.press("+");
    assert.ok(Math.abs((await widths())[0] - 4 * fit) < 4);
    await page.keyboard.press("-");
    assert.ok(Math.abs((await widths())[0] - 2 * fit) < 2);

    // The pictures of a timeline scroll together, and marks of the ruler do not overlap.
    const scrolls = film(page).locator("figure .scroll");
    await scrolls.first().evaluate((scroll) => { scroll.scrollLeft = 300; });
    await page.waitForFunction(() => Array.from(document.querySelectorAll('article.film[data-film="0"] .scroll'))
      .every((scroll) => Math.abs(scroll.scrollLeft - 300) <= 1));
    await page.waitForTimeout(100);
    const marks = await sideOf(page, "before").locator(".ruler text").evaluateAll((texts) =>
      texts.map((text) => text.getBoundingClientRect()).map(({ left, right }) => [left, right]).sort((a, b) => a[0] - b[0]));
    assert.ok(marks.length > 3);
    for (let place = 1; place < marks.length; ++place) assert.ok(marks[place][0] > marks[place - 1][1]);

    await page.keyboard.press("0");
    assert.ok(Math.abs((await widths())[0] - fit) < 1);
    await scrolls.first().hover();
    await page.keyboard.down("Control");
    await page.mouse.wheel(0, -200);
    await page.keyboard.up("Control");
    await page.waitForFunction((width) => document.querySelector("article.film .picture").getBoundingClientRect().width > width * 1.2, fit);
  });
});

test("a keyboard reaches each clip, and only one of each picture by Tab", async () => {
  await inPage(pageOf("quiz-keys.xml", projects.projectWithQuiz()), {}, async (page) => {
    await page.keyboard.press("Tab");
    const focused = () => page.evaluate(() => document.activeElement.querySelector?.("title")?.textContent ?? document.activeElement.textContent);
    assert.equal(await focused(), "Skip to the content");
    await page.keyboard.press("Enter");
    const stops = [];
    for (let count = 0; count < 60; ++count) {
      await page.keyboard.press("Tab");
      const inPicture = await page.evaluate(() => document.activeElement.closest("article.film figure")?.className);
      if (inPicture) stops.push(inPicture);
    }
    assert.deepEqual(stops.slice(0, 2), ["before", "after"]);
    assert.equal(stops.filter((side) => side === "before").length, stops.filter((side) => side === "after").length);

    await sideOf(page, "before").getByRole("option", { name: startsWith("Beach") }).focus();
    await page.keyboard.press("ArrowRight");
    assert.match(await focused(), /^Clip Question,/);
    await page.keyboard.press("End");
    assert.match(await focused(), /^Clip Harbour,/);
    await page.keyboard.press("Home");
    assert.match(await focused(), /^Clip Beach,/);
    await page.keyboard.press("ArrowUp");
    assert.match(await focused(), /^Clip Song,/);
    const outline = await page.evaluate(() => getComputedStyle(document.activeElement.querySelector("rect")).strokeWidth);
    assert.equal(outline, "5px");

    await page.keyboard.press("Enter");
    const detail = page.getByRole("complementary", { name: "The chosen clip" });
    assert.equal(await detail.getByRole("heading", { name: "Song" }).isVisible(), true);
    assert.match(await detail.textContent(), /audio, track audio, before 0:00\u20130:12/);
    await screenshot(page, "chosen-1280");
    await page.keyboard.press("Escape");
    assert.equal(await detail.isVisible(), false);
    assert.match(await focused(), /^Clip Song,/);
    assert.equal(await page.locator('svg.picture [tabindex="0"]').count() <= 3, true);
  });
});

test("has landmarks, one main heading and names for all controls", async () => {
  await inPage(pageOfFile(join(root, "samples/holiday-v45.xml")), {}, async (page) => {
    assert.equal(await page.getByRole("main").count(), 1);
    assert.equal(await page.getByRole("banner").count(), 1);
    assert.equal(await page.getByRole("navigation", { name: "Sections" }).count(), 1);
    assert.equal(await page.getByRole("heading", { level: 1 }).count(), 1);
    assert.equal(await page.getByRole("heading", { level: 1 }).textContent(), "holiday-v45.xml");
    for (const link of await page.getByRole("navigation").getByRole("link").all()) {
      const target = await link.getAttribute("href");
      assert.equal(await page.locator(target).count(), 1, target);
    }
    const unnamed = await page.evaluate(() => Array.from(document.querySelectorAll("button, input, select"))
      .filter((element) => !(element.getAttribute("aria-label") || element.labels?.length || element.textContent.trim()))
      .map((element) => element.outerHTML));
    assert.deepEqual(unnamed, []);
    const doubles = await page.evaluate(() => {
      const ids = Array.from(document.querySelectorAll("[id]"), (element) => element.id);
      return ids.filter((id, place) => ids.indexOf(id) !== place);
    });
    assert.deepEqual(doubles, []);
  });
});

/// All visible texts with less contrast than that to what is behind them. Works on colours without transparency.
function faintTexts(least) {
  const channel = (value) => (value /= 255) <= 0.04045 ? value / 12.92 : ((value + 0.055) / 1.055) ** 2.4;
  const luminance = ([r, g, b]) => 0.2126 * channel(r) + 0.7152 * channel(g) + 0.0722 * channel(b);
  const parsed = (color) => (color.match(/[\d.]+/g) ?? []).map(Number);
  const backOf = (element) => {
    for (let at = element; at; at = at.parentElement) {
      const color = parsed(getComputedStyle(at).backgroundColor);
      if (color.length === 3 || color[3] === 1) return color.slice(0, 3);
    }
    return [255, 255, 255];
  };
  const found = [];
  const check = (text, front, back) => {
    const [light, dark] = [luminance(front), luminance(back)].sort((a, b) => b - a);
    const contrast = (light + 0.05) / (dark + 0.05);
    if (contrast < least) found.push(`${contrast.toFixed(2)} ${text.slice(0, 40)} ${front} on ${back}`);
  };
  const walker = document.createTreeWalker(document.body, NodeFilter.SHOW_TEXT);
  for (let node = walker.nextNode(); node; node = walker.nextNode()) {
    const element = node.parentElement;
    if (!node.textContent.trim() || !element.checkVisibility() || ["SCRIPT", "TITLE", "title"].includes(element.tagName)) continue;
    const style = getComputedStyle(element);
    if (element.disabled) continue;
    if (element.tagName === "text") {
      const bar = element.parentElement.matches(".clip") && element.parentElement.querySelector("rect");
      check(node.textContent, parsed(style.fill).slice(0, 3), bar ? parsed(getComputedStyle(bar).fill).slice(0, 3) : backOf(element));
    } else if (!element.ownerSVGElement) {
      check(node.textContent, parsed(style.color).slice(0, 3), backOf(element));
    }
  }
  return found;
}

for (const colorScheme of ["light", "dark"]) {
  for (const width of [1280, 390]) {
    test(`is readable in ${colorScheme} at ${width} pixels`, async () => {
      for (const [name, file] of [["sample", pageOfFile(join(root, "samples/holiday-v45.xml"))],
        ["losses", pageOf("losses.xml", projects.projectWithLosses(), 22)],
        ["failure", pageOf("failing.xml", projects.failingProject(), 13)]]) {
        await inPage(file, { colorScheme, viewport: { width, height: 844 } }, async (page) => {
          await screenshot(page, `${name}-${colorScheme}-${width}`);
          await page.evaluate(() => document.querySelectorAll("details").forEach((details) => { details.open = true; }));
          assert.deepEqual(await page.evaluate(faintTexts, 4.5), []);
          assert.ok(await page.evaluate(() => document.documentElement.scrollWidth) <= width, "the page scrolls sideways");
          await screenshot(page, `${name}-${colorScheme}-${width}-all`, { fullPage: true });
        });
      }
    });
  }
}

test("on paper everything is there, on white", async () => {
  await inPage(pageOf("quiz-paper.xml", projects.projectWithQuiz()), { colorScheme: "dark", javaScriptEnabled: false }, async (page) => {
    await page.emulateMedia({ media: "print" });
    assert.equal(await page.evaluate(() => getComputedStyle(document.body).backgroundColor), "rgb(255, 255, 255)");
    const closed = page.locator("details.step:not([open]) .body").first();
    assert.equal(await closed.evaluate((element) => element.checkVisibility({ contentVisibilityAuto: true })), true);
    assert.ok((await closed.boundingBox()).height > 20);
    assert.equal(await page.locator("nav").isVisible(), false);
    await screenshot(page, "paper", { fullPage: true });
  });
});

test("names errors at the clip that they belong to, and what is lost", async () => {
  await inPage(pageOf("losses-marked.xml", projects.projectWithLosses(), 22), {}, async (page) => {
    const bad = sideOf(page, "before").getByRole("option", { name: startsWith("Split") });
    assert.match(await bad.getAttribute("class"), /\bbad\b/);
    assert.match(await bad.locator("title").textContent(), /lost by V57.*, 1 error, 1 effect lost$/);
    await bad.click();
    assert.match(await page.locator("#detail").textContent(), /Unexpected SideBySide mode/);
    assert.match(await page.locator("#messages").textContent(), /V42_SideBySideTransformAdaptor .*clip Split/);
    assert.equal(await page.getByText("Something of the project is missing in the result.").isVisible(), true);
  });
});

test("of a migration that fails there is all up to that step", async () => {
  await inPage(pageOf("failing-marked.xml", projects.failingProject(), 13), {}, async (page) => {
    assert.match(await page.locator(".verdict").textContent(), /The migration failed\. .*PortableLoadAdaptor/);
    assert.equal(await sideOf(page, "before").getByRole("option", { name: startsWith("Beach") }).count(), 1);
    assert.notEqual(await page.locator("#steps .step").count(), 0);
    assert.equal(await page.locator("#result-sha256").count(), 0);
  });
});

test("texts of documents do no harm", async () => {
  const file = pageOf("hostile <b>&'\".xml", projects.hostileProject());
  assert.ok(statSync(file).size < 1000000, `${statSync(file).size} bytes`);
  for (const width of [1280, 390]) {
    await inPage(file, { viewport: { width, height: 844 } }, async (page) => {
      assert.equal(await page.evaluate(() => window.hacked), undefined);
      assert.equal(await page.locator("script").count(), 2); // the data and the program
      assert.equal(await page.locator("img, iframe, object, embed, form, base").count(), 0);
      const clips = sideOf(page, "before").locator("svg.clip");
      assert.equal(await clips.count(), projects.hostileNames.length);
      const titles = await clips.locator("title").allTextContents();
      assert.ok(titles.some((title) => title.includes("Clip <script>window.hacked = 1</script>, track")));
      assert.ok(titles.some((title) => title.includes("left \\u202eright\\u2066 mark\\u200f, track")));
      assert.ok(titles.every((title) => title.length <= 500 && !/[\u202a-\u202e\u2066-\u2069\u2028\u2029]/.test(title)));
      assert.doesNotMatch(await page.content(), /[\u202a-\u202e\u2066-\u2069\u2028\u2029]/);
      await page.locator("#all-clips summary").click();
      assert.match(await page.locator("#all-clips").textContent(), /x… \(1,048,585 characters\)/);
      for (const place of [0, 1, 4]) {
        await clips.nth(place).focus();
        await page.keyboard.press("Enter");
      }
      await page.getByRole("searchbox").fill("<script>");
      await page.waitForFunction(() => /found$/.test(document.getElementById("found").textContent));
      assert.equal(await page.locator("#found").textContent(), "2 clips found");
      await page.locator("#stage").scrollIntoViewIfNeeded();
      await page.locator("#stage-scroll svg.clip").first().waitFor();
      assert.equal(await page.evaluate(() => window.hacked), undefined);
      assert.ok(await page.evaluate(() => document.documentElement.scrollWidth) <= width, "the page scrolls sideways");
      await screenshot(page, `hostile-${width}`, { fullPage: true });
    });
  }
});

test("the policy forbids other scripts, styles and every request", async () => {
  await inPage(pageOf("quiz-policy.xml", projects.projectWithQuiz()), {}, async (page, troubles) => {
    const refused = await page.evaluate(async () => {
      const directives = [];
      document.addEventListener("securitypolicyviolation", (event) => directives.push(event.effectiveDirective));
      const add = (tag, fill) => {
        const element = document.createElement(tag);
        fill(element);
        document.body.append(element);
      };
      add("script", (script) => { script.textContent = "window.hacked = 1"; });
      add("style", (style) => { style.textContent = "body { display: none }"; });
      add("div", (division) => division.setAttribute("style", "color: red"));
      add("img", (image) => { image.src = "picture.png"; });
      add("iframe", (frame) => { frame.src = "about.html"; });
      await fetch("other.html").catch(() => {});
      await new Promise((resolve) => setTimeout(resolve, 200));
      return { directives, hacked: window.hacked, display: getComputedStyle(document.body).display };
    });
    assert.equal(refused.hacked, undefined);
    assert.equal(refused.display, "block");
    for (const directive of ["script-src-elem", "style-src-elem", "style-src-attr", "img-src", "frame-src", "connect-src"])
      assert.ok(refused.directives.includes(directive), `${directive} is not among ${refused.directives}`);
    troubles.length = 0; // the browser reports each of these
  });
});

test(`${largeCount} clips stay usable`, async () => {
  const file = pageOf("large.xml", projects.largeProject(largeCount));
  assert.ok(statSync(file).size < 10000000, `${statSync(file).size} bytes`);
  await inPage(file, {}, async (page) => {
    assert.equal(await sideOf(page, "before").locator("svg.clip").count(), largeCount);
    await screenshot(page, "large-1280");
    await page.getByRole("searchbox").fill("Scene 07777");
    await page.waitForFunction(() => /found$/.test(document.getElementById("found").textContent));
    assert.equal(await page.locator("#found").textContent(), "1 clip found");
    await page.keyboard.press("Enter");
    const clip = sideOf(page, "before").locator("svg.clip.here");
    assert.match(await clip.locator("title").textContent(), /^Clip Scene 07777,/);
    const [box, view] = [await clip.boundingBox(), await film(page).locator("figure.before .scroll").boundingBox()];
    assert.ok(box.width > 30, `${box.width} pixels wide`);
    assert.ok(box.x >= view.x && box.x + box.width <= view.x + view.width, "the clip is not in view");
    await screenshot(page, "large-found-1280");
    await page.getByRole("button", { name: "Show the whole timeline" }).click();
    assert.equal(await page.locator("#zoomed").textContent(), "100 %");
  });
});

test("the table of a batch leads to a page for each file that failed or lost something", async () => {
  const input = join(folder, "batch");
  mkdirSync(input);
  writeFileSync(join(input, "good.xml"), projects.projectWithQuiz());
  writeFileSync(join(input, "lost.xml"), projects.projectWithLosses());
  writeFileSync(join(input, "failing.xml"), projects.failingProject());
  writeFileSync(join(input, "cut <b> \" '.xml"), projects.projectWithQuiz().slice(0, 500));
  const table = join(folder, "found & 100%.html");
  const run = spawnSync(program, ["batch", input, "--output-dir", join(folder, "out"), "--report", table], { encoding: "utf8" });
  assert.equal(run.status, 20, run.stderr);
  assert.equal(readdirSync(join(folder, "found & 100%-pages")).length, 3);
  const open = async (name, check) => inPage(table, {}, async (page) => {
    await page.getByRole("link", { name: `Page of ${name}` }).click();
    await page.waitForLoadState();
    assert.equal(await page.getByRole("heading", { level: 1 }).textContent(), name);
    await check(page);
  });
  await inPage(table, {}, async (page) => {
    assert.equal(await page.getByRole("link").count(), 3);
    assert.deepEqual(await page.evaluate(faintTexts, 4.5), []);
    await screenshot(page, "batch-1280");
  });
  await open("lost.xml", async (page) => assert.match(await page.locator(".verdict").textContent(), /missing in the result/));
  await open("failing.xml", async (page) => assert.match(await page.locator(".verdict").textContent(), /PortableLoadAdaptor/));
  await open("cut <b> \" '.xml", async (page) => {
    assert.match(await page.locator(".verdict").textContent(), /The migration failed\. .*cut off/);
    await screenshot(page, "failed-1280");
  });
  await inPage(table, { colorScheme: "dark", viewport: { width: 390, height: 844 } }, async (page) => {
    assert.ok(await page.evaluate(() => document.documentElement.scrollWidth) <= 390, "the page scrolls sideways");
    await screenshot(page, "batch-dark-390");
  });
});

test("pages name the file, its hash and that of the result", async () => {
  const file = pageOf("quiz-hashes.xml", projects.projectWithQuiz());
  execFileSync(program, ["migrate", join(folder, "quiz-hashes.xml"), "-q"]);
  const hash = (name) => execFileSync("sha256sum", [join(folder, name)], { encoding: "utf8" }).split(" ")[0];
  await inPage(file, {}, async (page) => {
    assert.equal(await page.locator("#input-sha256").textContent(), hash("quiz-hashes.xml"));
    assert.equal(await page.locator("#result-sha256").textContent(), hash("quiz-hashes.v77.json"));
    assert.equal(await page.title(), `${join(folder, "quiz-hashes.xml")}: migration report`);
  });
  assert.ok(basename(file).endsWith(".html"));
  assert.doesNotMatch(readFileSync(file, "utf8"), /https?:/);
});
