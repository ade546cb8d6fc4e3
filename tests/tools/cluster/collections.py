#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The collections of examples/, from raw data to a page by one command each. What is expected of the
pages is what anybody knows who looks at the data: which commands, cars and words belong together.

Usage: collections.py MARDLE-CLUSTER EXAMPLES
"""

import html.parser
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

CLUSTER, EXAMPLES = (pathlib.Path(path).resolve() for path in sys.argv[1:3])
VOID = {"meta", "link", "br", "input", "img", "hr"}


class Page(html.parser.HTMLParser):
    """What stands on a page: its header, and of every card the name, classes, words and typical rows."""

    def __init__(self, text):
        super().__init__()
        self.open = []  # (tag, class) of the elements around
        self.header = ""
        self.cards = []
        self.feed(text)
        self.close()

    def handle_starttag(self, tag, attributes):
        style = dict(attributes).get("class") or ""
        if tag == "article" and style == "card":
            self.cards.append({"name": "", "classes": "", "words": [], "typical": []})
        elif self.inside("tbody") and self.inside("table", "words") and tag == "th":
            self.cards[-1]["words"].append("")
        elif self.inside("ul", "typical") and tag == "li":
            self.cards[-1]["typical"].append("")
        if tag not in VOID:
            self.open.append((tag, style))

    def handle_endtag(self, tag):
        if tag not in VOID:
            opened, _ = self.open.pop()
            assert opened == tag, f"<{opened}> ends as <{tag}>"

    def handle_data(self, data):
        if self.inside("header"):
            self.header += data
        if not self.inside("article", "card"):
            return
        card = self.cards[-1]
        if self.inside("h3") and not self.inside("span", "no"):
            card["name"] += data
        elif self.inside("p", "classes"):
            card["classes"] += data
        elif self.inside("tbody") and self.inside("th"):
            card["words"][-1] += data
        elif self.inside("ul", "typical") and self.inside("li"):
            card["typical"][-1] += data

    def inside(self, tag, style=None):
        return any(tag == t and style in (None, s) for t, s in self.open)

    def names(self):
        return [re.split(r", ", card["name"].strip()) for card in self.cards]

    def card_called(self, word):
        cards = [card for card in self.cards if word in re.split(r", ", card["name"].strip())]
        assert len(cards) == 1, (word, self.names())
        return cards[0]


class Collections(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder)

    def make(self, stem, *arguments):
        """Runs the command; its summary, and the page, which stands alone and shows numbers only."""
        done = subprocess.run([CLUSTER, "--output", "made", *arguments], cwd=self.folder, text=True,
                              capture_output=True, check=False,
                              env={**os.environ, "LC_ALL": "C.UTF-8"})
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.stem = self.folder / "made" / stem
        text = self.file(".html")
        self.assertLess(len(text.encode()), 1_000_000)
        self.assertNotRegex(text, r"(src|href)=\"?https?:")
        self.assertNotRegex(text, r">-?(nan|inf)\b")
        return done.stdout.splitlines(), Page(text)

    def file(self, ending):
        return pathlib.Path(f"{self.stem}{ending}").read_text(encoding="utf-8")

    def clusters_of(self, *labels):
        """The clusters of the rows that are called so."""
        names = self.file(".mat.rlabel").splitlines()
        part = self.file(".clustering").splitlines()
        return {int(part[names.index(label)]) for label in labels}

    def assert_together(self, *labels):
        clusters = self.clusters_of(*labels)
        self.assertEqual(len(clusters), 1, dict(zip(labels, map(self.clusters_of, labels))))
        return clusters.pop()

    def first_class(self, card):
        """The largest class of a card and its share in per cent."""
        name, share = re.match(r"(\S+) ([0-9.]+)\s%", card["classes"]).groups()
        return name, float(share)

    def test_short_texts_in_a_table(self):
        said, page = self.make("definitions", "--text-column", "definition", "--label-column", "word",
                               "--class-column", "kind", "--stem", "english",
                               EXAMPLES / "definitions/definitions.csv", "10")
        self.assertRegex(said[0], r": 1500 rows, .* \(table\)$")
        self.assertIn("1,500 documents in 10 clusters", page.header)
        for word, kind in (("city", "place"), ("sugar", "food"), ("flowers", "plant"), ("cell", "body")):
            name, share = self.first_class(page.card_called(word))
            self.assertEqual(name, kind)
            self.assertGreater(share, 60)
        labels = set(self.file(".mat.rlabel").splitlines())
        for card in page.cards:
            self.assertEqual(len(card["typical"]), 3)
            self.assertLessEqual(set(card["typical"]), labels)

    def test_german_texts(self):
        said, page = self.make("texte", "--stop-words", "german", "--stem", "german", "--folder-classes",
                               EXAMPLES / "hilfe/texte", "12")
        self.assertIn("112 documents in 12 clusters", page.header)
        self.assertNotIn("not UTF-8", " ".join(said))
        words = {word.split()[0] for card in page.cards for word in card["words"]}
        self.assertTrue({"der", "die", "und", "ist", "sie"}.isdisjoint(words), words)
        self.assertTrue(any("ä" in word or "ü" in word for word in words))
        for word, subject in (("drucker", "drucken"), ("akku", "energie"), ("netzwerk", "netzwerk"),
                              ("bluetooth", "bluetooth")):
            cards = [card for card in page.cards
                     if any(told.split()[0].startswith(word) for told in card["words"][:4])]
            self.assertIn(subject, [self.first_class(card)[0] for card in cards], word)
        self.assert_together("farben/color-calibrate-camera.txt", "farben/color-calibrate-printer.txt",
                             "farben/color-calibrate-scanner.txt")

    def test_japanese_manual_pages(self):
        said, page = self.make("man1", "--stop-words", "japanese", "--more-stop-words", "english",
                               EXAMPLES / "manpages-ja/man1", "8")
        self.assertIn("64 texts hold marks of formatting (HTML, XML, roff), which are left out", said)
        self.assertIn("64 documents in 8 clusters", page.header)
        words = {word.split()[0] for card in page.cards for word in card["words"]}
        self.assertTrue({"fb", "fr", "fi", "tp", "sh", "ます"}.isdisjoint(words), words)
        self.assertTrue({"ユーザ", "プロセス", "チェック"} <= words, words)
        sums = self.assert_together("md5sum.1", "sha1sum.1", "sha256sum.1", "sha512sum.1", "b2sum.1")
        processes = self.assert_together("kill.1", "nice.1", "pgrep.1")
        people = self.assert_together("id.1", "groups.1", "users.1", "whoami.1")
        self.assertEqual(len({sums, processes, people}), 3)
        self.assertIn("チェック", page.names()[sums])
        self.assertIn("プロセス", page.names()[processes])

    def test_a_table_with_gaps(self):
        said, page = self.make("cars", "--label-column", "Make", "--class-column", "Type",
                               "--numbers-only", "--missing", "median", "--standardize",
                               EXAMPLES / "cars/cars.csv", "4")
        self.assertIn("left out, as they are no numbers: Manufacturer, Model, AirBags, DriveTrain, "
                      "Cylinders, Man.trans.avail, Origin", " ".join(said))
        self.assertIn("13 missing values filled with the median of their columns", " ".join(said))
        self.assertIn("93 rows in 4 clusters", page.header)
        small = self.assert_together("Ford Festiva", "Geo Metro", "Suzuki Swift", "Subaru Justy")
        self.assertIn("MPG.city", page.names()[small])
        weight = [word for word in page.cards[small]["words"] if word.startswith("Weight")]
        self.assertEqual(weight, ["Weight lower here"])
        vans = self.assert_together("Chevrolet Astro", "Ford Aerostar", "Dodge Caravan", "Mazda MPV")
        dear = self.assert_together("Mercedes-Benz 300E", "Infiniti Q45", "Cadillac Seville")
        self.assertIn("Price", page.names()[dear])
        self.assertEqual(len({small, vans, dear}), 3)

    def test_weights_made_elsewhere(self):
        said, page = self.make("commands", "--labels", EXAMPLES / "sql/words.txt", "--row-labels",
                               EXAMPLES / "sql/commands.txt", EXAMPLES / "sql/commands.mtx", "10")
        self.assertIn("-colmodel=1", " ".join(said))
        self.assertIn("183 documents in 10 clusters by 250 words", page.header)
        ends = self.assert_together("COMMIT", "ROLLBACK", "SAVEPOINT", "START TRANSACTION")
        self.assertIn("transaction", page.names()[ends])
        searches = self.assert_together("CREATE TEXT SEARCH PARSER", "ALTER TEXT SEARCH DICTIONARY")
        self.assertIn("search", page.names()[searches])
        people = self.assert_together("CREATE ROLE", "CREATE USER", "CREATE GROUP")
        self.assertEqual(len({ends, searches, people}), 3)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
