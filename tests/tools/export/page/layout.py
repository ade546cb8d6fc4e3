# SPDX-License-Identifier: MIT
"""Looks at a page of mardle-export in headless Chromium: at three widths and in the dark theme nothing is
cut off or written over, the overview stands on the first screen, navigation stays, everything is
reached by keyboard; and on paper stands what can be read there. Skipped (status 77) where Chromium is
not installed.
   layout.py MARDLE_EXPORT"""
import html
import pathlib
import re
import subprocess
import sys
import tempfile

import chromium

WIDTHS = (400, 1000, 1600)
CLUSTERS = 30
WORDS = 150

# Measures every frame, each of which is the page at one width.
MEASURE = """
<script>
function box(element) {
  const {left, top, right, bottom} = element.getBoundingClientRect();
  return {left, top, right, bottom};
}
// Pairs of texts that share more than a sliver of their places.
function overlaps(texts) {
  const boxes = [...texts].map((text) => [text.textContent, box(text)]);
  const found = [];
  boxes.forEach(([text, a], i) => boxes.slice(i + 1).forEach(([other, b]) => {
    const wide = Math.min(a.right, b.right) - Math.max(a.left, b.left);
    const high = Math.min(a.bottom, b.bottom) - Math.max(a.top, b.top);
    if (wide > 2 && high > 4) found.push([text, other]);
  }));
  return found;
}
function measure(frame) {
  const page = frame.contentDocument;
  const root = page.documentElement;
  const all = (selector) => [...page.querySelectorAll(selector)];
  for (const fold of all('#tree details, .note')) fold.open = true;
  const seen = {
    wide: root.scrollWidth - root.clientWidth,
    overview: box(page.querySelector('.overview')).bottom,
    texts: all('svg text').filter((text) => text.checkVisibility()).map((text) => box(text))
        .filter((place) => place.bottom - place.top < 10).length,
    dendrogram: overlaps(all('.dendrogram text')),
    map: overlaps(all('.map text')),
    heat: overlaps(all('.heat text')),
    cut: all('.words th, .words td, .size, h2, h3').filter((cell) => cell.scrollWidth > cell.clientWidth + 1)
        .map((cell) => cell.textContent),
    ground: frame.contentWindow.getComputedStyle(page.body).backgroundColor,
  };
  seen.unreached = all('a[href], button, input, select, summary, [tabindex]')
      .filter((element) => element.checkVisibility()).filter((element) => {
        element.focus();
        return page.activeElement !== element;
      }).map((element) => element.outerHTML);
  root.scrollTop = root.scrollHeight;
  seen.navigation = box(page.querySelector('nav')).top;
  return seen;
}
addEventListener('load', () => {
  const result = document.createElement('pre');
  result.id = 'seen';
  result.textContent = JSON.stringify([...document.querySelectorAll('iframe')].map(measure));
  document.body.append(result);
});
</script>
"""


def word(j):
    """Words of letters, of lengths that occur."""
    letters = "etaoinshrducmwyp"  # none that fonts join
    text = ""
    for _ in range(3 + j % 9):
        j = j * 7919 + 12345
        text += letters[(j >> 4) % len(letters)]
    return text


def write_run(folder):
    """Eight documents for each of thirty subjects of five words, which share words with the next one."""
    matrix = folder / "subjects"
    rows = []
    for i in range(8 * CLUSTERS):
        k = i // 8
        counts = {5 * k + j: 2 + (i * (j + 3)) % 4 for j in range(5)}
        counts.update({(5 * k + 5 + (i + j) % 5) % WORDS: 1 for j in range(2)})
        rows.append(" ".join(f"{j + 1} {count}" for j, count in sorted(counts.items())))
    matrix.write_text(f"{len(rows)} {WORDS} {7 * len(rows)}\n" + "\n".join(rows) + "\n")
    pathlib.Path(f"{matrix}.clabel").write_text("".join(f"{word(j)}\n" for j in range(WORDS)))
    pathlib.Path(f"{matrix}.rlabel").write_text(
        "".join(f"A document about subject {i // 8}, the {i % 8}th of them\n" for i in range(len(rows))))
    pathlib.Path(f"{matrix}.rclass").write_text("".join(f"class {i // 24}\n" for i in range(len(rows))))
    clustering = folder / "clustering"
    clustering.write_text("".join(f"{i // 8}\n" for i in range(len(rows))))
    return matrix, clustering


def look(program, folder, page, *arguments):
    """What the page measures at each width."""
    frames = "".join(f'<iframe width="{width}" height="900" srcdoc="{html.escape(page)}"></iframe>'
                     for width in WIDTHS)
    harness = folder / "frames.html"
    harness.write_text(f"<!DOCTYPE html><meta charset=utf-8><style>iframe {{ border: 0 }}</style>{frames}{MEASURE}",
                       encoding="utf-8")
    return chromium.seen_on(program, harness, *arguments)


def expect(found, wanted, what):
    assert found == wanted, f"{what}: {found!r}, not {wanted!r}"


def check(seen, ground):
    for width, frame in zip(WIDTHS, seen, strict=True):
        expect(frame["wide"], 0, f"beyond the edge at {width}")
        for picture in ("dendrogram", "map", "heat"):
            expect(frame[picture], [], f"texts over each other in the {picture} at {width}")
        expect(frame["cut"], [], f"cut off at {width}")
        expect(frame["texts"], 0, f"tiny texts at {width}")
        expect(frame["unreached"], [], f"not reached by keyboard at {width}")
        expect(round(frame["navigation"]), 0, f"place of the navigation below at {width}")
        expect(frame["ground"], ground, f"colour at {width}")
        # A telephone is higher than wide.
        assert frame["overview"] <= (1000 if width < 500 else 900), (width, frame["overview"])


def printed(program, folder, page):
    """The text on paper."""
    paper = folder / "page.pdf"
    chromium.run(program, f"--print-to-pdf={paper}", page.as_uri())
    return subprocess.run(["gs", "-q", "-dBATCH", "-dNOPAUSE", "-sDEVICE=txtwrite", "-o", "-", str(paper)],
                          capture_output=True, text=True, check=True).stdout


def check_paper(text):
    squeezed = " ".join(text.split())
    for wanted in ("What the clusters are about", "Typical documents", "Map of the clusters", "Tree over the clusters",
                   "Purity", "How the run was made"):
        assert wanted in squeezed, wanted
    for subject in range(CLUSTERS):
        assert re.search(rf"\b{re.escape(word(5 * subject))}\b", squeezed), subject
    for control in ("List them", "as CSV", "Fold all", "Show more"):
        assert control not in squeezed, control


def main():
    export = str(pathlib.Path(sys.argv[1]).resolve())
    program = chromium.find()
    if program is None:
        return chromium.NOT_INSTALLED
    with tempfile.TemporaryDirectory() as scratch:
        folder = pathlib.Path(scratch)
        matrix, clustering = write_run(folder)
        page = folder / "page.html"
        subprocess.run([export, "html", "--matrix", matrix, "--clustering", clustering, "--output", page], check=True)
        text = page.read_text(encoding="utf-8")
        check(look(program, folder, text), "rgb(251, 250, 247)")
        check(look(program, folder, text, "--force-dark-mode"), "rgb(20, 23, 27)")
        check_paper(printed(program, folder, page))
    return 0


if __name__ == "__main__":
    sys.exit(main())
