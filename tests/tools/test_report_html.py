#!/usr/bin/python3
"""End-to-end test of `xun report --html` in a real browser.

Writes the page of the default installation with the tool, loads it in
headless Chromium (through chromedriver and Selenium, Debian's chromium,
chromium-driver and python3-selenium), types into the search box and the
converter, and checks what the page shows against what the tool says: the
units, item types and filters, an item type's allowed units, the rows the
search leaves, and the converter's results, which must equal the library's
bit for bit (the tool's `convert --exact`).

Usage: test_report_html.py XUN_TOOL SOURCE_DIR
Exit status: 0 passed, 1 failed, 77 skipped (no browser or no Selenium).
"""

import json
import os
import random
import shutil
import struct
import subprocess
import sys
import tempfile

SKIP = 77
failures = []


def check(condition, message):
    if not condition:
        failures.append(message)
        print("FAILED: " + message)


def bits(value):
    return struct.pack("<d", value).hex()


def main():
    tool, source = sys.argv[1], sys.argv[2]
    try:
        from selenium import webdriver
        from selenium.webdriver.chrome.service import Service
        from selenium.webdriver.common.by import By
        from selenium.webdriver.support.ui import Select
    except ImportError:
        print("skipped: python3-selenium is not installed")
        return SKIP
    chromium = shutil.which("chromium")
    driver = shutil.which("chromedriver")
    if chromium is None or driver is None:
        print("skipped: chromium and chromium-driver are not installed")
        return SKIP

    home = os.path.join(source, "data")

    def xun(*args, stdin=None):
        run = subprocess.run([tool, "--home", home] + list(args), input=stdin,
                             capture_output=True, text=True)
        if run.returncode != 0:
            raise RuntimeError("xun %s: %s" % (" ".join(args), run.stderr))
        return run.stdout

    work = tempfile.mkdtemp(prefix="xun-report-test-")
    try:
        page = os.path.join(work, "units.html")
        run = subprocess.run([tool, "--home", home, "report", "--html", page],
                             capture_output=True, text=True)
        check(run.returncode == 0 and run.stdout == "" and run.stderr == "",
              "report --html: status %d, output %r, errors %r"
              % (run.returncode, run.stdout, run.stderr))
        with open(page, encoding="utf-8") as handle:
            html = handle.read()
        # One page: nothing loaded from elsewhere.
        for needle in ("http://", "https://", " src=", "<link", "@import", "url("):
            check(needle not in html, "the page refers to something outside: %r" % needle)

        options = webdriver.ChromeOptions()
        options.binary_location = chromium
        for argument in ("--headless=new", "--no-sandbox", "--disable-gpu",
                         "--disable-dev-shm-usage", "--window-size=1280,900",
                         "--user-data-dir=" + os.path.join(work, "profile")):
            options.add_argument(argument)
        browser = webdriver.Chrome(service=Service(executable_path=driver), options=options)
        try:
            browser.get("file://" + page)
            check_page(browser, xun, By, Select)
        finally:
            browser.quit()
    finally:
        shutil.rmtree(work, ignore_errors=True)
    return 1 if failures else 0


def visible_texts(browser, selector):
    return browser.execute_script(
        "return Array.from(document.querySelectorAll(arguments[0]))"
        ".filter(e => !e.hidden).map(e => e.textContent);", selector)


def check_page(browser, xun, By, Select):
    check(browser.execute_script("return typeof window.xunReport;") == "object",
          "the page's script did not run")
    units = json.loads(xun("units", "--json"))
    items = json.loads(xun("items", "--json"))
    filters = json.loads(xun("filters", "--json"))

    # Every unit, every item type, every filter with its item types.
    unit_keys = browser.execute_script(
        "return Array.from(document.querySelectorAll('#unit-table tbody tr'))"
        ".map(r => Number(r.dataset.key));")
    check(unit_keys == [unit["key"] for unit in units],
          "unit rows: %d, the tool lists %d units" % (len(unit_keys), len(units)))
    item_keys = browser.execute_script(
        "return Array.from(new Set(Array.from(document.querySelectorAll('.item'))"
        ".map(e => Number(e.dataset.key))));")
    check(sorted(item_keys) == sorted(item["key"] for item in items),
          "item types: %d on the page, %d in the tool" % (len(item_keys), len(items)))
    for filter_ in filters:
        count = browser.execute_script(
            "const s = document.getElementById(arguments[0]);"
            "return s ? s.querySelectorAll('.item').length : -1;", "filter-" + filter_["ident"])
        check(count == filter_["itemCount"], "filter %s: %d item types on the page, %d in the tool"
              % (filter_["ident"], count, filter_["itemCount"]))

    # One item type in full: its line and its allowed units, default first.
    shown = json.loads(xun("show", "--json", "ItemWaterLevel"))[0]
    block = browser.find_element(By.CSS_SELECTOR, "#items .item[data-key='300']")
    meta = block.find_element(By.CSS_SELECTOR, ".meta").text
    check(meta == "dimension %s · user unit %s · decimals %d · default value %s"
          % (shown["dimension"], shown["userUnit"]["abbreviation"], shown["decimals"],
             shown["defaultValue"]), "ItemWaterLevel reads %r" % meta)
    rows = [[cell.text for cell in row.find_elements(By.TAG_NAME, "td")]
            for row in block.find_elements(By.CSS_SELECTOR, "tbody tr")]
    expected = []
    for ref in shown["allowedUnits"]:
        unit = json.loads(xun("show", "--json", ref["ident"]))[0]
        expected.append([unit["abbreviation"], unit["ident"], unit["factor"], unit["offset"],
                         unit["dimension"]])
    check([[r[0], r[1], float(r[2]), float(r[3]), r[4]] for r in rows] == expected,
          "ItemWaterLevel's allowed units: %r, expected %r" % (rows, expected))

    # One unit row in full.
    foot = json.loads(xun("show", "--json", "UnitFoot"))[0]
    cells = browser.execute_script(
        "return Array.from(document.querySelector(\"#unit-table tr[data-key='\" + arguments[0] +"
        " \"']\").cells).map(c => c.textContent);", foot["key"])
    check(cells == [str(foot["key"]), foot["ident"], foot["description"], foot["abbreviation"],
                    "; ".join(foot["aliases"]), foot["expression"], "0.3048", "0", "L"],
          "the row of UnitFoot reads %r" % cells)

    # The search: typed, it leaves exactly the rows that contain it.
    search = browser.find_element(By.ID, "search")
    search.send_keys("KNOT")
    texts = visible_texts(browser, "#unit-table tbody tr")
    check(len(texts) > 0 and all("knot" in text.lower() for text in texts),
          "search 'KNOT' shows %r" % texts)
    hidden = browser.execute_script(
        "return Array.from(document.querySelectorAll('#unit-table tbody tr'))"
        ".filter(r => r.hidden).map(r => r.textContent);")
    check(len(hidden) + len(texts) == len(units)
          and not any("knot" in text.lower() for text in hidden),
          "search 'KNOT' hides a row that contains it")
    knot_ident = browser.execute_script(
        "return Array.from(document.querySelectorAll('#unit-table tbody tr'))"
        ".filter(r => !r.hidden).map(r => r.cells[1].textContent);")
    check("UnitKnot" in knot_ident and "UnitMeter" not in knot_ident,
          "search 'KNOT' shows the units %r" % knot_ident)
    items_shown = visible_texts(browser, ".item")
    check(all("knot" in text.lower() for text in items_shown),
          "search 'KNOT' shows item types without it")
    count = browser.find_element(By.ID, "search-count").text
    distinct = browser.execute_script(
        "return new Set(Array.from(document.querySelectorAll('.item'))"
        ".filter(e => !e.hidden).map(e => e.dataset.key)).size;")
    check(count == "%d unit%s, %d item types" % (len(texts), "" if len(texts) == 1 else "s", distinct)
          and distinct > 1,
          "search count reads %r" % count)
    search.clear()
    search.send_keys(" ")
    check(browser.find_element(By.ID, "search-count").text
          == "%d units, %d item types" % (len(units), len(items)), "an empty search shows all")

    # The converter, typed into: 100 degC in degF.
    temperature = browser.execute_script(
        "const tables = JSON.parse(document.getElementById('xun-tables').textContent);"
        "const item = tables.itemTypes.find(i => !i.anyUnit && i.allowedUnits.some(u => "
        "u.ident === 'UnitDegreeCelsius') && i.allowedUnits.some(u => u.ident === "
        "'UnitDegreeFahrenheit')); return item ? item.key : null;")
    check(temperature is not None, "no item type allows degC and degF")
    if temperature is not None:
        celsius = json.loads(xun("show", "--json", "UnitDegreeCelsius"))[0]["key"]
        fahrenheit = json.loads(xun("show", "--json", "UnitDegreeFahrenheit"))[0]["key"]
        Select(browser.find_element(By.ID, "conv-item")).select_by_value(str(temperature))
        Select(browser.find_element(By.ID, "conv-from")).select_by_value(str(celsius))
        Select(browser.find_element(By.ID, "conv-to")).select_by_value(str(fahrenheit))
        value = browser.find_element(By.ID, "conv-value")
        value.clear()
        value.send_keys("100")
        result = browser.find_element(By.ID, "conv-result").text
        exact = browser.find_element(By.ID, "conv-exact").text
        library = xun("convert", "--exact", "100", "UnitDegreeCelsius", "UnitDegreeFahrenheit")
        check(result == "212", "100 degC shows as %r degF" % result)
        check(exact.startswith("exact: ") and bits(float(exact[7:])) == bits(float(library)),
              "100 degC: the page says %r, the library %r" % (exact, library))
        value.send_keys("x")
        check(browser.find_element(By.ID, "conv-result").text == "not a number",
              "'100x' is taken for a number")

    # A sample of conversions between allowed units: the page's function
    # against the library, bit for bit.
    tables = browser.execute_script(
        "return JSON.parse(document.getElementById('xun-tables').textContent);")
    rng = random.Random(20261124)
    candidates = [item for item in tables["itemTypes"]
                  if not item["anyUnit"] and len(item["allowedUnits"]) >= 2]
    pairs = [("UnitDegreeCelsius", "UnitDegreeFahrenheit"), ("UnitKelvin", "UnitDegreeCelsius")]
    for item in rng.sample(candidates, min(40, len(candidates))):
        a, b = rng.sample(item["allowedUnits"], 2)
        pairs.append((a["ident"], b["ident"]))
    ident_key = {unit["ident"]: unit["key"] for unit in tables["units"]}
    compared = 0
    for source_ident, target_ident in pairs:
        values = [0.0, 1.0, -1.0, 100.0, 0.1, 1e-300, 1e300]
        values += [rng.uniform(-1e4, 1e4) for _ in range(12)]
        values += [rng.choice((-1, 1)) * 10 ** rng.uniform(-15, 15) for _ in range(12)]
        output = xun("convert", "--exact", source_ident, target_ident,
                     stdin="".join(repr(v) + "\n" for v in values))
        library = [bits(float(text)) for text in output.split()]
        page = browser.execute_script(
            "const hex = h => { const b = new Uint8Array(8);"
            " for (let i = 0; i < 8; i++) b[i] = parseInt(h.substr(2 * i, 2), 16);"
            " return new DataView(b.buffer).getFloat64(0, true); };"
            "const out = v => { const d = new DataView(new ArrayBuffer(8)); d.setFloat64(0, v, true);"
            " return Array.from(new Uint8Array(d.buffer)).map(x => x.toString(16).padStart(2, '0'))"
            ".join(''); };"
            "return arguments[2].map(h => out(window.xunReport.convertUnits(arguments[0],"
            " arguments[1], hex(h))));",
            ident_key[source_ident], ident_key[target_ident], [bits(v) for v in values])
        for value, mine, theirs in zip(values, page, library):
            compared += 1
            check(mine == theirs, "%r %s in %s: page %s, library %s"
                  % (value, source_ident, target_ident, mine, theirs))
        check(len(library) == len(values), "the tool converted %d of %d numbers"
              % (len(library), len(values)))
    check(compared >= 1000, "only %d conversions compared" % compared)
    print("compared %d conversions over %d unit pairs" % (compared, len(pairs)))


if __name__ == "__main__":
    sys.exit(main())
