#include "ReportPage.h"

namespace xuntool {

namespace {

const char kHead[] = R"page(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>xun: units and item types</title>
<style>
:root { --ink: #1d2330; --muted: #5c6475; --line: #d9dde5; --band: #f3f5f9; --accent: #1f5fbf; }
* { box-sizing: border-box; }
body { margin: 0; font: 14px/1.45 system-ui, -apple-system, "Segoe UI", sans-serif; color: var(--ink); }
header { position: sticky; top: 0; z-index: 2; background: #fff; border-bottom: 1px solid var(--line);
         padding: 10px 24px; display: flex; flex-wrap: wrap; gap: 8px 18px; align-items: center; }
header h1 { font-size: 18px; margin: 0; }
#source { color: var(--muted); margin: 0; font-size: 12px; }
#search { flex: 1 1 320px; font: inherit; padding: 6px 10px; border: 1px solid var(--line); border-radius: 6px; }
#search-count { color: var(--muted); font-size: 13px; }
main { padding: 8px 24px 40px; }
h2 { font-size: 16px; margin: 22px 0 8px; }
h3 { font-size: 15px; margin: 18px 0 6px; border-bottom: 2px solid var(--line); padding-bottom: 2px; }
h4 { font-size: 14px; margin: 0 0 2px; }
small, .meta { color: var(--muted); font-weight: normal; }
.meta { margin: 0 0 4px; font-size: 13px; }
#converter { background: var(--band); border: 1px solid var(--line); border-radius: 8px; padding: 10px 14px; }
#converter label { margin-right: 12px; white-space: nowrap; }
#converter select, #converter input { font: inherit; padding: 3px 6px; max-width: 290px; }
#conv-value { width: 12em; }
#conv-result { font-size: 20px; font-weight: 600; }
#conv-exact, #conv-formula { color: var(--muted); font-family: ui-monospace, monospace; font-size: 12px; }
.items { display: grid; grid-template-columns: repeat(auto-fill, minmax(540px, 1fr)); gap: 10px; }
.item { border: 1px solid var(--line); border-radius: 6px; padding: 8px 10px; min-width: 0; overflow-x: auto; }
.item button { float: right; font: inherit; font-size: 12px; cursor: pointer; }
table { border-collapse: collapse; width: 100%; }
th, td { text-align: left; padding: 2px 6px 2px 0; border-bottom: 1px solid var(--band); vertical-align: top; }
th { color: var(--muted); font-weight: 600; font-size: 12px; }
td.num { font-family: ui-monospace, monospace; font-size: 11px; }
#units { overflow-x: auto; }
td:first-child { white-space: nowrap; }
tr.default td { font-weight: 600; }
[hidden] { display: none !important; }
</style>
</head>
<body>
<header>
<h1>Units and item types</h1>
<p id="source"></p>
<input id="search" type="search" placeholder="Search units and item types: name, abbreviation, definition" autocomplete="off">
<span id="search-count"></span>
</header>
<main>
<section id="converter">
<h2>Converter</h2>
<label>Item type <select id="conv-item"></select></label>
<label>Value <input id="conv-value" type="text" value="1" autocomplete="off"></label>
<label>from <select id="conv-from"></select></label>
<label>to <select id="conv-to"></select></label>
<p>= <output id="conv-result"></output> <span id="conv-to-name"></span> <span id="conv-exact"></span></p>
<p id="conv-formula"></p>
</section>
<section id="items">
<h2>Item types by filter</h2>
</section>
<section id="units">
<h2>Units</h2>
<table id="unit-table">
<thead><tr><th>key</th><th>ident</th><th>description</th><th>abbreviation</th><th>aliases</th><th>definition</th><th>factor</th><th>offset</th><th>dimension</th></tr></thead>
<tbody></tbody>
</table>
</section>
</main>
<script type="application/json" id="xun-tables">)page";

const char kTail[] = R"page(</script>
<script>
"use strict";
(function () {
  const tables = JSON.parse(document.getElementById("xun-tables").textContent);
  const unitByKey = new Map();
  for (const unit of tables.units) unitByKey.set(unit.key, unit);
  const itemByKey = new Map();
  for (const item of tables.itemTypes) itemByKey.set(item.key, item);

  function element(tag, text, className) {
    const node = document.createElement(tag);
    if (text !== undefined && text !== null) node.textContent = String(text);
    if (className) node.className = className;
    return node;
  }
  function row(cells, numeric) {
    const tr = document.createElement("tr");
    cells.forEach(function (cell, i) { tr.appendChild(element("td", cell, numeric && numeric[i] ? "num" : "")); });
    return tr;
  }
  // A double as the shortest text that reads back as the same double.
  function exact(value) { return String(value); }
  // At most 15 significant digits, trailing zeros dropped, as printf's %.15g.
  function digits15(value) {
    if (!isFinite(value)) return String(value);
    if (value === 0) return Object.is(value, -0) ? "-0" : "0";
    const parts = value.toExponential(14).split("e");
    const exponent = Number(parts[1]);
    function trim(text) { return text.indexOf(".") < 0 ? text : text.replace(/0+$/, "").replace(/\.$/, ""); }
    if (exponent < -4 || exponent >= 15) {
      const sign = exponent < 0 ? "-" : "+";
      const size = String(Math.abs(exponent));
      return trim(parts[0]) + "e" + sign + (size.length < 2 ? "0" + size : size);
    }
    return trim(value.toFixed(14 - exponent));
  }
  function plural(n, noun) { return n + " " + noun + (n === 1 ? "" : "s"); }
  function sameDimension(a, b) { return JSON.stringify(a.exponents) === JSON.stringify(b.exponents); }

  // The library's conversion: ((x * f1 + o1) - o2) / f2, in this order, in
  // double precision; null when the units do not convert.
  function convertUnits(fromKey, toKey, x) {
    const from = unitByKey.get(fromKey);
    const to = unitByKey.get(toKey);
    if (!from || !to || fromKey === 0 || toKey === 0 || !sameDimension(from, to)) return null;
    return ((x * from.factor + from.offset) - to.offset) / to.factor;
  }
  function unitLabel(unit) { return unit.abbreviation ? unit.abbreviation + " \u2014 " + unit.ident : unit.ident; }
  function allowedUnits(item) {
    if (item.anyUnit) return tables.units;
    return item.allowedUnits.map(function (ref) { return unitByKey.get(ref.key); }).filter(Boolean);
  }

  document.getElementById("source").textContent =
    tables.setup + " \u00b7 " + tables.units.length + " units, " + tables.itemTypes.length +
    " item types, " + tables.filters.length + " filters \u00b7 libxun " + tables.version;

  // Item types by filter, then those in no filter.
  const itemsSection = document.getElementById("items");
  const blocks = [];
  function itemBlock(item) {
    const block = element("div", null, "item");
    block.dataset.key = item.key;
    const button = element("button", "convert");
    button.type = "button";
    button.addEventListener("click", function () { chooseItem(item.key); window.scrollTo(0, 0); });
    block.appendChild(button);
    const title = element("h4", item.ident + " ");
    title.appendChild(element("small", item.description + " \u00b7 key " + item.key));
    block.appendChild(title);
    const user = item.userUnit ? item.userUnit.abbreviation || item.userUnit.ident : "";
    block.appendChild(element("p", "dimension " + (item.dimension || "none") + " \u00b7 user unit " + user +
      " \u00b7 decimals " + item.decimals + " \u00b7 default value " + exact(item.defaultValue), "meta"));
    if (!item.anyUnit) block.appendChild(element("p", "allowed units, the default (in bold) first:", "meta"));
    if (item.anyUnit) {
      block.appendChild(element("p", "allows every unit", "meta"));
    } else {
      const table = element("table", null, "allowed");
      const head = element("thead");
      const headRow = document.createElement("tr");
      ["abbr.", "unit", "factor", "offset", "dimension"].forEach(function (name) { headRow.appendChild(element("th", name)); });
      head.appendChild(headRow);
      table.appendChild(head);
      const body = element("tbody");
      allowedUnits(item).forEach(function (unit, i) {
        const tr = row([unit.abbreviation, unit.ident, exact(unit.factor), exact(unit.offset), unit.dimension],
                       [false, false, true, true, false]);
        if (i === 0) tr.className = "default";
        body.appendChild(tr);
      });
      table.appendChild(body);
      block.appendChild(table);
    }
    block.dataset.text = block.textContent.toLowerCase();
    blocks.push(block);
    return block;
  }
  const groups = [];
  function group(id, title, note, items) {
    const section = element("section", null, "filter");
    section.id = id;
    const heading = element("h3", title + " ");
    heading.appendChild(element("small", note));
    section.appendChild(heading);
    const list = element("div", null, "items");
    items.forEach(function (item) { list.appendChild(itemBlock(item)); });
    section.appendChild(list);
    itemsSection.appendChild(section);
    groups.push(section);
  }
  const inFilter = new Set();
  for (const filter of tables.filters) {
    const items = filter.itemTypes.map(function (ref) { inFilter.add(ref.key); return itemByKey.get(ref.key); }).filter(Boolean);
    group("filter-" + filter.ident, filter.ident,
          "0x" + (filter.key >>> 0).toString(16).toUpperCase().padStart(8, "0") + " \u00b7 " + filter.description +
          " \u00b7 " + items.length + " item types", items);
  }
  const unfiltered = tables.itemTypes.filter(function (item) { return !inFilter.has(item.key); });
  if (unfiltered.length > 0) group("filter-none", "In no filter", unfiltered.length + " item types", unfiltered);

  // Every unit.
  const unitBody = document.querySelector("#unit-table tbody");
  const unitRows = [];
  for (const unit of tables.units) {
    const tr = row([unit.key, unit.ident, unit.description, unit.abbreviation, unit.aliases.join("; "),
                    unit.expression === null ? "" : unit.expression, exact(unit.factor), exact(unit.offset), unit.dimension],
                   [true, false, false, false, false, false, true, true, false]);
    tr.dataset.key = unit.key;
    tr.dataset.text = tr.textContent.toLowerCase();
    unitBody.appendChild(tr);
    unitRows.push(tr);
  }

  // Search: a unit row or an item type is shown when its text contains the
  // words of the search, ignoring case.
  const search = document.getElementById("search");
  const count = document.getElementById("search-count");
  function applySearch() {
    const query = search.value.trim().toLowerCase();
    let units = 0;
    for (const tr of unitRows) {
      tr.hidden = query !== "" && tr.dataset.text.indexOf(query) < 0;
      if (!tr.hidden) units++;
    }
    const shown = new Set();
    for (const block of blocks) {
      block.hidden = query !== "" && block.dataset.text.indexOf(query) < 0;
      if (!block.hidden) shown.add(block.dataset.key);
    }
    for (const section of groups)
      section.hidden = section.querySelector(".item:not([hidden])") === null;
    count.textContent = plural(units, "unit") + ", " + plural(shown.size, "item type");
  }
  search.addEventListener("input", applySearch);

  // The converter between the units of one item type.
  const itemSelect = document.getElementById("conv-item");
  const fromSelect = document.getElementById("conv-from");
  const toSelect = document.getElementById("conv-to");
  const valueInput = document.getElementById("conv-value");
  const result = document.getElementById("conv-result");
  const exactText = document.getElementById("conv-exact");
  const toName = document.getElementById("conv-to-name");
  const formula = document.getElementById("conv-formula");
  for (const item of tables.itemTypes) {
    if (!item.anyUnit && allowedUnits(item).length === 0) continue;
    const option = element("option", item.ident + " \u2014 " + item.description);
    option.value = item.key;
    itemSelect.appendChild(option);
  }
  function fillUnits(select, units, chosen) {
    select.textContent = "";
    for (const unit of units) {
      const option = element("option", unitLabel(unit));
      option.value = unit.key;
      select.appendChild(option);
    }
    select.value = String(chosen);
  }
  function chooseItem(key) {
    const item = itemByKey.get(Number(key));
    if (!item) return;
    itemSelect.value = String(item.key);
    const units = allowedUnits(item);
    const first = units.length > 0 ? units[0].key : 0;
    let second = item.userUnit && item.userUnit.key !== first ? item.userUnit.key : first;
    if (second === first && units.length > 1) second = units[1].key;
    fillUnits(fromSelect, units, first);
    fillUnits(toSelect, units, second);
    update();
  }
  function update() {
    const from = unitByKey.get(Number(fromSelect.value));
    const to = unitByKey.get(Number(toSelect.value));
    toName.textContent = to ? to.abbreviation || to.ident : "";
    formula.textContent = from && to
      ? "x[" + (to.abbreviation || to.ident) + "] = ((x[" + (from.abbreviation || from.ident) + "] \u00d7 " +
        exact(from.factor) + " + " + exact(from.offset) + ") \u2212 " + exact(to.offset) + ") \u00f7 " + exact(to.factor)
      : "";
    const text = valueInput.value.trim();
    const x = Number(text);
    if (!from || !to || text === "" || Number.isNaN(x)) {
      result.textContent = text === "" ? "" : "not a number";
      exactText.textContent = "";
      return;
    }
    const y = convertUnits(from.key, to.key, x);
    if (y === null) {
      result.textContent = "the dimensions differ";
      exactText.textContent = "";
      return;
    }
    result.textContent = digits15(y);
    exactText.textContent = "exact: " + exact(y);
  }
  itemSelect.addEventListener("change", function () { chooseItem(itemSelect.value); });
  fromSelect.addEventListener("change", update);
  toSelect.addEventListener("change", update);
  valueInput.addEventListener("input", update);

  if (itemSelect.options.length > 0) chooseItem(itemSelect.options[0].value);
  applySearch();
  window.xunReport = { convertUnits: convertUnits, digits15: digits15, chooseItem: chooseItem };
})();
</script>
</body>
</html>
)page";

} // namespace

std::string ReportPage(const std::string& tablesJson) {
    std::string page = kHead;
    page += tablesJson;
    page += kTail;
    return page;
}

} // namespace xuntool
