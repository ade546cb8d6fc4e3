# SPDX-License-Identifier: MIT
"""Works a page of mardle-export in headless Chromium: the list of rows is made on demand, searched,
narrowed and sorted, and the tree folds. Skipped (status 77) where Chromium is not installed.
   browser.py MARDLE MARDLE_EXPORT"""
import csv
import pathlib
import subprocess
import sys
import tempfile

import chromium

ROWS = 250

# Does what a reader would, and notes what is to be seen after each step. Column 0 of a line is the
# row, column 3 its cluster.
STEPS = """
<script>
const seen = {};
const errors = [];
addEventListener('error', (event) => errors.push(event.message));
const find = (id) => document.getElementById(id);
function note(step) {
  const lines = [...document.querySelectorAll('#row-lines tr')];
  seen[step] = {
    count: find('row-count').textContent,
    rows: lines.map((line) => Number(line.cells[0].textContent)),
    clusters: [...new Set(lines.map((line) => line.cells[3].textContent))],
    first: lines.length > 0 ? lines[0].cells[1].textContent : '',
    more: !find('row-more').hidden,
  };
}
function enter(id, value) {
  find(id).value = value;
  find(id).dispatchEvent(new Event('input'));
}
note('start');
find('row-more').click();
note('more');
enter('row-search', ' ROW 24');
note('search');
enter('row-search', 'nowhere');
note('nothing');
enter('row-search', '');
enter('row-class', '1');
note('class');
enter('row-class', '');
document.querySelector('[data-sort=row]').click();
note('again');
document.querySelector('[data-sort=labels]').click();
document.querySelector('[data-sort=labels]').click();
note('sorted');
seen.ariaSort = document.querySelector('[data-sort=labels]').parentElement.getAttribute('aria-sort');
document.querySelector('.show-rows[data-cluster="1"]').click();
note('cluster');
seen.chosen = find('row-cluster').value;
const open = () => document.querySelectorAll('.tree details[open]').length;
seen.branches = [open()];
find('fold').click();
seen.branches.push(open());
document.querySelector('.tree summary').click();
seen.branches.push(open());
find('unfold').click();
seen.branches.push(open());
enter('word-search', ' Col00005');
seen.found = [find('word-count').textContent,
    [...document.querySelectorAll('.card')].map((card) => !card.classList.contains('miss')),
    [...document.querySelectorAll('.overview li')].map((line) => !line.classList.contains('miss')),
    document.querySelectorAll('.hit').length > 0];
enter('word-search', '');
seen.left = document.querySelectorAll('.hit, .miss').length;
const texts = [];
const RealBlob = Blob;
Blob = function(parts, options) {
  texts.push(parts.join(''));
  return new RealBlob(parts, options);
};
enter('row-search', 'row 24');
document.querySelectorAll('[data-csv]').forEach((button) => button.click());
seen.csv = texts;
seen.bold = document.querySelectorAll('#row-lines b').length;
seen.errors = errors;
seen.requests = performance.getEntriesByType('resource').map((entry) => entry.name);
const result = document.createElement('pre');
result.id = 'seen';
result.textContent = JSON.stringify(seen);
document.body.append(result);
</script>
"""


def write_matrix(folder):
    """Three kinds of rows, told apart by their columns; every third row is of class odd."""
    matrix = folder / "m"
    lines = []
    for i in range(ROWS):
        first = 1 + 3 * (i % 3)
        lines.append(" ".join(f"{first + j} {1 + (i * (j + 1)) % 5}" for j in range(3)))
    matrix.write_text(f"{ROWS} 9 {3 * ROWS}\n" + "\n".join(lines) + "\n")
    pathlib.Path(f"{matrix}.rlabel").write_text("".join(f"<b>Row {i}</b>\n" for i in range(ROWS)))
    pathlib.Path(f"{matrix}.rclass").write_text("".join("even\n" if i % 3 else "odd\n" for i in range(ROWS)))
    return matrix


def work(program, page):
    text = page.read_text(encoding="utf-8")
    page.write_text(text.replace("</body>", STEPS + "</body>"), encoding="utf-8")
    return chromium.seen_on(program, page)


def expect(found, wanted, what):
    assert found == wanted, f"{what}: {found!r}, not {wanted!r}"


def check(seen, part):
    expect(seen["errors"], [], "errors")
    expect(seen["requests"], [], "requests")
    expect(seen["start"]["rows"], list(range(100)), "rows at the start")
    expect(seen["start"]["count"], "100 of 250 rows shown", "count at the start")
    expect(seen["start"]["first"], "<b>Row 0</b>", "label of row 0")
    expect(seen["start"]["more"], True, "more at the start")
    expect(seen["more"]["rows"], list(range(200)), "rows after more")
    expect(seen["search"]["rows"], [24, *range(240, 250)], "rows found")
    expect(seen["search"]["more"], False, "more after the search")
    expect(seen["nothing"]["count"], "No rows", "count of nothing")
    expect(seen["class"]["rows"], [i for i in range(ROWS) if i % 3][:100], "rows of the class")
    expect(seen["class"]["count"], f"100 of {sum(1 for i in range(ROWS) if i % 3)} rows shown", "class count")
    expect(seen["again"]["rows"], list(range(ROWS - 1, ROWS - 101, -1)), "rows in falling order")
    expect(seen["sorted"]["rows"], list(range(ROWS - 1, ROWS - 101, -1)), "labels in falling order")
    expect(seen["ariaSort"], "descending", "aria-sort")
    expect(seen["chosen"], "1", "cluster chosen")
    expect(seen["cluster"]["clusters"], ["1"], "clusters shown")
    members = [i for i in reversed(range(ROWS)) if part[i] == 1]
    expect(seen["cluster"]["rows"], members[:100], "rows of the cluster")
    expect(seen["branches"], [2, 0, 1, 2], "open branches")
    check_search(seen)
    check_tables(seen, part)
    expect(seen["bold"], 0, "labels turned into markup")


def check_search(seen):
    """Column 5 is in the words of one kind of rows, which may tell the others apart by being rare there."""
    count, cards, lines, marked = seen["found"]
    expect(count, "1 cluster", "clusters found")
    expect(sum(cards), 1, "cards found")
    expect(lines, cards, "lines found")
    expect(marked, True, "marks")
    expect(seen["left"], 0, "marks after the search")


def check_tables(seen, part):
    tables = {}
    for text in seen["csv"]:
        lines = list(csv.reader(text.splitlines()))
        tables[lines[0][0]] = lines
        expect({len(line) for line in lines}, {len(lines[0])}, "fields of a line")
    words, clusters, rows = tables["cluster"], tables["Cluster"], tables["Row"]
    expect(words[0][:5], ["cluster", "Column", "mark", "here %", "elsewhere %"], "heads of the words")
    expect({line[0] for line in words[1:]}, {"0", "1", "2"}, "clusters of the words")
    expect([int(line[2]) for line in clusters[1:]], [part.count(k) for k in range(3)], "sizes")
    # The search has left rows 24 and 240 to 249, in cluster 1 only.
    left = [i for i in [24, *range(240, 250)] if part[i] == 1]
    expect(sorted(int(line[0]) for line in rows[1:]), left, "rows of the table")
    expect({line[1] for line in rows[1:]}, {f"<b>Row {i}</b>" for i in left}, "labels of the table")


def main():
    mardle, export = (str(pathlib.Path(argument).resolve()) for argument in sys.argv[1:3])
    program = chromium.find()
    if program is None:
        return chromium.NOT_INSTALLED
    with tempfile.TemporaryDirectory() as scratch:
        folder = pathlib.Path(scratch)
        matrix, clustering, page = write_matrix(folder), folder / "c", folder / "page.html"
        done = subprocess.run([mardle, f"-output={clustering}", str(matrix), "3"], capture_output=True)
        assert done.returncode == 84, done.stdout
        subprocess.run([export, "html", "--matrix", str(matrix), "--clustering", str(clustering),
                        "--output", str(page)], check=True)
        part = [int(line) for line in clustering.read_text().split()]
        check(work(program, page), part)
    return 0


if __name__ == "__main__":
    sys.exit(main())
