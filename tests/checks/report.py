"""Drives a browser over a report page of the machine qemu-q35: report.py PAGE DIRECTORY"""

import html.parser
import json
import os
import sys
import time

from selenium import webdriver
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys
from selenium.webdriver.support.ui import WebDriverWait

page, directory = sys.argv[1:]
address = "file://" + page
wrong = 0


def expect(condition, what):
    global wrong
    if not condition:
        print("not so:", what)
        wrong += 1


class Markup(html.parser.HTMLParser):
    """Elements close in the order in which they open; ids are unique; nothing lies elsewhere."""

    VOID = {"meta", "link", "input"}

    def __init__(self, text):
        super().__init__()
        self.open, self.ids, self.targets = [], set(), set()
        self.feed(text)
        expect(not self.open, "every element is closed: %s" % self.open)
        expect(self.targets <= self.ids, "targets are there: %s" % (self.targets - self.ids))

    def handle_starttag(self, tag, attributes):
        attributes = dict(attributes)
        name = attributes.get("id")
        expect(name not in self.ids, "the id %s is unique" % name)
        if name:
            self.ids.add(name)
        target = attributes.get("href", "#content")
        if target.startswith("#"):
            self.targets.add(target[1:])
        expect(target[0] == "#" or target.startswith("data:"), target + " is of this page")
        expect("src" not in attributes, "%s has no src" % tag)
        if tag not in self.VOID:
            self.open.append(tag)

    def handle_endtag(self, tag):
        expect(self.open.pop() == tag, "</%s> stands in its place" % tag)


def start():
    options = webdriver.ChromeOptions()
    options.binary_location = "/usr/bin/chromium"
    arguments = ["--headless=new", "--disable-gpu", "--disable-dev-shm-usage",
                 "--force-prefers-reduced-motion",
                 "--window-size=1280,900", "--user-data-dir=" + directory + "/profile",
                 "--proxy-server=127.0.0.1:9"]  # where nobody listens
    if os.getuid() == 0:
        arguments.append("--no-sandbox")
    for argument in arguments:
        options.add_argument(argument)
    options.set_capability("goog:loggingPrefs", {"browser": "ALL", "performance": "ALL"})
    return webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)


browser = start()
run = browser.execute_script


def find(selector):
    return browser.find_element(By.CSS_SELECTOR, selector)


def all_texts(selector):
    return run("return Array.from(document.querySelectorAll(arguments[0]), e => e.textContent)",
               selector)


def shown(selector):
    return run("return Array.from(document.querySelectorAll(arguments[0]))"
               ".filter(e => e.checkVisibility()).length", selector)


def media(**features):
    browser.execute_cdp_cmd("Emulation.setEmulatedMedia", {
        "media": features.pop("media", ""),
        "features": [{"name": name.replace("_", "-"), "value": value}
                     for name, value in features.items()]})


def width(pixels):
    browser.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", {
        "width": pixels, "height": 900, "deviceScaleFactor": 1, "mobile": False})


# The least contrast of any visible text with what it stands on, and that text.
CONTRAST = """
const parts = (color) => color.match(/[\\d.]+/g).map(Number);
const light = (color) => {
  const [r, g, b] = parts(color).slice(0, 3).map((c) => c / 255)
      .map((c) => c <= 0.04045 ? c / 12.92 : ((c + 0.055) / 1.055) ** 2.4);
  return 0.2126 * r + 0.7152 * g + 0.0722 * b;
};
const below = (element) => {
  const color = getComputedStyle(element).backgroundColor;
  return parts(color)[3] === 0 && element.parentElement ? below(element.parentElement) : color;
};
let least = [22, ''];
for (const element of document.querySelectorAll('body *')) {
  const isText = Array.from(element.childNodes).some((n) => n.nodeType === 3 && n.data.trim());
  if (!isText || !element.checkVisibility()) continue;
  const [a, b] = [light(getComputedStyle(element).color), light(below(element))];
  const contrast = (Math.max(a, b) + 0.05) / (Math.min(a, b) + 0.05);
  if (contrast < least[0]) least = [contrast, element.textContent];
}
return least;
"""


# The words of column heads that stand on two lines.
TORN_HEADS = """
const torn = [];
for (const head of document.querySelectorAll('thead th')) {
  const text = document.createTreeWalker(head, NodeFilter.SHOW_TEXT).nextNode();
  for (const word of text.data.matchAll(/\\S+/g)) {
    const range = document.createRange();
    range.setStart(text, word.index);
    range.setEnd(text, word.index + word[0].length);
    if (range.getClientRects().length > 1) torn.push(word[0]);
  }
}
return torn;
"""


def check_page():
    browser.get(address)
    expect(browser.title == "captured: inventory", "the title is the machine's: " + browser.title)
    headings = all_texts("main h2")
    expect(headings[:4] == ["Changes", "Summary", "System", "Firmware"], "sections: %s" % headings)
    expect(len(headings) == len(all_texts("nav a")), "the contents name every section")
    expect(shown("main h2") == len(headings), "every section shows")
    expect(all_texts(".changes del")[0] == "958 Megabytes", "what was stands beside what is")
    for landmark in ["header", "nav", "main", "footer", "[role=search]"]:
        expect(shown(landmark) == 1, "there is one %s" % landmark)
    expect(shown("table") == shown("table > caption"), "every table has a caption")


def search(text):
    query = find("#query")
    query.send_keys(Keys.ESCAPE, text)
    if text:
        WebDriverWait(browser, 30).until(lambda _: find("#found").text.endswith(" match"))
        run("return new Promise((done) => setTimeout(done, 200))")
    return find("#found").text


def check_search():
    total = run("return document.querySelectorAll('main tbody, main .facts dl > div').length")
    visible = "main tbody, main .facts dl > div"
    find("body").send_keys("/")
    expect(run("return document.activeElement.id") == "query", "/ leads to the search box")
    expect(find("#query").get_attribute("value") == "", "and is not typed there")
    # Four caches, and what links each to its processor and to the system.
    expect(search("l1D-") == "12 of %d match" % total, "12 are left: " + find("#found").text)
    expect(shown("#class-KVRSG_CacheMemory tbody") == 4, "the 4 data caches show")
    expect(all_texts("#class-KVRSG_CacheMemory tbody:not([hidden]) th") ==
           ["L1d-0", "L1d-1", "L1d-2", "L1d-3"], "they are the right ones")
    expect(shown("main h2") == 1, "sections without a row are gone")
    expect(shown("nav a") == 1, "from the contents, too")
    expect(search("unified 16 mega").startswith("2 of "), "words narrow each other")
    expect(search("authenticamd").startswith("2 of "), "what is folded away is found")
    expect(shown(".deep") == 2, "and its row says so")
    expect(search("no such thing").startswith("0 of "), "nothing is found")
    expect(shown(visible) == 0, "and nothing shows")
    expect(search("") == "", "Escape says nothing more")
    expect(shown("main h2") == len(all_texts("main h2")), "and brings everything back")
    live = find("#found").get_attribute("aria-live")
    expect(live == "polite", "screen readers are told")


def check_sort():
    table = "#class-KVRSG_CacheMemory "
    names = all_texts(table + "thead th")

    def column(name):
        at = names.index(name) + 1
        return at, find(table + "thead th:nth-child(%d) button" % at)

    def order(at):
        return run("return Array.from(document.querySelectorAll(arguments[0]), "
                   "e => e.dataset.value ?? e.textContent)",
                   table + "tbody > tr:first-child > :nth-child(%d)" % at)

    at, button = column("Size")
    values = sorted(int(value) for value in order(at))
    button.click()
    expect([int(value) for value in order(at)] == values, "sizes rise: %s" % order(at))
    head = find(table + "thead th:nth-child(%d)" % at)
    expect(head.get_attribute("aria-sort") == "ascending", "the head says so")
    button.send_keys(Keys.ENTER)
    expect([int(value) for value in order(at)] == values[::-1], "sizes fall: %s" % order(at))
    expect(head.get_attribute("aria-sort") == "descending", "the head says so")
    at, button = column("Device ID")
    button.send_keys(Keys.SPACE)
    expect(order(at) == sorted(order(at)), "names rise: %s" % order(at))
    expect(len(browser.find_elements(By.CSS_SELECTOR, table + "[aria-sort]")) == 1,
           "one column sorts")
    # What is missing comes last, numbers of any size are numbers.
    run("""
      const rows = document.querySelectorAll('#class-KVRSG_CacheMemory tbody > tr:first-child');
      const set = (i, value) => { rows[i].cells[3].dataset.value = value; };
      set(0, '18446744073709551615'); set(1, '18446744073709551614'); set(2, '-2.5'); set(4, '-10');
      rows[3].cells[3].className = 'missing';""")
    at, button = column("Size")
    button.click()
    expect(order(at)[:2] == ["-10", "-2.5"] and order(at)[-3:-1] ==
           ["18446744073709551614", "18446744073709551615"], "big and small: %s" % order(at))
    last = table + "tbody:last-child > tr > :nth-child(%d)" % at
    expect(find(last).get_attribute("class") == "missing", "what is missing is last")
    button.click()
    expect(find(last).get_attribute("class") == "missing", "also downwards")


def check_links():
    browser.get(address)
    link = "#class-KVRSG_AssociatedCacheMemory tbody"
    expect(shown(link) == 0, "links are folded away")
    run("location.hash = document.querySelector(arguments[0]).id", link)
    WebDriverWait(browser, 30).until(lambda _: shown(link) > 0)
    search("spectre")
    run("location.hash = 'KVRSG_Processor.CPU0'")
    WebDriverWait(browser, 30).until(lambda _: shown("#KVRSG_Processor\\.CPU0") == 1)
    expect(find("#found").text == "", "a link leads out of a search")


def check_keyboard():
    browser.get(address)
    controls = run("""
      window.reached = new Set();
      document.addEventListener('focusin', (event) => reached.add(event.target));
      return Array.from(document.querySelectorAll('a, button, input, summary'))
          .filter((e) => e.checkVisibility()).length;""")
    webdriver.ActionChains(browser).send_keys(Keys.TAB).perform()
    expect(run("return document.activeElement.className") == "skip", "the skip link comes first")
    expect(run("return document.activeElement.getBoundingClientRect().top") >= 0, "and shows")
    for _ in range(0, controls + 20, 20):
        webdriver.ActionChains(browser).send_keys(Keys.TAB * 20).perform()
    reached = run("""return Array.from(document.querySelectorAll('a, button, input, summary'))
        .filter((e) => reached.has(e)).length""")
    expect(reached == controls, "%d of %d controls are reached by Tab" % (reached, controls))
    find("#query").send_keys(Keys.TAB)
    outline = run("return getComputedStyle(document.activeElement).outlineStyle")
    expect(outline == "solid", "what has the focus shows it: " + outline)


def check_looks():
    browser.get(address)
    paper = "return getComputedStyle(document.documentElement).backgroundColor"
    for scheme, color in [("light", "rgb(253, 253, 252)"), ("dark", "rgb(20, 23, 26)")]:
        media(prefers_color_scheme=scheme)
        expect(run(paper) == color, "%s is %s" % (scheme, run(paper)))
        contrast, text = run(CONTRAST)
        expect(contrast >= 4.5, "contrast %.2f of '%s' in the %s" % (contrast, text, scheme))
    media(media="print", prefers_color_scheme="dark")
    expect(run(paper) == "rgb(255, 255, 255)", "paper is white: %s" % run(paper))
    expect(shown("nav, #search, button:not(thead *), .skip") == 0, "controls are not printed")
    expect(shown("details dd") == len(all_texts("details dd")), "what is folded away is printed")
    width(680)  # of A4 between its margins
    expect(run(TORN_HEADS) == [], "no column head is torn: %s" % run(TORN_HEADS))
    expect(len(browser.execute_cdp_cmd("Page.printToPDF", {})["data"]) > 10000, "it prints")
    media()
    for pixels in [360, 768, 1280]:
        width(pixels)
        needed = run("return document.documentElement.scrollWidth")
        expect(needed <= pixels, "%d pixels are enough: %d" % (pixels, needed))


def check_size():
    browser.get(address)
    run("""
      const row = document.querySelector('#class-KVRSG_CacheMemory tbody');
      for (let i = 0; i < 5000; ++i) row.after(row.cloneNode(true));""")
    began = time.monotonic()
    expect(search("l1d-0").startswith("5003 of "), "many are found: " + find("#found").text)
    expect(time.monotonic() - began < 10, "in %.1f s" % (time.monotonic() - began))


def check_without_scripts():
    width(1280)
    browser.execute_cdp_cmd("Emulation.setScriptExecutionDisabled", {"value": True})
    browser.get(address)
    expect(shown("main h2") == len(all_texts("main h2")), "without scripts every section shows")
    expect(shown("#class-KVRSG_CacheMemory tbody") == 14, "and every row")
    expect(shown("#search, button") == 0, "but nothing that would do nothing")
    browser.execute_cdp_cmd("Emulation.setScriptExecutionDisabled", {"value": False})


def check_logs():
    for entry in browser.get_log("browser"):
        expect(False, "the console is silent: " + entry["message"])
    requests = []
    for entry in browser.get_log("performance"):
        message = json.loads(entry["message"])["message"]
        if message["method"] != "Network.requestWillBeSent":
            continue
        asked = message["params"]["request"]["url"].split("#")[0]
        by = message["params"]["documentURL"].split("#")[0]
        if by == address:
            requests.append(asked)
            expect(asked == address or asked.startswith("data:"), "nothing is fetched: " + asked)
    expect(address in requests, "requests are seen")


with open(page, encoding="utf-8") as file:
    Markup(file.read())
try:
    for check in [check_page, check_search, check_sort, check_links, check_keyboard, check_looks,
                  check_size, check_without_scripts, check_logs]:
        check()
finally:
    browser.quit()
sys.exit(wrong != 0)
