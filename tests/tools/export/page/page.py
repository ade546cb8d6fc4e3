# SPDX-License-Identifier: MIT
"""Checks pages of mardle-export: well-formed, self-contained, accessible as far as the text tells,
safe against hostile labels, and with the numbers of mardle's own report.
   export_page.py MARDLE MARDLE_EXPORT SOURCES"""
import colorsys
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest
from html.parser import HTMLParser

MARDLE, EXPORT, SOURCES = None, None, None
VOID = {"meta", "link", "br", "hr", "img", "input"}


class Page(HTMLParser):
    """A page as a list of elements: (tag, attributes, text of its own and below, path of tags)."""

    def __init__(self, text):
        super().__init__(convert_charrefs=True)
        self.elements, self.open, self.text = [], [], text
        self.feed(text)
        self.close()
        assert not self.open, f"never closed: {[e['tag'] for e in self.open]}"

    def handle_starttag(self, tag, attributes):
        names = [name for name, _ in attributes]
        assert len(names) == len(set(names)), f"attribute given twice in {tag}"
        element = {"tag": tag, "at": dict(attributes), "text": "", "path": [e["tag"] for e in self.open],
                   "parents": list(self.open)}
        self.elements.append(element)
        if tag not in VOID:
            self.open.append(element)

    def handle_startendtag(self, tag, attributes):
        self.handle_starttag(tag, attributes)
        if tag not in VOID:
            self.open.pop()

    def handle_endtag(self, tag):
        assert self.open and self.open[-1]["tag"] == tag, f"{tag} closes {self.open[-1]['tag']}"
        self.open.pop()

    def handle_data(self, data):
        for element in self.open:
            element["text"] += data

    def all(self, tag, **attributes):
        return [e for e in self.elements if e["tag"] == tag
                and all(e["at"].get(name.rstrip("_")) == value for name, value in attributes.items())]

    def within(self, element):
        return [e for e in self.elements if element in e["parents"]]

    def section(self, name):
        (section,) = self.all("section", id=name)
        return section

    def data(self):
        """The rows as the page's script reads them: lists by row."""
        rows = {}
        (texts,) = self.all("div", id="row-texts")
        for fold in (e for e in self.within(texts) if e["tag"] == "details"):
            (text,) = [e["text"] for e in self.within(fold) if e["tag"] == "pre"]
            row_class = None
            for line in text.split("\n"):
                if line.startswith(":"):
                    row_class = line[1:]
                elif line:
                    number, internal, external, label = line.split("\t", 3)
                    scores = [None if score == "-" else float(score) for score in (internal, external)]
                    assert int(number) not in rows, number
                    rows[int(number)] = (label, int(fold["at"]["data-cluster"]), row_class, *scores)
        columns = zip(*(rows[i] for i in range(len(rows))))
        return dict(zip(("labels", "clusters", "classes", "internal", "external"), map(list, columns)))


def run(program, *arguments, status):
    done = subprocess.run([program, *map(str, arguments)], capture_output=True, text=True)
    assert done.returncode == status, (done.returncode, done.stdout, done.stderr)
    return done.stdout


def make_page(folder, *arguments):
    out = folder / "page.html"
    run(EXPORT, "html", "--output", out, *arguments, status=0)
    return Page(out.read_text(encoding="utf-8"))


def report_lists(report):
    """The descriptive and the discriminating columns of every cluster of a report, with their shares."""
    return [re.findall(r"(\S+) +([\d.]+)%", line) for line in report.splitlines()
            if re.match(r" +(Descriptive|Discriminating):", line)]


def word_table(page, card):
    """Lines of a card's table: word, mark, here, elsewhere, describes, tells apart."""
    lines = []
    for line in (e for e in page.within(card) if e["tag"] == "tr" and "tbody" in e["path"]):
        cells = [e["text"].replace("\u00a0%", "") for e in page.within(line) if e["tag"] in ("th", "td")]
        marks = [e["text"] for e in page.within(line) if e["tag"] == "small"]
        word = cells[0].removesuffix(" " + marks[0]) if marks else cells[0]
        lines.append((word, marks[0] if marks else "", *cells[1:]))
    return lines


def card_lists(page):
    """The same lists as of a report, from the cards of a page."""
    lists = []
    for card in page.all("article", **{"class": "card"}):
        table = word_table(page, card)
        lists.append([(line[0], line[4]) for line in table if line[4] != "–"])
        lists.append([(line[0], line[5]) for line in table if line[5] != "–"])
    return lists


def compare_lists(test, shown, told):
    """Descriptive columns come in the order of the report, discriminating ones behind them."""
    test.assertEqual(shown[0::2], told[0::2])
    test.assertEqual([sorted(words) for words in shown[1::2]], [sorted(words) for words in told[1::2]])


def word_of(page, k, word):
    (card,) = page.all("article", id=f"cluster-{k}")
    (line,) = [line for line in word_table(page, card) if line[0] == word]
    return line


def hue(colour):
    red, green, blue = (int(colour[i:i + 2], 16) / 255 for i in (1, 3, 5))
    return 360 * colorsys.rgb_to_hls(red, green, blue)[0]


def luminance(colour):
    def linear(c):
        return c / 12.92 if c <= 0.04045 else ((c + 0.055) / 1.055) ** 2.4
    red, green, blue = (linear(int(colour[i:i + 2], 16) / 255) for i in (1, 3, 5))
    return 0.2126 * red + 0.7152 * green + 0.0722 * blue


def contrast(a, b):
    light, dark = sorted((luminance(a), luminance(b)), reverse=True)
    return (light + 0.05) / (dark + 0.05)


class Federalist(unittest.TestCase):
    """The page of the bundled example beside the report of the same run."""

    @classmethod
    def setUpClass(cls):
        cls.scratch = tempfile.TemporaryDirectory()
        folder = pathlib.Path(cls.scratch.name)
        cls.matrix = SOURCES / "examples" / "federalist" / "federalist.mat"
        cls.clustering, tree = folder / "clustering", folder / "tree"
        cls.report = run(MARDLE, "-showfeatures", "-showtree", "-labeltree", "-zscores",
                         f"-output={cls.clustering}", cls.matrix, 8, status=84)
        cls.full = run(MARDLE, "-fulltree", f"-writetree={tree}", "-nooutput", cls.matrix, 8, status=84)
        cls.page = make_page(folder, "--matrix", cls.matrix, "--clustering", cls.clustering, "--tree", tree,
                             "--nfeatures", "5")

    @classmethod
    def tearDownClass(cls):
        cls.scratch.cleanup()

    def tiles(self):
        names = [e["text"] for e in self.page.all("dt")]
        return dict(zip(names, [e["text"] for e in self.page.all("dd")], strict=True))

    def test_asks_the_network_for_nothing(self):
        for element in self.page.elements:
            for name, value in element["at"].items():
                if name in ("href", "src", "action", "srcset", "data", "poster", "formaction", "ping"):
                    self.assertRegex(value, r"^(#|data:,$)")
        for word in ("://", "url(", "@import", "fetch(", "XMLHttpRequest", "WebSocket", "import("):
            self.assertNotIn(word, self.page.text)
        (policy,) = self.page.all("meta", **{"http-equiv": "Content-Security-Policy"})
        self.assertIn("default-src 'none'", policy["at"]["content"])

    def test_has_a_title_a_language_and_headings_in_order(self):
        self.assertEqual(self.page.all("html")[0]["at"]["lang"], "en")
        self.assertEqual(self.page.all("title")[0]["text"], "federalist: 8 clusters")
        self.assertEqual(len(self.page.all("h1")), 1)
        levels = [int(e["tag"][1]) for e in self.page.elements if re.fullmatch("h[1-6]", e["tag"])]
        self.assertTrue(all(after <= before + 1 for before, after in zip(levels, levels[1:])))

    def test_names_its_pictures_fields_and_regions(self):
        for svg in self.page.all("svg"):
            if "aria-labelledby" in svg["at"]:
                named = [e["at"].get("id") for e in self.page.within(svg) if e["tag"] in ("title", "desc")]
                self.assertEqual(svg["at"]["aria-labelledby"].split(), named[:2])
                continue
            self.assertTrue(svg["at"].get("aria-label") or svg["at"].get("aria-hidden") == "true")
        for tag in ("input", "select"):
            for field in self.page.all(tag):
                self.assertIn("label", field["path"])
        for button in self.page.all("button"):
            self.assertTrue(button["text"].strip())
        for element in self.page.elements:
            if element["at"].get("role") == "region":
                self.assertTrue(element["at"]["aria-label"])

    def test_links_lead_somewhere(self):
        ids = [e["at"]["id"] for e in self.page.elements if "id" in e["at"]]
        self.assertEqual(len(ids), len(set(ids)))
        for link in self.page.all("a"):
            self.assertIn(link["at"]["href"][1:], ids)
        for section in self.page.all("section"):
            self.assertIn(section["at"]["aria-labelledby"], ids)

    def themes(self):
        style = self.page.all("style")[0]["text"]
        return [dict(re.findall(r"--(\w+): (#[0-9a-f]{6});", block))
                for block in re.findall(r":root \{(.*?)\}", style, re.S)]

    def test_can_be_read_in_both_themes(self):
        light, dark = self.themes()
        self.assertEqual(light.keys(), dark.keys())
        for theme in (light, dark):
            for ground in (theme["page"], theme["card"]):
                for text in ("ink", "dim", "link"):
                    self.assertGreaterEqual(contrast(theme[text], ground), 4.5, text)
            for mark in ["accent", *(f"c{i}" for i in range(9))]:
                self.assertGreaterEqual(contrast(theme[mark], theme["card"]), 3, mark)
            self.assertGreaterEqual(contrast(theme["ink"], theme["bar"]), 4.5)

    def test_leaves_the_colours_of_the_classes_to_them(self):
        for theme in self.themes():
            for mark in ("accent", "link"):
                for i in range(8):
                    apart = abs(hue(theme[mark]) - hue(theme[f"c{i}"]))
                    self.assertGreaterEqual(min(apart, 360 - apart), 15, f"{mark}, c{i}")

    def test_heads_with_the_solution(self):
        tiles = self.tiles()
        value, entropy, purity, fscore = re.search(
            r"\[I2=(\S+)\], Entropy: (\S+), Purity: (\S+), FScore: (\S+)", self.full).groups()
        self.assertEqual((tiles["Entropy"], tiles["Purity"], tiles["F-score"]), (entropy, purity, fscore))
        self.assertEqual(f"{float(tiles['Criterion I2']):.2e}", value)
        header = self.page.all("header")[0]["text"]
        self.assertIn("85 documents in 8 clusters by 5,274 words", header)

    def test_has_the_quality_table_of_the_report(self):
        wanted = [[field.lstrip("+") for field in line.split("|")[0].split()]
                  for line in self.report.splitlines() if re.match(r"^ +\d+ +\d+ [+-]", line)]
        table = [e for e in self.page.within(self.page.section("quality")) if e["tag"] == "table"][0]
        lines = [e for e in self.page.within(table) if e["tag"] == "tr"][1:]
        found = [[cell["text"] for cell in self.page.within(line) if cell["tag"] in ("td", "th")]
                 for line in lines]
        self.assertEqual(len(wanted), 8)
        self.assertEqual([cells[:1] + cells[2:9] for cells in found], wanted)
        self.assertEqual(found[1][9], "Hamilton")  # 9 of 9
        self.assertEqual(found[5][9], "disputed")  # 9 of 13

    def test_has_the_class_scores_of_the_report(self):
        wanted = re.search(r"Max F-Score Value:(.*)", self.full)[1].split()
        sizes = re.search(r"Class Size:(.*)", self.full)[1].split()
        table = [e for e in self.page.within(self.page.section("quality")) if e["tag"] == "table"][1]
        cells = [e["text"] for e in self.page.within(table) if e["tag"] == "td"]
        self.assertEqual(cells[0::2], sizes)
        for shown, told in zip(cells[1::2], wanted, strict=True):
            self.assertLessEqual(abs(float(shown) - float(told)), 0.0056)

    def test_has_the_class_counts_of_the_report(self):
        counts = [line.split("|")[1].split() for line in self.report.splitlines()
                  if re.match(r"^ +\d+ +\d+ [+-]", line)]
        order = ["Hamilton", "Jay", "Madison", "Hamilton-and-Madison", "disputed"]
        strips = [e for e in self.page.within(self.page.section("quality"))
                  if e["tag"] == "svg" and e["at"]["class"] == "strip"]
        for k, (strip, wanted) in enumerate(zip(strips, counts, strict=True)):
            told = {name: n for n, name in re.findall(r"(\d+) ([^,]+)", strip["at"]["aria-label"].split(":")[1])}
            self.assertEqual([told.get(name, "0") for name in order], wanted, f"cluster {k}")
            widths = [float(e["at"]["width"][:-1]) for e in self.page.within(strip) if e["tag"] == "rect"]
            self.assertAlmostEqual(sum(widths), 100 * sum(map(int, wanted)) / 13, delta=0.05)

    def test_has_the_columns_of_the_report(self):
        wanted = report_lists(self.report)
        self.assertEqual(len(wanted), 16)
        compare_lists(self, card_lists(self.page), wanted)

    def test_counts_the_documents_of_every_word(self):
        lines = self.matrix.read_text().splitlines()[1:]
        holds = [{int(j) for j in line.split()[0::2]} for line in lines]
        labels = pathlib.Path(f"{self.matrix}.clabel").read_text().splitlines()
        clusters = [int(line.split()[0]) for line in self.clustering.read_text().splitlines()]
        marks = set()
        for k, card in enumerate(self.page.all("article", **{"class": "card"})):
            for word, mark, here, elsewhere, *_ in word_table(self.page, card):
                column = labels.index(word) + 1
                inside = [column in held for held, cluster in zip(holds, clusters) if cluster == k]
                outside = [column in held for held, cluster in zip(holds, clusters) if cluster != k]
                shares = [sum(found) / len(found) for found in (inside, outside)]
                for shown, share in zip((here, elsewhere), shares):
                    self.assertAlmostEqual(float(shown), 100 * share, delta=0.0501)
                if mark:
                    self.assertEqual(mark, "rarer here" if shares[0] < shares[1] else "weaker here")
                marks.add(mark)
        self.assertEqual(marks, {"", "rarer here", "weaker here"})

    def test_names_clusters_alike_everywhere(self):
        names = [e["text"].split(" ", 1)[1] for e in self.page.all("h3")]
        self.assertEqual(len(names), 8)
        overview = [e for e in self.page.within(self.page.section("overview")) if e["tag"] == "b"]
        self.assertEqual([e["text"] for e in overview], names)
        for k, name in enumerate(names):
            for link in self.page.all("a", href=f"#cluster-{k}"):
                if "svg" in link["path"] and "," not in link["text"].split(" · ")[0]:
                    continue
                self.assertRegex(link["text"], rf"^({k} {name}( .*)?|{k}: {name}.*|{k}|Cluster {k})$")
            for word in name.split(", "):
                self.assertEqual(word_of(self.page, k, word)[1], "")

    def counted(self, word, k):
        """The share of the documents of a cluster that contain a word."""
        lines = self.matrix.read_text().splitlines()[1:]
        column = str(pathlib.Path(f"{self.matrix}.clabel").read_text().splitlines().index(word) + 1)
        clusters = [int(line.split()[0]) for line in self.clustering.read_text().splitlines()]
        found = [column in line.split()[0::2] for line, cluster in zip(lines, clusters) if cluster == k]
        return sum(found) / len(found)

    def test_shades_words_by_their_shares(self):
        (heat,) = self.page.all("svg", **{"class": "heat"})
        inside = self.page.within(heat)
        words = [e["text"] for e in inside if e["tag"] == "text" and e["at"]["class"] == "end"]
        self.assertGreaterEqual(len(words), 24)
        told = {}
        for cell in (e for e in inside if e["tag"] == "rect"):
            word, k, shown = re.match(r"(.*) in (\d+): ([\d.]+)\u00a0%$", cell["text"]).groups()
            told[word, int(k)] = (cell["at"]["class"], float(shown))
        for word in words:
            for k in range(8):
                share = self.counted(word, k)
                shade = sum(share >= bound for bound in (0.01, 0.05, 0.1, 0.2, 0.4, 0.7))
                found, shown = told.get((word, k), ("h0", 100 * share))
                self.assertEqual(found, f"h{shade}", f"{word} in {k}")
                self.assertAlmostEqual(shown, 100 * share, delta=0.0501)

    def test_maps_every_cluster_by_its_size(self):
        (picture,) = self.page.all("svg", **{"class": "map"})
        links = [e for e in self.page.within(picture) if e["tag"] == "a"]
        sizes = {}
        for link in links:
            (disc,) = [e for e in self.page.within(link) if e["tag"] == "circle"]
            k = int(link["at"]["href"].removeprefix("#cluster-"))
            self.assertTrue(0 <= float(disc["at"]["cx"]) <= 960 and 0 <= float(disc["at"]["cy"]) <= 600)
            sizes[k] = float(disc["at"]["r"]) ** 2
        clusters = [int(line.split()[0]) for line in self.clustering.read_text().splitlines()]
        counts = {k: clusters.count(k) for k in range(8)}
        self.assertEqual(sizes.keys(), counts.keys())
        for k in range(8):
            self.assertAlmostEqual(sizes[k] / max(sizes.values()), counts[k] / max(counts.values()), delta=0.01)

    def test_draws_the_tree_over_the_clusters(self):
        (picture,) = [e for e in self.page.all("svg", **{"class": "dendrogram"})
                      if "tree-picture-title" in e["at"]["aria-labelledby"]]
        texts = [e for e in self.page.within(picture) if e["tag"] == "text" and "axis" not in
                 [p["at"].get("class") for p in e["parents"]]]
        inner = [e["text"] for e in texts if e["at"].get("class") == "inner"]
        self.assertEqual((len(texts), len(inner)), (15, 7))
        # Sizes of the nodes and of the clusters, and their first words, as the list below has them.
        tree = self.page.section("tree")
        told = {}
        for element in self.page.within(tree):
            if element["tag"] == "summary" and "Node" in element["text"]:
                (words,) = [e["text"] for e in self.page.within(element) if e["at"].get("class") == "words"]
                size = re.search(r"(\d+) documents", element["text"])[1]
                told[f"{size} · " + ", ".join(re.findall(r"(\S+) [\d.]+", words)[:3])] = True
        self.assertEqual(sorted(inner), sorted(told))

    def test_draws_the_tree_over_the_documents(self):
        labels = pathlib.Path(f"{self.matrix}.rlabel").read_text().splitlines()
        clusters = [int(line.split()[0]) for line in self.clustering.read_text().splitlines()]
        for k in range(8):
            (branch,) = self.page.all("details", id=f"tree-of-{k}")
            (picture,) = [e for e in self.page.within(branch) if e["tag"] == "svg"]
            texts = [e["text"] for e in self.page.within(picture) if e["tag"] == "text"
                     and "g" not in e["path"][len(picture["path"]):] and "class" not in e["at"]]
            self.assertEqual(sorted(texts), sorted(label for label, c in zip(labels, clusters) if c == k))

    def test_shows_the_most_typical_documents(self):
        labels = pathlib.Path(f"{self.matrix}.rlabel").read_text().splitlines()
        lines = [line.split() for line in self.clustering.read_text().splitlines()]
        for k, shown in enumerate(self.page.all("ul", **{"class": "typical"})):
            members = [i for i, line in enumerate(lines) if int(line[0]) == k]
            members.sort(key=lambda i: -float(lines[i][1]))
            self.assertEqual([e["text"] for e in self.page.within(shown)],
                             [labels[i] for i in members[:3]])

    def test_has_the_tree_of_the_report(self):
        wanted = re.findall(r"^[ |-]*(\d+) +\[ *(\d+), (\S+), (\S+)\] \[(.*)\]$", self.report, re.M)
        self.assertEqual(len(wanted), 15)
        found = []
        tree = self.page.section("tree")
        for element in self.page.within(tree):
            is_leaf = element["tag"] == "li" and element["at"].get("class") == "leaf"
            if not is_leaf and not (element["tag"] == "summary" and "ul" in element["path"]):
                continue
            number, size, isim, xsim = re.match(
                r"(?:Node|Cluster) (\d+) (\d+) documents? · ISim (\S+)(?: · XSim (\S+))?", element["text"]).groups()
            (words,) = [e["text"] for e in self.page.within(element) if e["at"].get("class") == "words"]
            found.append((number, size, isim, xsim or "0.000", words.replace("\u00a0%", "%")))
        self.assertEqual(found, [(*numbers, re.sub(" +", " ", words)) for *numbers, words in wanted])
        self.assertEqual(len([e for e in self.page.within(tree) if e["tag"] == "details"]), 1 + 7)

    def test_holds_every_row(self):
        data = self.page.data()
        lines = [line.split() for line in self.clustering.read_text().splitlines()]
        self.assertEqual(data["clusters"], [int(line[0]) for line in lines])
        for name, field in (("internal", 1), ("external", 2)):
            for shown, line in zip(data[name], lines, strict=True):
                self.assertLessEqual(abs(shown - float(line[field])), 0.00501)
        stem = str(self.matrix)
        labels = pathlib.Path(stem + ".rlabel").read_text().splitlines()
        classes = pathlib.Path(stem + ".rclass").read_text().splitlines()
        self.assertEqual(data["labels"], labels)
        self.assertEqual(data["classes"], classes)


class Parameters(unittest.TestCase):
    """Runs under other parameters: the page shows their reports' numbers too."""
    RUNS = [("-crfun=1", "-rowmodel=2"), ("-crfun=3", "-colmodel=1", "-rowmodel=3"),
            ("-crfun=6", "-prune=0.6", "-rowmodel=4"), ("-sim=2", "-crfun=4"),
            ("-crfun=9", "-treecrfun=1"), ("-denseinput", "-crfun=5")]

    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.folder = pathlib.Path(scratch.name)

    def write_matrix(self, dense):
        """Forty rows over twelve columns, three blocks of like rows with a common tail."""
        lines = []
        for i in range(40):
            entries = {(i % 3) * 3 + j: 1 + (i * (j + 2)) % 4 for j in range(3)}
            entries.update({9 + (i + j) % 3: 1 + (i + j) % 2 for j in range(2)})
            lines.append(" ".join(str(entries.get(j, 0)) for j in range(12)) if dense else
                         " ".join(f"{j + 1} {value}" for j, value in sorted(entries.items())))
        matrix = self.folder / "m"
        matrix.write_text(("40 12\n" if dense else "40 12 200\n") + "\n".join(lines) + "\n")
        return matrix

    def test_show_in_the_numbers(self):
        for options in self.RUNS:
            with self.subTest(options=options):
                self.compare(options, self.write_matrix("-denseinput" in options))

    def compare(self, options, matrix):
        clustering = self.folder / "c"
        of_run = [option for option in options if not option.startswith("-treecrfun")]
        report = run(MARDLE, "-showfeatures", f"-output={clustering}", *of_run, matrix, 4, status=84)
        page = make_page(self.folder, "--matrix", matrix, "--clustering", clustering, "--nfeatures", "5",
                         *("-" + option for option in options))
        wanted = [[re.sub(r"^[+-](nan|inf)$", "n/a", field).lstrip("+") for field in line.split("|")[0].split()]
                  for line in report.splitlines() if re.match(r"^ +\d+ +\d+ [+-]", line)]
        cells = [e["text"] for e in page.within(page.section("quality")) if e["tag"] in ("td", "th")][7:]
        self.assertEqual([cells[i:i + 1] + cells[i + 2:i + 7] for i in range(0, len(cells), 7)], wanted)
        name, value = re.search(r"\[(\S+)=(\S+)\]", report).groups()
        tiles = dict(zip([e["text"] for e in page.all("dt")], [e["text"] for e in page.all("dd")]))
        self.assertAlmostEqual(float(tiles["Criterion " + name]) / float(value), 1, delta=0.0056)
        compare_lists(self, card_lists(page), report_lists(report))


class Chains(unittest.TestCase):
    """Browsers nest no more than 512 elements, and a tree may be a chain."""

    def test_lie_flat_below_the_hundredth_branch(self):
        n = 300
        with tempfile.TemporaryDirectory() as scratch:
            folder = pathlib.Path(scratch)
            (folder / "m").write_text(f"{n} 2 {2 * n}\n" + "1 1 2 2\n" * n)
            (folder / "c").write_text("".join(f"{k}\n" for k in range(n)))
            parents = [n + max(k - 1, 0) for k in range(n)] + [x + 1 for x in range(n, 2 * n - 2)] + [-1]
            (folder / "t").write_text("".join(f"{parent} 0.5\n" for parent in parents))
            page = make_page(folder, "--matrix", folder / "m", "--clustering", folder / "c",
                             "--tree", folder / "t", "--colmodel", "1", "--noreorder")
        tree = page.within(page.section("tree"))
        self.assertLess(max(len(element["path"]) for element in tree), 400)
        self.assertEqual(len([e for e in tree if e["tag"] == "details"]), 1 + 100)
        nodes = [int(re.match(r"Node (\d+)", e["text"])[1]) for e in tree if e["tag"] == "b"]
        self.assertEqual(nodes, list(range(2 * n - 2, n - 1, -1)))
        leaves = [int(re.match(r"Cluster (\d+)", e["text"])[1]) for e in tree
                  if e["at"].get("class") == "leaf"]
        self.assertEqual(sorted(leaves), list(range(n)))


class Labels(unittest.TestCase):
    """Labels that try to become markup, script or broken text."""
    HOSTILE = ["</script><script>alert(1)</script>", "<!--<script>", "\" onmouseover=\"alert(1)", "'&amp;<b>"]

    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.folder = pathlib.Path(scratch.name)
        self.matrix = self.folder / "<i>m&"
        self.matrix.write_text("4 4 10\n1 1 2 1\n1 2 2 1 3 1\n3 1 4 1\n3 1 4 2 1 1\n")
        (self.folder / "c").write_text("0\n0\n1\n1\n")
        self.arguments = ("--matrix", self.matrix, "--clustering", self.folder / "c")

    def companion(self, suffix, lines):
        pathlib.Path(f"{self.matrix}.{suffix}").write_bytes(b"".join(line + b"\n" for line in lines))

    def test_stay_text(self):
        for suffix in ("rlabel", "clabel", "rclass"):
            self.companion(suffix, [label.encode() for label in self.HOSTILE])
        page = make_page(self.folder, *self.arguments)
        self.assertEqual(len(page.all("script")), 1)
        self.assertEqual(page.data()["labels"], self.HOSTILE)
        self.assertEqual(page.data()["classes"], self.HOSTILE)
        self.assertEqual(len(page.all("b")), 1 + 2)  # the tree's only inner node, two names
        self.assertEqual(page.all("h1")[0]["text"], "<i>m&")
        for element in page.elements:
            self.assertFalse([name for name in element["at"] if name.startswith("on")])
        columns = {line[0] for card in page.all("article") for line in word_table(page, card)}
        self.assertEqual(columns, set(self.HOSTILE))
        options = [e["text"] for e in page.all("option")]
        self.assertTrue(set(self.HOSTILE) <= set(options))

    def test_may_be_empty_and_may_look_like_lines_of_the_list(self):
        labels = ["", "a\tb", ":c", "0\t1\t2\td"]
        self.companion("rlabel", [label.encode() for label in labels])
        self.companion("rclass", [b"", b":", b"3\t0\t0\tx", b""])
        data = make_page(self.folder, *self.arguments).data()
        self.assertEqual(data["labels"], labels)
        self.assertEqual(data["classes"], ["", ":", "3\t0\t0\tx", ""])

    def test_are_mended_where_they_are_no_utf_8(self):
        self.companion("rlabel", [b"caf\xe9", b"\xe2\x82", b"\x01", "é€😀".encode()])
        self.companion("clabel", [b"caf\xe9", b"b", b"c", b"d"])
        page = make_page(self.folder, *self.arguments)  # reads it as strict UTF-8
        self.assertEqual(page.data()["labels"], ["caf\ufffd", "\ufffd\ufffd", "\ufffd", "é€😀"])
        self.assertIn("caf\ufffd", page.text)

    def test_of_many_classes_share_the_last_colour(self):
        rows = 30
        self.matrix.write_text(f"{rows} 2 {2 * rows}\n" + "1 1 2 2\n" * rows)
        (self.folder / "c").write_text("0\n" * 15 + "1\n" * 15)
        self.companion("rclass", [b"class %d" % (i % 12) for i in range(rows)])
        page = make_page(self.folder, *self.arguments, "--colmodel", "1")
        legend = page.all("ul", **{"aria-label": "Classes"})[0]
        self.assertIn("4 other classes", legend["text"])
        # The eight largest classes are 0 to 7; rows 8 to 11 of cluster 0 are of the other four.
        (rest,) = [e for e in page.within(page.all("svg")[0]) if e["at"].get("class") == "c8"]
        self.assertEqual(rest["text"], "other classes: 4")


if __name__ == "__main__":
    MARDLE, EXPORT, SOURCES = (pathlib.Path(argument).resolve() for argument in sys.argv[1:4])
    unittest.main(argv=sys.argv[:1] + sys.argv[4:])
